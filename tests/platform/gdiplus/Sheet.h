#pragma once

#include "tests/support/GdiPlus.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

#include <cmath>
#include <limits>

// Small pictures over pixels that the test holds, to draw and to draw on.
namespace test {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;
using Row = std::vector<ARGB>;

// GDI+ is started, and nothing may be left behind.
class DrawingTest : public LeakTest
{
    const GdiPlus m_gdiPlus;
};

class Sheet
{
public:
    Sheet(int nWidth, Row of, PixelFormat format = PixelFormat32bppARGB)
        : pixels(std::move(of)),
          bitmap(nWidth, static_cast<int>(pixels.size()) / nWidth, nWidth * 4, format,
                 reinterpret_cast<BYTE*>(pixels.data())),
          graphics(&bitmap)
    {
        EXPECT_EQ(bitmap.GetLastStatus(), Ok);
    }
    // Transparent, or black.
    Sheet(int nWidth, int nHeight, PixelFormat format = PixelFormat32bppARGB)
        : Sheet(nWidth, Row(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight)), format)
    {
    }

    Row pixels;
    Bitmap bitmap;
    Graphics graphics;
};

// An opaque gray, and a row of them.
constexpr ARGB Gray(int n)
{
    return 0xFF000000 | static_cast<ARGB>(n) * 0x010101;
}

inline Row Grays(const std::vector<int>& values)
{
    Row row(values.size());
    std::transform(values.begin(), values.end(), row.begin(), Gray);
    return row;
}

// The lowest channel of each pixel.
inline std::vector<int> Blues(const Row& pixels)
{
    std::vector<int> blues;
    for (const ARGB pixel : pixels)
        blues.push_back(static_cast<int>(pixel & 255));
    return blues;
}

} // namespace test
