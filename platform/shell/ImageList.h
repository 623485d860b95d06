#pragma once

#include "include/platform/Shell.h"

#include <string>

namespace kx::shell {

// The index in the system image lists of the icon with these names, which is added if it is new. Index 0 is
// the icon of a file of which nothing is known. Any thread.
int IconIndex(const std::string& names);

const _IMAGELIST* SystemImageList(bool bSmall) noexcept;

} // namespace kx::shell
