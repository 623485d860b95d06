#include "bench/CairoPaper.h"
#include "bench/Loop.h"
#include "bench/Surfaces.h"

#include <KXBitmap.h>
#include <cstring>
#include <pixman.h>
#include <random>

// Works that are built of block copies, regions and text: fills, regions from a colour, letters.

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

Pixels TilePixels()
{
    Pixels pixels(tile.Count());
    for (std::size_t n = 0; n < pixels.size(); ++n)
        pixels[n] = static_cast<DWORD>(n * 2654435761u & 0xFFFFFF);
    return pixels;
}

class SdlBar
{
public:
    SdlBar() { SDL_SetSurfaceBlendMode(m_from.get(), SDL_BLENDMODE_NONE); }
    void Fill()
    {
        constexpr int nMiddle = tile.cx - 2 * nEnd;
        constexpr int nRoom = bar.cx - 2 * nEnd;
        for (int done = 0; done < nRoom; done += nMiddle)
            Blit(nEnd + done, nEnd, std::min(nRoom - done, nMiddle));
        Blit(0, 0, nEnd);
        Blit(bar.cx - nEnd, tile.cx - nEnd, nEnd);
    }
    const DWORD* Shown() const { return m_target.data(); }

private:
    void Blit(int x, int xSrc, int cx)
    {
        const SDL_Rect source{xSrc, 0, cx, tile.cy};
        SDL_Rect place{x, 0, 0, 0};
        SDL_BlitSurface(m_from.get(), &source, m_to.get(), &place);
    }

    Pixels m_pixels = TilePixels();
    Pixels m_target = Pixels(bar.Count());
    const SdlSurface m_from = MakeSdl(tile, m_pixels);
    const SdlSurface m_to = MakeSdl(bar, m_target);
};

void FillOurs(benchmark::State& state)
{
    const Ours paper(bar);
    CKXBitmap bitmap;
    bitmap.AttachBitmap(CreateCompatibleBitmap(paper, tile.cx, tile.cy));
    BitBlt(bitmap.GetHDC(), 0, 0, tile.cx, tile.cy, Ours(tile, TilePixels()), 0, 0, SRCCOPY);
    bitmap.SetFillParam(nEnd, nEnd, 1);
    CDC* pDC = CDC::FromHandle(paper);
    for (auto _ : bench::Loop(state))
        bitmap.DrawFill(pDC, CRect(0, 0, bar.cx, bar.cy), 0);
    SdlBar peer;
    peer.Fill();
    if (!Shows(paper, bar, peer.Shown())) state.SkipWithError("another picture than the peer's");
}

void FillSdl(benchmark::State& state)
{
    SdlBar peer;
    for (auto _ : bench::Loop(state))
        peer.Fill();
}

// ---- The region of what isn't of the key colour

// Fills a region with the colour that isn't the key.
bool Covers(const CRgn& rgn, int nSide, const Pixels& pixels)
{
    const Size size{nSide, nSide};
    const Ours paper(size, Pixels(size.Count(), dwKey));
    const HBRUSH hBrush = CreateSolidBrush(RGB(0x11, 0x22, 0x33));
    FillRgn(paper, rgn, hBrush);
    DeleteObject(hBrush);
    return Shows(paper, size, pixels.data());
}

void RegionOurs(benchmark::State& state, int nSide, const std::string& shape, int nTimes)
{
    const Size size{nSide, nSide};
    const HBITMAP hBitmap = CreateCompatibleBitmap(Ours({1, 1}), nSide, nSide);
    CKXBitmap bitmap;
    bitmap.AttachBitmap(hBitmap);
    BitBlt(bitmap.GetHDC(), 0, 0, nSide, nSide, Ours(size, MakePixels(nSide, shape)), 0, 0, SRCCOPY);
    const COLORREF clrKey = RGB(dwKey >> 16, dwKey >> 8, dwKey);
    for (auto _ : bench::Loop(state))
        for (int n = 0; n < nTimes; ++n) {
            CRgn rgn;
            bitmap.CreateBitmapRgn(rgn, clrKey, 0);
        }
    CRgn rgn; // behind the loop, whose time depends on what the heap has had before
    bitmap.CreateBitmapRgn(rgn, clrKey, 0);
    if (!Covers(rgn, nSide, MakePixels(nSide, shape))) state.SkipWithError("another region");
}

void RegionPixman(benchmark::State& state, int nSide, const std::string& shape)
{
    const Pixels pixels = MakePixels(nSide, shape);
    for (auto _ : bench::Loop(state)) {
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

constexpr Size letter{64, 32};

void DrawLetter(HDC hDC)
{
    RECT rect{4, 2, 60, 30};
    DrawTextA(hDC, "g", 1, &rect, DT_CALCRECT | DT_SINGLELINE | DT_VCENTER);
    DrawTextA(hDC, "g", 1, &rect, DT_SINGLELINE | DT_VCENTER);
}

void DrawLetter(cairo_t* cairo)
{
    cairo_text_extents_t extents;
    cairo_text_extents(cairo, "g", &extents);
    cairo_move_to(cairo, 4, 24);
    cairo_show_text(cairo, "g");
}

void LetterOurs(benchmark::State& state, bool bThreaded)
{
    if (bThreaded) HaveHadThreads();
    const Ours paper(letter);
    LOGFONTA log{};
    log.lfHeight = -nFontHeight;
    std::strcpy(log.lfFaceName, pszFace);
    const HFONT hFont = CreateFontIndirectA(&log);
    const HGDIOBJ hOld = SelectObject(paper, hFont);
    SetBkMode(paper, TRANSPARENT);
    SetTextColor(paper, RGB(255, 255, 255));
    const CairoPaper peer(letter);
    DrawLetter(static_cast<HDC>(paper));
    DrawLetter(static_cast<cairo_t*>(peer));
    if (!InkOf(paper, letter).IsAbout(peer.Ink())) state.SkipWithError("another letter than the peer's");
    for (auto _ : bench::Loop(state))
        DrawLetter(static_cast<HDC>(paper));
    SelectObject(paper, hOld);
    DeleteObject(hFont);
}

void LetterCairo(benchmark::State& state, bool bThreaded)
{
    if (bThreaded) HaveHadThreads();
    const CairoPaper paper(letter);
    for (auto _ : bench::Loop(state))
        DrawLetter(static_cast<cairo_t*>(paper));
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
