#pragma once

#include "include/platform/Gdi.h"
#include "tests/support/BmpBuilder.h"
#include "tests/support/Host.h"

// Small pictures as letters (those of BmpBuilder.h, and `.` for black), painted on and read from surfaces.
namespace test {

inline COLORREF ColorOf(char letter)
{
    const std::uint32_t pixel = letter == '.' ? 0 : PixelOf(letter);
    return RGB(pixel >> 16, pixel >> 8, pixel);
}

// `?` for a colour that has no letter, a space for none at all.
inline char LetterOf(COLORREF clr)
{
    if (clr == CLR_INVALID) return ' ';
    return clr == 0 ? '.' : LetterOfPixel(RGB(GetBValue(clr), GetGValue(clr), GetRValue(clr)));
}

inline Picture Read(HDC dc, int left, int top, int right, int bottom)
{
    Picture picture;
    for (int y = top; y < bottom; ++y) {
        picture.emplace_back();
        for (int x = left; x < right; ++x)
            picture.back() += LetterOf(GetPixel(dc, x, y));
    }
    return picture;
}

// A memory surface of its own with a bitmap in it.
class Paper : Fixed
{
public:
    explicit Paper(const Picture& picture)
        : Paper(static_cast<int>(picture.at(0).size()), static_cast<int>(picture.size()))
    {
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x)
                SetPixel(m_dc, x, y,
                         ColorOf(picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]));
    }
    Paper(int width, int height, char letter = '.') : m_width(width), m_height(height)
    {
        const HBRUSH brush = CreateSolidBrush(ColorOf(letter));
        const RECT all{0, 0, width, height};
        FillRect(m_dc, &all, brush);
        DeleteObject(brush);
    }
    ~Paper()
    {
        DeleteDC(m_dc);
        DeleteObject(m_bitmap);
    }
    // Gives its bitmap away, for the taker to end.
    HBITMAP Detach()
    {
        SelectObject(m_dc, m_first);
        return std::exchange(m_bitmap, nullptr);
    }

    operator HDC() const { return m_dc; }
    HBITMAP Bitmap() const { return m_bitmap; }
    Picture Read() const { return test::Read(m_dc, 0, 0, m_width, m_height); }

private:
    int m_width;
    int m_height;
    HDC m_dc = CreateCompatibleDC(nullptr);
    HBITMAP m_bitmap = CreateCompatibleBitmap(m_dc, m_width, m_height);
    HGDIOBJ m_first = SelectObject(m_dc, m_bitmap);
};

// An object that ends with the scope.
template <class Handle>
class Scoped : Fixed
{
public:
    explicit Scoped(Handle handle) : m_handle(handle) {}
    ~Scoped() { DeleteObject(m_handle); }
    operator Handle() const { return m_handle; }

private:
    Handle m_handle;
};

} // namespace test
