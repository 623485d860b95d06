#pragma once

#include "Types.h"

// A place in pixels, from the left and from the top.
struct POINT
{
    // From the left, from the top.
    LONG x = 0;
    LONG y = 0;
    friend bool operator==(const POINT&, const POINT&) = default;
};

// A width and a height in pixels.
struct SIZE
{
    // Width and height.
    LONG cx = 0;
    LONG cy = 0;
    friend bool operator==(const SIZE&, const SIZE&) = default;
};

// Right and bottom are exclusive.
struct RECT
{
    // The four sides; right and bottom are exclusive.
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;
    friend bool operator==(const RECT&, const RECT&) = default;
};

// A place.
class CPoint : public POINT
{
public:
    CPoint() = default;
    // From its numbers.
    CPoint(int nX, int nY)
    {
        x = nX;
        y = nY;
    }
    // From a plain one.
    CPoint(const POINT& pt) : POINT(pt) {}
};

// A size.
class CSize : public SIZE
{
public:
    CSize() = default;
    // From its numbers.
    CSize(int nCx, int nCy)
    {
        cx = nCx;
        cy = nCy;
    }
    // From a plain one.
    CSize(const SIZE& size) : SIZE(size) {}
};

// A rectangle.
class CRect : public RECT
{
public:
    CRect() = default;
    // From its sides.
    CRect(int nLeft, int nTop, int nRight, int nBottom)
    {
        left = nLeft;
        top = nTop;
        right = nRight;
        bottom = nBottom;
    }
    // From a plain one.
    CRect(const RECT& rc) : RECT(rc) {}

    // So that one is passed where a call takes a rectangle by its address.
    operator const RECT*() const { return this; }
    operator RECT*() { return this; }

    // Sides too far apart for an int wrap around.
    int Width() const { return Distance(left, right); }
    int Height() const { return Distance(top, bottom); }
    // 1 without width or height.
    int IsRectEmpty() const { return right <= left || bottom <= top; }

private:
    static int Distance(LONG from, LONG to)
    {
        return static_cast<int>(static_cast<DWORD>(to) - static_cast<DWORD>(from));
    }
};

// Red in the low byte, then green, then blue; the high byte is 0.
using COLORREF = DWORD;

// A colour from its parts, 0 to 255 each.
constexpr COLORREF RGB(unsigned nRed, unsigned nGreen, unsigned nBlue)
{
    return (nRed & 0xFFu) | (nGreen & 0xFFu) << 8 | (nBlue & 0xFFu) << 16;
}
