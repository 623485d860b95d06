#pragma once

#include "KXMemoryDC.h"
#include "platform/Wnd.h"

// Double-buffered painting: made on the stack of a paint handler and drawn into, it copies itself to the real
// surface in its destructor. That surface stays the caller's and outlives it.
class KX_API CKXPaintMemoryDC : public CKXMemoryDC
{
public:
    // Covers the client area of `pWnd`. Unless `clrBk` is 0 the area is filled with it.
    CKXPaintMemoryDC(CWnd* pWnd, CDC* pDC, unsigned long clrBk);
    // Covers `rect`, whose top left corner is 0, 0 of the memory surface. Nothing is filled.
    CKXPaintMemoryDC(CDC* pDC, const CRect& rect);
    // Copies to the surface given, unless that was null or there is no bitmap, then releases.
    ~CKXPaintMemoryDC() override;

    // The memory surface, for calls that draw.
    operator CDC&() { return m_dc; }
    operator CDC*() { return &m_dc; }

private:
    CDC* m_pDestDC;
    CRect m_rcDest;
};
