#include "KXMemDC.h"

#include <utility>

IMPLEMENT_DYNAMIC(CKXMemDC, CDC)

CKXMemDC::~CKXMemDC()
{
    Release();
}

// In this order, so that the bitmap is no longer selected when it is deleted.
void CKXMemDC::Release()
{
    m_pOldBitmap = nullptr;
    if (HGDIOBJ hOld = std::exchange(m_hOldBitmap, nullptr)) ::SelectObject(m_hDC, hOld);
    DeleteDC();
    m_bitmap.DeleteObject();
    m_bValid = 0;
}

void CKXMemDC::Create(CDC* pDC, const CRect& rect, unsigned long clrBk)
{
    Release();
    m_pDC = pDC;
    m_rect = rect;
    if (rect.IsRectEmpty()) pDC->GetClipBox(&m_rect);
    if (!CreateCompatibleDC(pDC)) return;
    if (m_bitmap.CreateCompatibleBitmap(pDC, m_rect.Width(), m_rect.Height())) {
        m_hOldBitmap = ::SelectObject(m_hDC, m_bitmap);
        m_pOldBitmap = CGdiObject::FromHandle(m_hOldBitmap);
    } else {
        ClipToNothing();
    }
    const auto clr = static_cast<COLORREF>(clrBk);
    if (clr != CLR_INVALID) FillSolidRect(&m_rect, clr);
    m_bValid = 1;
}

// A surface of no use, whose own pixel is not to be drawn on.
void CKXMemDC::ClipToNothing()
{
    CRgn nothing;
    nothing.CreateRectRgn(0, 0, 0, 0);
    SelectClipRgn(&nothing);
}

void CKXMemDC::FromDC()
{
    BitBlt(0, 0, m_rect.Width(), m_rect.Height(), m_pDC, m_rect.left, m_rect.top, SRCCOPY);
}
