#include "platform/gdi/DeviceContext.h"

#include <utility>

using namespace kx::gdi;

COLORREF SetTextColor(HDC hDC, COLORREF clr)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? std::exchange(context->textColor, clr & COLOR_BITS) : CLR_INVALID;
}

COLORREF GetTextColor(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? context->textColor : CLR_INVALID;
}

COLORREF SetBkColor(HDC hDC, COLORREF clr)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? std::exchange(context->backColor, clr & COLOR_BITS) : CLR_INVALID;
}

COLORREF GetBkColor(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? context->backColor : CLR_INVALID;
}

int SetBkMode(HDC hDC, int nMode)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context || (nMode != TRANSPARENT && nMode != OPAQUE)) return 0;
    return std::exchange(context->backMode, nMode);
}

int GetBkMode(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? context->backMode : 0;
}
