#include "draw/BitmapRegion.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

constexpr int nBandRows = 16; // few enough to stay in the cache between reading and scanning

// The rows of a bitmap as 32-bit pixels, a band at a time.
class Rows
{
public:
    Rows(HDC hDC, HBITMAP hBitmap, SIZE size) : m_hDC(hDC), m_hBitmap(hBitmap), m_size(size)
    {
        m_pixels.resize(static_cast<std::size_t>(size.cx) * nBandRows);
        m_info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    }

    // Reads the band that begins at row `y`; the number of its rows, 0 at the end.
    int Read(int y)
    {
        const int nRows = std::min(nBandRows, m_size.cy - y);
        const int nFromBottom =
            m_size.cy - y - nRows; // lines are counted from the bottom, also in a top-down copy
        return nRows <= 0 ? 0
                          : GetDIBits(m_hDC, m_hBitmap, static_cast<UINT>(nFromBottom),
                                      static_cast<UINT>(nRows), m_pixels.data(), &m_info, DIB_RGB_COLORS);
    }
    const DWORD* Row(int n) const { return m_pixels.data() + static_cast<std::ptrdiff_t>(n) * m_size.cx; }

private:
    HDC m_hDC;
    HBITMAP m_hBitmap;
    SIZE m_size;
    std::vector<DWORD> m_pixels;
    BITMAPINFO m_info{};
};

// Appends the runs of a row whose pixels are of the colour, or aren't.
void AppendRuns(const DWORD* row, int nWidth, int y, DWORD key, bool bKeepColor, std::vector<RECT>& runs)
{
    const auto isIn = [&](int x) { return ((row[x] & 0xFFFFFF) == key) == bKeepColor; };
    for (int x = 0; x < nWidth;) {
        while (x < nWidth && !isIn(x))
            ++x;
        const int first = x;
        while (x < nWidth && isIn(x))
            ++x;
        if (first < x) runs.push_back({first, y, x, y + 1});
    }
}

} // namespace

HRGN kx::draw::MakeColorRegion(HDC hDC, HBITMAP hBitmap, SIZE size, COLORREF clr, bool bKeepColor)
{
    // A colour with a high byte is no pixel's.
    const bool bNone = (clr >> 24) != 0;
    if (bNone) return bKeepColor ? CreateRectRgn(0, 0, 0, 0) : CreateRectRgn(0, 0, size.cx, size.cy);
    const DWORD key = (clr & 0xFF) << 16 | (clr & 0xFF00) | (clr >> 16 & 0xFF);

    std::vector<RECT> runs;
    Rows rows(hDC, hBitmap, size);
    int y = 0;
    while (const int nRows = rows.Read(y)) {
        for (int n = 0; n < nRows; ++n, ++y)
            AppendRuns(rows.Row(n), size.cx, y, key, bKeepColor, runs);
    }
    return CreateRectsRgn(runs.data(), static_cast<int>(runs.size()));
}
