#include "platform/gdi/Brush.h"
#include "platform/gdi/Pen.h"

#include <new>

namespace kx::gdi {

int Pen::Describe(int nSize, void* pBuffer) const
{
    return DescribeAs(LOGPEN{style, {width, 0}, color}, nSize, pBuffer);
}

int Brush::Describe(int nSize, void* pBuffer) const
{
    return DescribeAs(LOGBRUSH{style, color, 0}, nSize, pBuffer);
}

} // namespace kx::gdi

HPEN CreatePen(int nStyle, int nWidth, COLORREF clr)
try {
    using namespace kx::gdi;
    if (nStyle != PS_SOLID && nStyle != PS_NULL) return nullptr;
    return static_cast<HPEN>(Add(std::make_shared<Pen>(static_cast<UINT>(nStyle), nWidth, clr)));
} catch (const std::bad_alloc&) {
    return nullptr;
}

HBRUSH CreateSolidBrush(COLORREF clr)
try {
    using namespace kx::gdi;
    return static_cast<HBRUSH>(Add(std::make_shared<Brush>(BS_SOLID, clr)));
} catch (const std::bad_alloc&) {
    return nullptr;
}
