#include "bench/Surfaces.h"

#include <KXBitmap.h>
#include <cairo/cairo.h>
#include <cstring>
#include <pixman.h>
#include <random>

// What is built of block copies, regions and text: fills, regions from a colour, letters.

using namespace bench;

namespace {

constexpr DWORD dwKey = 0x00FF00FF;

Pixels MakePixels(int nSide, const std::string& shape)
{
    std::minstd_rand random(1);
    const auto isKey = [&](int x, int y) {
        const int nHalf = nSide / 2;
        if (shape == "disc") return (x - nHalf) * (x - nHalf) + (y - nHalf) * (y - nHalf) >= nHalf * nHalf;
        return shape == "checkerboard" ? (x + y) % 2 != 0 : random() / 64 % 2 != 0;
    };
    Pixels pixels;
    for (int y = 0; y < nSide; ++y)
        for (int x = 0; x < nSide; ++x)
            pixels.push_back(isKey(x, y) ? dwKey : 0x00112233);
    return pixels;
}

// ---- A bar of 1000 by 30 from a state of 30 by 30, of which 5 pixels at each end are fixed

constexpr Size bar{1000, 30};
constexpr Size tile{30, 30};
constexpr int nEnd = 5;

void FillOurs(benchmark::State& state)
{
    const Ours paper(bar);
    CKXBitmap bitmap;
    bitmap.AttachBitmap(CreateCompatibleBitmap(paper, tile.cx, tile.cy));
    bitmap.SetFillParam(nEnd, nEnd, 1);
    CDC* pDC = CDC::FromHandle(paper);
    for (auto _ : state)
        bitmap.DrawFill(pDC, CRect(0, 0, bar.cx, bar.cy), 0);
}

void FillSdl(benchmark::State& state)
{
    Pixels pixels(tile.Count());
    Pixels target(bar.Count());
    const auto from = MakeSdl(tile, pixels);
    const auto to = MakeSdl(bar, target);
    SDL_SetSurfaceBlendMode(from.get(), SDL_BLENDMODE_NONE);
    const auto blit = [&](int x, int xSrc, int cx) {
        const SDL_Rect source{xSrc, 0, cx, tile.cy};
        SDL_Rect place{x, 0, 0, 0};
        SDL_BlitSurface(from.get(), &source, to.get(), &place);
    };
    constexpr int nMiddle = tile.cx - 2 * nEnd;
    constexpr int nRoom = bar.cx - 2 * nEnd;
    for (auto _ : state) {
        for (int done = 0; done < nRoom; done += nMiddle)
            blit(nEnd + done, nEnd, std::min(nRoom - done, nMiddle));
        blit(0, 0, nEnd);
        blit(bar.cx - nEnd, tile.cx - nEnd, nEnd);
    }
}

// ---- The region of what isn't of the key colour

void RegionOurs(benchmark::State& state, int nSide, const std::string& shape, int nTimes)
{
    const Size size{nSide, nSide};
    const HBITMAP hBitmap = CreateCompatibleBitmap(Ours({1, 1}), nSide, nSide);
    CKXBitmap bitmap;
    bitmap.AttachBitmap(hBitmap);
    BitBlt(bitmap.GetHDC(), 0, 0, nSide, nSide, Ours(size, MakePixels(nSide, shape)), 0, 0, SRCCOPY);
    for (auto _ : state)
        for (int n = 0; n < nTimes; ++n) {
            CRgn rgn;
            bitmap.CreateBitmapRgn(rgn, RGB(dwKey >> 16, dwKey >> 8, dwKey), 0);
        }
}

void RegionPixman(benchmark::State& state, int nSide, const std::string& shape)
{
    const Pixels pixels = MakePixels(nSide, shape);
    for (auto _ : state) {
        std::vector<pixman_box32_t> runs;
        for (int y = 0; y < nSide; ++y) {
            const DWORD* row = pixels.data() + static_cast<std::ptrdiff_t>(y) * nSide;
            for (int x = 0; x < nSide;) {
                while (x < nSide && row[x] == dwKey)
                    ++x;
                const int nFirst = x;
                while (x < nSide && row[x] != dwKey)
                    ++x;
                if (x > nFirst) runs.push_back({nFirst, y, x, y + 1});
            }
        }
        pixman_region32_t region;
        pixman_region32_init_rects(&region, runs.data(), static_cast<int>(runs.size()));
        pixman_region32_fini(&region);
    }
}

// ---- A letter, measured and drawn again

constexpr const char* pszFace = "DejaVu Sans";
constexpr int nHeight = 20;

void LetterOurs(benchmark::State& state, bool bThreaded)
{
    if (bThreaded) HaveHadThreads();
    const Ours paper({64, 32});
    LOGFONTA log{};
    log.lfHeight = -nHeight;
    std::strcpy(log.lfFaceName, pszFace);
    const HFONT hFont = CreateFontIndirectA(&log);
    const HGDIOBJ hOld = SelectObject(paper, hFont);
    SetBkMode(paper, TRANSPARENT);
    for (auto _ : state) {
        RECT rect{4, 2, 60, 30};
        DrawTextA(paper, "g", 1, &rect, DT_CALCRECT | DT_SINGLELINE | DT_VCENTER);
        DrawTextA(paper, "g", 1, &rect, DT_SINGLELINE | DT_VCENTER);
    }
    SelectObject(paper, hOld);
    DeleteObject(hFont);
}

void LetterCairo(benchmark::State& state, bool bThreaded)
{
    if (bThreaded) HaveHadThreads();
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 64, 32);
    cairo_t* cairo = cairo_create(surface);
    cairo_select_font_face(cairo, pszFace, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, nHeight);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    for (auto _ : state) {
        cairo_text_extents_t extents;
        cairo_text_extents(cairo, "g", &extents);
        cairo_move_to(cairo, 4, 24);
        cairo_show_text(cairo, "g");
    }
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}

const int registered = [] {
    Register("draw_fill/ours", FillOurs);
    Register("draw_fill/sdl2", FillSdl);
    for (const std::string shape : {"disc", "checkerboard", "noise"}) {
        Register("bitmap_rgn_" + shape + "_1024/ours", RegionOurs, 1024, shape, 1);
        Register("bitmap_rgn_" + shape + "_1024/scan_pixman", RegionPixman, 1024, shape);
    }
    // 2048 by 2048 pixels are 64 times 256 by 256.
    Register("bitmap_rgn_noise_2048/ours", RegionOurs, 2048, "noise", 1);
    Register("bitmap_rgn_noise_2048/256_64_times", RegionOurs, 256, "noise", 64);
    for (const std::string work : {"letter", "letter_threaded"}) {
        Register(work + "/ours", LetterOurs, work != "letter");
        Register(work + "/cairo", LetterCairo, work != "letter");
    }
    return 0;
}();

} // namespace
