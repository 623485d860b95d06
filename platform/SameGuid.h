#pragma once

#include "include/platform/Guid.h"

#include <cstring>

namespace kx {

inline bool SameGuid(const GUID& a, const GUID& b) noexcept
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace kx
