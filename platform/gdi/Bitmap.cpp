#include "platform/gdi/Bitmap.h"

#include "platform/gdi/DeviceContext.h"

#include <new>

namespace kx::gdi {

int Bitmap::Describe(int nSize, void* pBuffer) const
{
    BITMAP record{};
    record.bmWidth = Width();
    record.bmHeight = Height();
    record.bmWidthBytes = static_cast<LONG>(RowBytes(Width(), depth, fromFile ? 32 : 16));
    record.bmPlanes = 1;
    record.bmBitsPixel = depth;
    return DescribeAs(record, nSize, pBuffer);
}

} // namespace kx::gdi

HBITMAP CreateCompatibleBitmap(HDC hDC, int cx, int cy)
try {
    using namespace kx::gdi;
    if (!FindAs<DeviceContext>(hDC)) return nullptr;
    auto pixels = Surface::Make(cx, cy);
    if (!pixels) return nullptr;
    return static_cast<HBITMAP>(Add(std::make_shared<Bitmap>(std::move(*pixels), WORD{32})));
} catch (const std::bad_alloc&) {
    return nullptr;
}
