#pragma once

#include "KXExport.h"
#include "platform/Geometry.h"

#include <vector>

// Small numeric routines. Any thread.
class KX_API CKXNum
{
public:
    // Appends to `vecOut` each run of decimal digits in the text as a number, and returns the size of
    // `vecOut`, which isn't emptied first. Every other byte separates, signs and points too. A number of more
    // than 32 bits wraps. Null counts as the empty text.
    static int ApartNums(const char* pszText, std::vector<int>& vecOut);

    // The product of all integers from `nLow` to `nHigh`, wrapped to 32 bits; 1 if `nLow` is the greater.
    static int CalcFactorial(int nHigh, int nLow);

    // Whether two rectangles meet. Unlike with the platform's function of this name, rectangles that share
    // no more than an edge or a corner do.
    static bool IntersectRect(const RECT& rc1, const RECT& rc2);
};
