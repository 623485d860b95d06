#pragma once

#include "KXExport.h"
#include "platform/Dc.h"

// A memory surface that mirrors a rectangle of another surface. It can take that rectangle's present pixels
// in; it never copies anything back. For one thread at a time.
class KX_API CKXMemDC : public CDC
{
    DECLARE_DYNAMIC(CKXMemDC)

public:
    // No surface yet; Create follows.
    CKXMemDC() = default;
    CKXMemDC(CDC* pDC, const CRect& rect, unsigned long clrBk) : CKXMemDC() { Create(pDC, rect, clrBk); }
    // Releases surface and bitmap; nothing is copied anywhere.
    ~CKXMemDC() override;

    // Makes the surface, of the size of `rect`, or of the clip box of `pDC` where that is empty. `pDC` is not
    // null, stays the caller's, and is there whenever FromDC is called. Unless `clrBk` is 0xFFFFFFFF, `rect`
    // is filled with it in the surface's own coordinates: with a rectangle from 10, 10 on, only from there.
    // The surface of an earlier call is released. IsValid tells whether there is a surface; without a bitmap,
    // which may be too large, drawing on it does nothing.
    void Create(CDC* pDC, const CRect& rect, unsigned long clrBk);

    // 1 once the surface exists, else 0.
    int IsValid() const { return m_bValid; }
    // The surface's bitmap; it stays this object's.
    CBitmap& GetBitmap() { return m_bitmap; }

    // Copies the rectangle's present pixels from the mirrored surface to 0, 0. Without a surface nothing
    // happens.
    void FromDC();

private:
    void Release();
    void ClipToNothing();

    CDC* m_pDC = nullptr;
    CRect m_rect;
    CBitmap m_bitmap;
    CGdiObject* m_pOldBitmap = nullptr; // the thread's wrapper, which may end before this: never looked into
    int m_bValid = 0;
    HGDIOBJ m_hOldBitmap = nullptr; // what goes back
};
