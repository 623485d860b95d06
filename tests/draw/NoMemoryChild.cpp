// Makes and moves regions when memory for them is short; the exit code names the step that went wrong.

#include "KXBitmap.h"

#include <cstdlib>
#include <new>
#include <random>

namespace {

std::size_t g_nMost = SIZE_MAX; // bytes of a block

} // namespace

// In place of the library's too.
void* operator new(std::size_t nBytes)
{
    void* const p = nBytes <= g_nMost ? std::malloc(nBytes) : nullptr;
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

int main()
{
    constexpr int nSide = 512;
    CKXBitmap bitmap;
    bitmap.AttachBitmap(CreateCompatibleBitmap(bitmap.GetHDC(), nSide, nSide));
    std::minstd_rand random(1);
    for (int y = 0; y < nSide; ++y)
        for (int x = 0; x < nSide; ++x)
            if (random() / 64 % 2 == 0) SetPixel(bitmap.GetHDC(), x, y, 0xFF);
    CRgn region;
    g_nMost = std::size_t{16} << 10; // less than the pixels of some rows
    bitmap.CreateBitmapRgn(region, 0, 0);
    if (region.GetSafeHandle()) return 1;
    g_nMost = SIZE_MAX;
    bitmap.CreateBitmapRgn(region, 0, 0);
    RECT before;
    RECT after;
    if (region.GetRgnBox(&before) != COMPLEXREGION) return 2;
    g_nMost = std::size_t{64} << 10;
    if (OffsetRgn(region, INT32_MAX - nSide / 2, 0) != RGN_ERROR) return 3; // half of it would be lost
    return region.GetRgnBox(&after) == COMPLEXREGION && before == after ? 0 : 4;
}
