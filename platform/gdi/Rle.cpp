#include "platform/gdi/BmpHeader.h"

#include <algorithm>

namespace kx::gdi {

namespace {

constexpr std::uint64_t kBelieved = 1 << 20; // pixels
constexpr std::uint64_t kPixelsPerByte = 256;

constexpr std::uint8_t kEndOfLine = 0;
constexpr std::uint8_t kEndOfBitmap = 1;
constexpr std::uint8_t kDelta = 2;

// The place of the next pixel, from the bottom left. It may lie outside the bitmap, where nothing is painted.
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
        : m_compression(header.compression), m_bytes(bytes), m_colors(colors), m_cursor(surface)
    {
    }

    // False if the data end before their end mark.
    bool Run()
    {
        const std::size_t nValue = m_compression == BmpCompression::Rle24 ? 3 : 1; // bytes
        while (m_bytes.size() >= 2) {
            const std::uint8_t nCount = m_bytes[0], nEscape = m_bytes[1];
            if (nCount > 0) {
                if (m_bytes.size() < 1 + nValue) return false;
                Paint(nCount, m_bytes.data() + 1, true);
                m_bytes = m_bytes.subspan(1 + nValue);
                continue;
            }
            m_bytes = m_bytes.subspan(2);
            if (nEscape == kEndOfBitmap) return true;
            if (!Escape(nEscape)) return false;
        }
        return false;
    }

private:
    bool Escape(std::uint8_t nEscape)
    {
        switch (nEscape) {
        case kEndOfLine:
            m_cursor.EndLine();
            return true;
        case kDelta:
            if (m_bytes.size() < 2) return false;
            m_cursor.Move(m_bytes[0], m_bytes[1]);
            m_bytes = m_bytes.subspan(2);
            return true;
        default:
            return PaintLiteral(nEscape);
        }
    }

    // Pixels one by one, padded to 16 bits.
    bool PaintLiteral(std::size_t nCount)
    {
        const std::size_t nBits = m_compression == BmpCompression::Rle4   ? 4
                                  : m_compression == BmpCompression::Rle8 ? 8
                                                                          : 24;
        const std::size_t nPadded = (nCount * nBits + 15) / 16 * 2;
        if (m_bytes.size() < nPadded) return false;
        Paint(static_cast<int>(nCount), m_bytes.data(), false);
        m_bytes = m_bytes.subspan(nPadded);
        return true;
    }

    // A run repeats its value, of 4 bits two in turn.
    void Paint(int nCount, const std::uint8_t* in, bool bRun)
    {
        switch (m_compression) {
        case BmpCompression::Rle4:
            return m_cursor.Paint(
                nCount, [&](int i) { return m_colors[in[bRun ? 0 : i / 2] >> (i & 1 ? 0 : 4) & 0xF]; });
        case BmpCompression::Rle8:
            return m_cursor.Paint(nCount, [&](int i) { return m_colors[in[bRun ? 0 : i]]; });
        default:
            return m_cursor.Paint(nCount, [&](int i) {
                const std::uint8_t* const color = in + (bRun ? 0 : 3 * i);
                return DWORD{color[2]} << 16 | DWORD{color[1]} << 8 | color[0];
            });
        }
    }

    const BmpCompression m_compression;
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
