// Fails all allocations from each on while the classes of pictures work on a.bmp and a.gif of the directory
// given; the exit code names the case in which a result was neither of success nor of failure, or a handle
// was left behind. What escapes ends the program. Without a directory it makes regions.

#include "KXBitmap.h"
#include "KXGdiplusBitmap.h"
#include "KXGdiplusHelper.h"
#include "KXGdiplusImage.h"
#include "KXGifRender.h"
#include "KXMemoryDC.h"
#include "platform/Host.h"
#include "tests/support/GdiPlus.h"
#include "tests/support/ShortMemory.h"
#include <functional>
#include <random>
#include <utility>

namespace {

// Makes and moves regions when memory for them is short; names the step that went wrong.
int Regions()
{
    constexpr int nSide = 512;
    CKXBitmap bitmap;
    bitmap.AttachBitmap(CreateCompatibleBitmap(bitmap.GetHDC(), nSide, nSide));
    std::minstd_rand random(1);
    for (int y = 0; y < nSide; ++y)
        for (int x = 0; x < nSide; ++x)
            if (random() / 64 % 2 == 0) SetPixel(bitmap.GetHDC(), x, y, 0xFF);
    CRgn region;
    shortage::g_nMost = std::size_t{16} << 10; // less than the pixels of some rows
    bitmap.CreateBitmapRgn(region, 0, 0);
    if (region.GetSafeHandle()) return 1;
    shortage::g_nMost = SIZE_MAX;
    bitmap.CreateBitmapRgn(region, 0, 0);
    RECT before;
    RECT after;
    if (region.GetRgnBox(&before) != COMPLEXREGION) return 2;
    shortage::g_nMost = std::size_t{64} << 10;
    if (OffsetRgn(region, INT32_MAX - nSide / 2, 0) != RGN_ERROR) return 3; // half of it would be lost
    return region.GetRgnBox(&after) == COMPLEXREGION && before == after ? 0 : 4;
}

} // namespace

int main(int nArgs, char** argv)
{
    if (nArgs < 2) return Regions();
    const test::GdiPlus gdiPlus;
    CKXMemoryDC surface;
    surface.Create(40, 30);
    CDC& dc = surface.GetDC();
    const CString strBmp = CString(argv[1]) + "a.bmp";
    const CString strGif = CString(argv[1]) + "a.gif";
    const CString strOut = CString(argv[1]) + "out";
    const CString strMime = "image/png";
    const CRect rc(0, 0, 9, 9);
    BYTE bytes[] = "no picture";
    DWORD pixels[6]{};
    BYTE* pData = nullptr;
    int nSize = 0;
    CKXGdiplusBitmap empty;
    CKXGdiplusBitmap bitmap;
    CKXGdiplusImage image;
    CKXGifRender gif;
    const std::function<int()> cases[] = {
        [&] { return bitmap.Load(strBmp), 1; },
        [&] { return bitmap.Load(3, 2, pixels), CKXGdiplusBitmap(bitmap).IsValid(); },
        [&] { return bitmap.Load(bytes, sizeof(bytes)); },
        [&] { return CKXGdiplusBitmap(surface.GetHBitmap()).IsValid(); },
        [&] { return bitmap.FitRender(&dc, rc); },
        [&] { return bitmap.PaveRender(&dc, rc), 1; },
        [&] { return empty.SaveToFile(strOut, strMime); },
        [&] { return bitmap.SaveToFile(strOut, strMime); },
        [&] { return bitmap.ThumbnailImage(&pData, nSize, 4, 4); },
        [&] { return image.Load(strBmp); },
        [&] { return image.ToThumbnailImage(4, 4); },
        [&] { return image.SaveGrayPic(strOut); },
        [&] { return image.Rotate(Gdiplus::Rotate90FlipNone), 1; },
        [&] { return image.GetImageData(&pData, nSize); },
        [&] { return image.SaveThumbnailImage(strOut, 3, 3, strMime); },
        [&] { return gif.Load(strGif); },
        [&] { return gif.Play() && gif.Playing(1000), gif.Render(&dc, 0, 0), 1; },
        [&] { return CKXGdiplusHelper::DrawLinearGradientRect(dc, rc, 1, 2, 1), 1; },
        [&] { return CKXGdiplusHelper::DrawGradientRoundRect(dc, 1, 2, rc, 4, 4, 1, 3), 1; },
        [&] { return CKXGdiplusHelper::DrawPathGradientRect(dc, rc, 1, 2), 1; },
    };
    // The C library ends the process when a thread's first use of the JPEG library finds no memory.
    image.Load(strBmp);
    image.SaveGrayPic(strOut);
    image.Free();
    shortage::g_bAll = true;
    const int nHandles = KXHost::LiveHandles();
    for (int nCase = 1; const auto& work : cases) {
        for (int nFail = 0, bDone = 0; !bDone; ++nFail) {
            bitmap.Load(strBmp);
            if (!image.Load(strBmp) || !gif.Load(strGif)) return 99;
            gif.Stop();
            shortage::g_nLeft = nFail;
            const int nResult = work();
            bDone = shortage::g_nLeft > 0;
            shortage::g_nLeft = -1;
            bitmap.Free();
            image.Free();
            gif.Load(CString());
            delete[] std::exchange(pData, nullptr);
            if (nResult != 0 && nResult != 1) return nCase;
            if (KXHost::LiveHandles() != nHandles) return 100 + nCase;
        }
        ++nCase;
    }
    return 0;
}
