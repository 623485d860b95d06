#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// A skinned window: a frame, a background, buttons with a key colour, a list. What is drawn is the same on
// all sides; nothing here is of any library.
namespace bench {

inline constexpr int cxWindow = 800, cyWindow = 600;
inline constexpr std::uint32_t dwKey = 0x00FF00FF; // 0x00RRGGBB, as all colours here

// A picture of the skin.
struct Art
{
    int cx;
    int cy;
    bool bKeyed; // its corners are of the key colour
};
inline constexpr std::array arts{Art{400, 30, false}, Art{8, 200, false}, Art{400, 8, false},
                                 Art{64, 64, false},  Art{75, 23, true},  Art{13, 13, true},
                                 Art{21, 21, true},   Art{80, 22, false}};

constexpr std::uint32_t PixelOf(const Art& art, int x, int y)
{
    const bool bCorner = (x < 3 || x >= art.cx - 3) && (y < 3 || y >= art.cy - 3);
    const int nShade = 128 + (x * 7 + y * 3) % 96;
    return art.bKeyed && bCorner ? dwKey : static_cast<std::uint32_t>(nShade * 0x010101);
}

// The name of its file where there is one.
inline std::string FileOf(std::size_t nArt)
{
    return "art" + std::to_string(nArt) + ".bmp";
}

// Gives the place of a picture by its number. `bFill` repeats it over the rectangle.
struct Step
{
    std::size_t nArt;
    int x;
    int y;
    int cx;
    int cy;
    bool bFill;
};

inline std::vector<Step> Steps()
{
    std::vector<Step> steps{{3, 8, 30, 784, 562, true},
                            {0, 0, 0, 800, 30, true},
                            {1, 0, 30, 8, 562, true},
                            {1, 792, 30, 8, 562, true},
                            {2, 0, 592, 800, 8, true}};
    for (int n = 0; n < 4; ++n)
        steps.push_back({6, 700 + n * 24, 4, 21, 21, false});
    for (int n = 0; n < 8; ++n)
        steps.push_back({4, 20 + n * 90, 555, 75, 23, false});
    for (int n = 0; n < 10; ++n)
        steps.push_back({5, 20 + n % 2 * 150, 420 + n / 2 * 22, 13, 13, false});
    for (int n = 0; n < 6; ++n)
        steps.push_back({7, 20 + n * 120, 60, 120, 22, true});
    return steps;
}

// A row of the list.
struct Stripe
{
    int x;
    int y;
    int cx;
    int cy;
    std::uint32_t color;
};

inline std::vector<Stripe> Stripes()
{
    std::vector<Stripe> stripes;
    for (int n = 0; n < 15; ++n)
        stripes.push_back({20, 82 + n * 20, 720, 20, n % 2 ? 0xF0F4FAu : 0xFFFFFFu});
    return stripes;
}

} // namespace bench
