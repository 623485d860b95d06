#include "platform/gdi/DibRow.h"

#include <cstring>
#include <span>

namespace kx::gdi {

namespace {

void Write16(std::span<const DWORD> in, BYTE* out) noexcept
{
    for (const DWORD pixel : in) {
        const auto packed =
            static_cast<WORD>((pixel >> 9 & 0x7C00) | (pixel >> 6 & 0x03E0) | (pixel >> 3 & 0x1F));
        std::memcpy(out, &packed, sizeof(packed));
        out += sizeof(packed);
    }
}

void Write24(std::span<const DWORD> in, BYTE* out) noexcept
{
    for (const DWORD pixel : in) {
        *out++ = static_cast<BYTE>(pixel);
        *out++ = static_cast<BYTE>(pixel >> 8);
        *out++ = static_cast<BYTE>(pixel >> 16);
    }
}

void Write32(std::span<const DWORD> in, BYTE* out, DWORD nMask) noexcept
{
    for (const DWORD pixel : in) {
        const DWORD kept = pixel & nMask;
        std::memcpy(out, &kept, sizeof(kept));
        out += sizeof(kept);
    }
}

} // namespace

bool HasDepth(const Bitmap& bitmap, int nDepth) noexcept
{
    switch (nDepth) {
    case 1:
    case 4:
    case 8:
        return !bitmap.palette.empty() && bitmap.palette.size() <= std::size_t{1} << nDepth;
    case 16:
    case 24:
    case 32:
        return true;
    default:
        return false;
    }
}

DibRow::DibRow(const Bitmap& bitmap, WORD nDepth) noexcept : m_bitmap(bitmap), m_nDepth(nDepth)
{
    if (nDepth <= 8) m_indices.emplace(bitmap.palette);
}

void DibRow::Write(int y, BYTE* out) noexcept
{
    const std::size_t nBytes = Bytes();
    if (nBytes >= sizeof(DWORD)) std::memset(out + nBytes - sizeof(DWORD), 0, sizeof(DWORD)); // the padding
    const std::span in(m_bitmap.surface.Row(y), static_cast<std::size_t>(m_bitmap.Width()));
    switch (m_nDepth) {
    case 16:
        return Write16(in, out);
    case 24:
        return Write24(in, out);
    case 32:
        return Write32(in, out, m_bitmap.depth == 32 ? 0xFFFFFFFF : COLOR_BITS);
    default:
        return WriteIndices(in.data(), out);
    }
}

void DibRow::WriteIndices(const DWORD* in, BYTE* out) noexcept
{
    const int nWidth = m_bitmap.Width();
    const int nPerByte = 8 / m_nDepth;
    for (int x = 0; x < nWidth; x += nPerByte) {
        unsigned nByte = 0;
        for (int n = 0; n < nPerByte; ++n)
            nByte = nByte << m_nDepth | (x + n < nWidth ? m_indices->Find(in[x + n]) : 0u);
        *out++ = static_cast<BYTE>(nByte);
    }
}

} // namespace kx::gdi
