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
    if (CGdiObject* pOld = std::exchange(m_pOldBitmap, nullptr)) SelectObject(pOld);
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
    m_bitmap.CreateCompatibleBitmap(pDC, m_rect.Width(), m_rect.Height());
    m_pOldBitmap = SelectObject(static_cast<CGdiObject*>(&m_bitmap));
    if (clrBk != 0xFFFFFFFF) FillSolidRect(&m_rect, static_cast<COLORREF>(clrBk));
    m_bValid = 1;
}

void CKXMemDC::FromDC()
{
    BitBlt(0, 0, m_rect.Width(), m_rect.Height(), m_pDC, m_rect.left, m_rect.top, SRCCOPY);
}
