// Makes and moves regions when memory for them is short; the exit code names the step that went wrong.

#include "KXBitmap.h"
#include "tests/support/ShortMemory.h"

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
