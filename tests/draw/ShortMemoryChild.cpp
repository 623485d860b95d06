// Fails each allocation in turn while the classes of pictures work on a.bmp and a.gif of the directory given;
// the exit code names the case in which a result was neither of success nor of failure, or a handle was left
// behind. What escapes ends the program.

#include "KXGdiplusBitmap.h"
#include "KXGdiplusHelper.h"
#include "KXGdiplusImage.h"
#include "KXGifRender.h"
#include "KXMemoryDC.h"
#include "platform/Host.h"

#include <cstdlib>
#include <functional>
#include <limits>
#include <new>
#include <utility>

namespace {

constexpr int nAll = std::numeric_limits<int>::max();
int g_nLeft = nAll; // allocations until all fail

bool IsShort()
{
    if (g_nLeft == 0) return true;
    if (g_nLeft != nAll) --g_nLeft;
    return false;
}

} // namespace

// In place of what the library has, and the codecs' libraries too.
#if !defined(KX_SANITIZED)
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* malloc(std::size_t nBytes) noexcept
{
    return IsShort() ? nullptr : __libc_malloc(nBytes);
}
void* calloc(std::size_t nCount, std::size_t nBytes) noexcept
{
    return IsShort() ? nullptr : __libc_calloc(nCount, nBytes);
}
void* realloc(void* p, std::size_t nBytes) noexcept
{
    return IsShort() ? nullptr : __libc_realloc(p, nBytes);
}
}
#else // where only these can be
void* operator new(std::size_t nBytes, const std::nothrow_t&) noexcept
{
    return IsShort() ? nullptr : std::malloc(nBytes);
}
void* operator new(std::size_t nBytes)
{
    void* const p = operator new(nBytes, std::nothrow);
    if (!p) throw std::bad_alloc();
    return p;
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
#endif

int main(int, char** argv)
{
    std::uintptr_t nToken = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
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
    const int nHandles = KXHost::LiveHandles();
    for (int nCase = 1; const auto& work : cases) {
        for (int nFail = 0, bDone = 0; !bDone; ++nFail) {
            bitmap.Load(strBmp);
            if (!image.Load(strBmp) || !gif.Load(strGif)) return 99;
            gif.Stop();
            g_nLeft = nFail;
            const int nResult = work();
            bDone = g_nLeft > 0;
            g_nLeft = nAll;
            bitmap.Free();
            image.Free();
            gif.Load(CString());
            delete[] std::exchange(pData, nullptr);
            if (nResult != 0 && nResult != 1) return nCase;
            if (KXHost::LiveHandles() != nHandles) return 100 + nCase;
        }
        ++nCase;
    }
    Gdiplus::GdiplusShutdown(nToken);
    return 0;
}
