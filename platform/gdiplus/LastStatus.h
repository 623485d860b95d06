#pragma once

#include "include/platform/GdiPlusTypes.h"

#include <utility>

namespace kx::gdiplus {

// How the classes keep the last failure until it is asked for.
inline Gdiplus::Status KeepIn(Gdiplus::Status& last, Gdiplus::Status status) noexcept
{
    if (status != Gdiplus::Ok) last = status;
    return status;
}

inline Gdiplus::Status TakeFrom(Gdiplus::Status& last) noexcept
{
    return std::exchange(last, Gdiplus::Ok);
}

} // namespace kx::gdiplus
