#include "platform/gdi/Brush.h"
#include "platform/gdi/Pen.h"

#include <new>

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
    return static_cast<HBRUSH>(Add(std::make_shared<Brush>(clr)));
} catch (const std::bad_alloc&) {
    return nullptr;
}
