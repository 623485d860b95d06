#include "platform/gdiplus/CallerPixels.h"

#include <cstdlib>
#include <cstring>

namespace kx::gdiplus {

namespace {

constexpr int PixelBytes(Gdiplus::PixelFormat format) noexcept
{
    return format == Gdiplus::PixelFormat24bppRGB ? 3 : 4;
}

} // namespace

std::optional<Alpha> AlphaOf(Gdiplus::PixelFormat format) noexcept
{
    switch (format) {
    case Gdiplus::PixelFormat24bppRGB:
    case Gdiplus::PixelFormat32bppRGB:
        return Alpha::Opaque;
    case Gdiplus::PixelFormat32bppARGB:
        return Alpha::Straight;
    case Gdiplus::PixelFormat32bppPARGB:
        return Alpha::Premultiplied;
    default:
        return std::nullopt;
    }
}

Gdiplus::Status CallerPixels::Make(int nWidth, int nHeight, Gdiplus::INT nStride, Gdiplus::PixelFormat format,
                                   BYTE* pScan0, std::optional<CallerPixels>& pixels)
{
    if (!AlphaOf(format)) return Gdiplus::NotImplemented;
    const std::int64_t nRow = std::int64_t{nWidth} * PixelBytes(format);
    if (nStride % 4 != 0 || std::abs(std::int64_t{nStride}) < nRow) return Gdiplus::InvalidParameter;
    CallerPixels made;
    made.m_nWidth = nWidth;
    made.m_nHeight = nHeight;
    made.m_nStride = nStride;
    made.m_format = format;
    made.m_pScan0 = pScan0;
    const bool bInPlace = PixelBytes(format) == 4 && reinterpret_cast<std::uintptr_t>(pScan0) % 4 == 0;
    if (!bInPlace) {
        made.m_copy = gdi::Surface::Make(nWidth, nHeight);
        if (!made.m_copy) return Gdiplus::OutOfMemory;
    }
    pixels = std::move(made);
    return Gdiplus::Ok;
}

Alpha CallerPixels::HighByte() const noexcept
{
    return *AlphaOf(m_format);
}

BYTE* CallerPixels::At(int x, int y) const noexcept
{
    return m_pScan0 + y * m_nStride + std::ptrdiff_t{x} * PixelBytes(m_format);
}

DWORD CallerPixels::Get(int x, int y) const noexcept
{
    DWORD pixel = m_format == Gdiplus::PixelFormat24bppRGB ? ALPHA_BITS : 0;
    std::memcpy(&pixel, At(x, y), static_cast<std::size_t>(PixelBytes(m_format)));
    return pixel;
}

void CallerPixels::Set(int x, int y, DWORD pixel) noexcept
{
    std::memcpy(At(x, y), &pixel, static_cast<std::size_t>(PixelBytes(m_format)));
}

PixelView CallerPixels::View() noexcept
{
    if (!m_copy) return {reinterpret_cast<DWORD*>(m_pScan0), m_nStride / 4, m_nWidth, m_nHeight, HighByte()};
    for (int y = 0; y < m_nHeight; ++y)
        for (int x = 0; x < m_nWidth; ++x)
            m_copy->Row(y)[x] = Get(x, y);
    return {m_copy->Row(0), m_copy->Stride(), m_nWidth, m_nHeight, HighByte()};
}

void CallerPixels::Changed() noexcept
{
    if (!m_copy) return;
    for (int y = 0; y < m_nHeight; ++y)
        for (int x = 0; x < m_nWidth; ++x)
            Set(x, y, m_copy->Row(y)[x]);
}

} // namespace kx::gdiplus
