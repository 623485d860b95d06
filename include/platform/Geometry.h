#pragma once

#include "Types.h"

struct POINT
{
    LONG x = 0;
    LONG y = 0;
    friend bool operator==(const POINT&, const POINT&) = default;
};

struct SIZE
{
    LONG cx = 0;
    LONG cy = 0;
    friend bool operator==(const SIZE&, const SIZE&) = default;
};

// Right and bottom are exclusive.
struct RECT
{
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;
    friend bool operator==(const RECT&, const RECT&) = default;
};

class CPoint : public POINT
{
public:
    CPoint() = default;
    CPoint(int nX, int nY)
    {
        x = nX;
        y = nY;
    }
    CPoint(const POINT& pt) : POINT(pt) {}
};

class CSize : public SIZE
{
public:
    CSize() = default;
    CSize(int nCx, int nCy)
    {
        cx = nCx;
        cy = nCy;
    }
    CSize(const SIZE& size) : SIZE(size) {}
};

class CRect : public RECT
{
public:
    CRect() = default;
    CRect(int nLeft, int nTop, int nRight, int nBottom)
    {
        left = nLeft;
        top = nTop;
        right = nRight;
        bottom = nBottom;
    }
    CRect(const RECT& rc) : RECT(rc) {}

    // So that one is passed where a call takes a rectangle by its address.
    operator const RECT*() const { return this; }
    operator RECT*() { return this; }

    // Sides too far apart for an int wrap around.
    int Width() const { return Distance(left, right); }
    int Height() const { return Distance(top, bottom); }
    int IsRectEmpty() const { return right <= left || bottom <= top; }

private:
    static int Distance(LONG from, LONG to)
    {
        return static_cast<int>(static_cast<DWORD>(to) - static_cast<DWORD>(from));
    }
};

// Red in the low byte, then green, then blue; the high byte is 0.
using COLORREF = DWORD;

constexpr COLORREF RGB(unsigned nRed, unsigned nGreen, unsigned nBlue)
{
    return (nRed & 0xFFu) | (nGreen & 0xFFu) << 8 | (nBlue & 0xFFu) << 16;
}
