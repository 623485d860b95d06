#include "platform/gdi/Rle.h"

#include <algorithm>

namespace kx::gdi {

namespace {

constexpr std::uint64_t kBelieved = 1 << 20; // pixels
constexpr std::uint64_t kPixelsPerByte = 256;

constexpr std::uint8_t kEndOfLine = 0;
constexpr std::uint8_t kEndOfBitmap = 1;
constexpr std::uint8_t kDelta = 2;

// Where the next pixel goes, from the bottom left. It may lie outside the bitmap, where nothing is painted.
class Cursor
{
public:
    explicit Cursor(Surface& surface) : m_surface(surface) {}

    void Move(int dx, int dy) noexcept
    {
        m_x += dx;
        m_y += dy;
    }
    void EndLine() noexcept
    {
        m_x = 0;
        ++m_y;
    }
    // Paints `colorAt(0)` to `colorAt(n - 1)`, and moves behind them.
    template <class ColorAt>
    void Paint(int n, ColorAt&& colorAt)
    {
        if (m_x < m_surface.Width() && m_y < m_surface.Height()) {
            const int nVisible = static_cast<int>(std::min<std::int64_t>(n, m_surface.Width() - m_x));
            DWORD* out = m_surface.Row(static_cast<int>(m_surface.Height() - 1 - m_y)) + m_x;
            for (int i = 0; i < nVisible; ++i)
                out[i] = colorAt(i);
        }
        m_x += n;
    }

private:
    Surface& m_surface;
    std::int64_t m_x = 0;
    std::int64_t m_y = 0;
};

class Decoder
{
public:
    Decoder(const BmpHeader& header, FileBytes bytes, const BmpColors& colors, Surface& surface)
        : m_bNibbles(header.nCompression == BI_RLE4), m_bytes(bytes), m_colors(colors), m_cursor(surface)
    {
    }

    // False if the data end before their end mark.
    bool Run()
    {
        while (m_bytes.size() >= 2) {
            const std::uint8_t nCount = m_bytes[0], nValue = m_bytes[1];
            m_bytes = m_bytes.subspan(2);
            if (nCount > 0)
                PaintRun(nCount, nValue);
            else if (nValue == kEndOfBitmap)
                return true;
            else if (!Escape(nValue))
                return false;
        }
        return false;
    }

private:
    bool Escape(std::uint8_t nValue)
    {
        switch (nValue) {
        case kEndOfLine:
            m_cursor.EndLine();
            return true;
        case kDelta:
            if (m_bytes.size() < 2) return false;
            m_cursor.Move(m_bytes[0], m_bytes[1]);
            m_bytes = m_bytes.subspan(2);
            return true;
        default:
            return PaintLiteral(nValue);
        }
    }

    void PaintRun(int nCount, std::uint8_t nValue)
    {
        if (m_bNibbles) {
            const DWORD pair[] = {m_colors[nValue >> 4], m_colors[nValue & 0xF]};
            m_cursor.Paint(nCount, [&](int i) { return pair[i & 1]; });
        } else {
            m_cursor.Paint(nCount, [color = m_colors[nValue]](int) { return color; });
        }
    }

    // Pixels one by one, padded to 16 bits.
    bool PaintLiteral(int nCount)
    {
        const auto nPadded =
            static_cast<std::size_t>(m_bNibbles ? (nCount + 3) / 4 * 2 : (nCount + 1) / 2 * 2);
        if (m_bytes.size() < nPadded) return false;
        const std::uint8_t* in = m_bytes.data();
        if (m_bNibbles)
            m_cursor.Paint(nCount, [&](int i) { return m_colors[(in[i / 2] >> (i & 1 ? 0 : 4)) & 0xF]; });
        else
            m_cursor.Paint(nCount, [&](int i) { return m_colors[in[i]]; });
        m_bytes = m_bytes.subspan(nPadded);
        return true;
    }

    const bool m_bNibbles;
    FileBytes m_bytes;
    const BmpColors& m_colors;
    Cursor m_cursor;
};

} // namespace

std::optional<Surface> ReadRle(const BmpHeader& header, FileBytes bytes, const BmpColors& colors)
{
    const auto nPixels =
        static_cast<std::uint64_t>(header.nWidth) * static_cast<std::uint64_t>(header.nHeight);
    if (nPixels > std::max(kBelieved, kPixelsPerByte * bytes.size())) return std::nullopt;
    auto surface = Surface::Make(header.nWidth, header.nHeight);
    if (!surface) return std::nullopt;
    if (colors[0] != 0)
        for (int y = 0; y < header.nHeight; ++y)
            std::fill_n(surface->Row(y), header.nWidth, colors[0]);
    if (!Decoder(header, bytes, colors, *surface).Run()) return std::nullopt;
    return surface;
}

} // namespace kx::gdi
