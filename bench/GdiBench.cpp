#include "bench/Loop.h"
#include "bench/Surfaces.h"

#include <algorithm>
#include <cairo/cairo.h>
#include <cstring>
#include <pixman.h>
#include <random>

// Block copies and regions. Pictures are of 32 bits a pixel, source and destination of one size; a copy takes
// all of it.

using namespace bench;

namespace {

constexpr DWORD dwKey = 0x00FF00FF;

// Half of the pixels are of the key colour: in runs of 16 pixels, or at random.
enum class Pattern
{
    Runs,
    Noise
};

Pixels MakePixels(Size size, Pattern pattern)
{
    std::minstd_rand random(1);
    Pixels pixels(size.Count());
    for (std::size_t n = 0; n < pixels.size(); ++n) {
        const bool bKey = pattern == Pattern::Runs ? n / 16 % 2 == 0 : random() / 64 % 2 == 0;
        pixels[n] = bKey ? dwKey : static_cast<DWORD>(n * 2654435761u & 0xFFFFFE);
    }
    return pixels;
}

// The pixels on black after a copy without the key colour.
Pixels Unkeyed(Pixels pixels)
{
    std::replace(pixels.begin(), pixels.end(), dwKey, DWORD{0});
    return pixels;
}

struct FreeImage
{
    void operator()(pixman_image_t* p) const { pixman_image_unref(p); }
};
using PixmanImage = std::unique_ptr<pixman_image_t, FreeImage>;

PixmanImage MakePixman(Size size, Pixels& pixels)
{
    return PixmanImage(
        pixman_image_create_bits(PIXMAN_x8r8g8b8, size.cx, size.cy, pixels.data(), size.cx * 4));
}

// ---- Copies

void CopyOurs(benchmark::State& state, Size size)
{
    const Ours from(size, MakePixels(size, Pattern::Noise));
    const Ours to(size);
    for (auto _ : bench::Loop(state))
        BitBlt(to, 0, 0, size.cx, size.cy, from, 0, 0, SRCCOPY);
    if (!Shows(to, size, MakePixels(size, Pattern::Noise).data())) state.SkipWithError("not copied");
}

void CopyMemcpy(benchmark::State& state, Size size)
{
    const auto from = MakePixels(size, Pattern::Noise);
    Pixels to(size.Count());
    const auto nRow = static_cast<std::size_t>(size.cx);
    for (auto _ : bench::Loop(state)) {
        for (std::size_t n = 0; n < from.size(); n += nRow)
            std::memcpy(to.data() + n, from.data() + n, nRow * 4);
        benchmark::ClobberMemory();
    }
    if (to != from) state.SkipWithError("not copied");
}

void CopyPixman(benchmark::State& state, Size size)
{
    auto pixels = MakePixels(size, Pattern::Noise);
    Pixels target(size.Count());
    const auto from = MakePixman(size, pixels);
    const auto to = MakePixman(size, target);
    for (auto _ : bench::Loop(state))
        pixman_image_composite32(PIXMAN_OP_SRC, from.get(), nullptr, to.get(), 0, 0, 0, 0, 0, 0, size.cx,
                                 size.cy);
    if (target != pixels) state.SkipWithError("not copied");
}

void BlitSdl(benchmark::State& state, Size size, Pattern pattern, bool bKeyed)
{
    auto pixels = MakePixels(size, pattern);
    Pixels target(size.Count());
    const auto from = MakeSdl(size, pixels);
    const auto to = MakeSdl(size, target);
    SDL_SetSurfaceBlendMode(from.get(), SDL_BLENDMODE_NONE);
    if (bKeyed) SDL_SetColorKey(from.get(), SDL_TRUE, dwKey);
    for (auto _ : bench::Loop(state))
        SDL_BlitSurface(from.get(), nullptr, to.get(), nullptr);
    if (target != (bKeyed ? Unkeyed(pixels) : pixels)) state.SkipWithError("not copied");
}

// A copy of 8 by 8 pixels under a clip of one rectangle, or of one for every second pixel of 256 by 256.
void CopyClipped(benchmark::State& state, bool bMany)
{
    constexpr Size size{256, 256};
    std::vector<RECT> chess;
    for (int y = 0; y < size.cy; ++y)
        for (int x = y % 2; x < size.cx; x += 2)
            chess.push_back({x, y, x + 1, y + 1});
    const Ours to(size);
    const Ours from({8, 8}, Pixels(64, 0xFFFFFF));
    const HRGN rgn = bMany ? CreateRectsRgn(chess.data(), static_cast<int>(chess.size()))
                           : CreateRectRgn(0, 0, size.cx, size.cy);
    SelectClipRgn(to, rgn);
    DeleteObject(rgn);
    for (auto _ : bench::Loop(state))
        BitBlt(to, 124, 124, 8, 8, from, 0, 0, SRCCOPY);
    if (GetPixel(to, 128, 128) != 0xFFFFFF) state.SkipWithError("not copied");
}

// ---- Copies with a colour key

void KeyedOurs(benchmark::State& state, Size size, Pattern pattern)
{
    const Ours from(size, MakePixels(size, pattern));
    const Ours to(size);
    const COLORREF clrKey = RGB(dwKey >> 16, dwKey >> 8, dwKey);
    for (auto _ : bench::Loop(state))
        TransparentBlt(to, 0, 0, size.cx, size.cy, from, 0, 0, size.cx, size.cy, clrKey);
    if (!Shows(to, size, Unkeyed(MakePixels(size, pattern)).data())) state.SkipWithError("not copied");
}

void KeyedSelect(benchmark::State& state, Size size, Pattern pattern)
{
    const auto source = MakePixels(size, pattern);
    Pixels target(size.Count());
    const DWORD* from = source.data();
    DWORD* to = target.data();
    const std::size_t nPixels = source.size();
    for (auto _ : bench::Loop(state)) {
        for (std::size_t n = 0; n < nPixels; ++n)
            to[n] = (from[n] & 0xFFFFFF) == dwKey ? to[n] : from[n];
        benchmark::ClobberMemory();
    }
    if (target != Unkeyed(source)) state.SkipWithError("not copied");
}

// ---- Regions of 1024 by 1024 pixels from the runs of their rows

constexpr int nSide = 1024;

template <class IsIn>
std::vector<RECT> MakeRuns(IsIn&& isIn)
{
    std::vector<RECT> runs;
    for (int y = 0; y < nSide; ++y)
        for (int x = 0; x < nSide; ++x) {
            const int nFirst = x;
            while (x < nSide && isIn(x, y))
                ++x;
            if (x > nFirst) runs.push_back({nFirst, y, x, y + 1});
        }
    return runs;
}

std::vector<RECT> MakeRuns(const std::string& shape)
{
    constexpr int nHalf = nSide / 2;
    if (shape == "disc")
        return MakeRuns([](int x, int y) {
            return (x - nHalf) * (x - nHalf) + (y - nHalf) * (y - nHalf) < nHalf * nHalf;
        });
    if (shape == "checkerboard") return MakeRuns([](int x, int y) { return (x + y) % 2 == 0; });
    return MakeRuns([random = std::minstd_rand(1)](int, int) mutable { return random() / 64 % 2 == 0; });
}

bool Covers(const std::vector<RECT>& runs)
{
    const Size size{nSide, nSide};
    Pixels wanted(size.Count());
    for (const RECT& run : runs)
        std::fill_n(wanted.begin() + run.top * nSide + run.left, run.right - run.left, 0xFFFFFF);
    const Ours paper(size);
    const HRGN hRgn = CreateRectsRgn(runs.data(), static_cast<int>(runs.size()));
    FillRgn(paper, hRgn, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    DeleteObject(hRgn);
    return Shows(paper, size, wanted.data());
}

void RegionOurs(benchmark::State& state, const std::string& shape)
{
    const auto runs = MakeRuns(shape);
    if (!Covers(runs)) state.SkipWithError("another region");
    for (auto _ : bench::Loop(state))
        DeleteObject(CreateRectsRgn(runs.data(), static_cast<int>(runs.size())));
}

void RegionCairo(benchmark::State& state, const std::string& shape)
{
    std::vector<cairo_rectangle_int_t> rects;
    for (const RECT& run : MakeRuns(shape))
        rects.push_back({run.left, run.top, run.right - run.left, 1});
    for (auto _ : bench::Loop(state))
        cairo_region_destroy(cairo_region_create_rectangles(rects.data(), static_cast<int>(rects.size())));
}

const int registered = [] {
    for (const Size size : {Size{64, 64}, Size{256, 256}, Size{1920, 1080}}) {
        const std::string at = "_" + std::to_string(size.cx) + "x" + std::to_string(size.cy);
        Register("copy" + at + "/ours", CopyOurs, size);
        Register("copy" + at + "/memcpy", CopyMemcpy, size);
        Register("copy" + at + "/pixman", CopyPixman, size);
        Register("copy" + at + "/sdl2", BlitSdl, size, Pattern::Noise, false);
        for (const auto& [name, pattern] :
             {std::pair{"keyed_runs", Pattern::Runs}, {"keyed_noise", Pattern::Noise}}) {
            Register(name + at + "/ours", KeyedOurs, size, pattern);
            Register(name + at + "/select_loop", KeyedSelect, size, pattern);
            Register(name + at + "/sdl2", BlitSdl, size, pattern, true);
        }
    }
    Register("clip_32768/ours", CopyClipped, true);
    Register("clip_32768/1_rectangle", CopyClipped, false);
    for (const std::string shape : {"disc", "checkerboard", "noise"}) {
        Register("region_" + shape + "/ours", RegionOurs, shape);
        Register("region_" + shape + "/cairo", RegionCairo, shape);
    }
    return 0;
}();

} // namespace
