#pragma once

#include "platform/gdi/ImageFile.h"

#include <bit>
#include <cstddef>

namespace kx::gdi {

static_assert(std::endian::native == std::endian::little, "pixels are copied as the file orders them");

// Little-endian integers; 0 outside the bytes.
constexpr DWORD Little(FileBytes bytes, std::size_t at, std::size_t width) noexcept
{
    DWORD value = 0;
    if (at > bytes.size() || width > bytes.size() - at) return 0;
    for (std::size_t i = width; i-- > 0;)
        value = value << 8 | bytes[at + i];
    return value;
}

constexpr WORD U16(FileBytes bytes, std::size_t at) noexcept
{
    return static_cast<WORD>(Little(bytes, at, 2));
}

constexpr DWORD U32(FileBytes bytes, std::size_t at) noexcept
{
    return Little(bytes, at, 4);
}

// What lies behind an offset; nothing beyond the end.
constexpr FileBytes From(FileBytes bytes, std::size_t at) noexcept
{
    return at < bytes.size() ? bytes.subspan(at) : FileBytes();
}

} // namespace kx::gdi
