#pragma once

#include "platform/shell/Functions.h"

#include <memory>
#include <string>

// The module's functions, as the structures of functions describe them.

namespace kx::shell::gio {

std::unique_ptr<module::Bundle> LoadBundle(std::string bytes);
std::unique_ptr<module::Bundle> BundleOfProcess();

} // namespace kx::shell::gio
