#include "KXPaintMemoryDC.h"

CKXPaintMemoryDC::CKXPaintMemoryDC(CWnd* pWnd, CDC* pDC, unsigned long clrBk) : m_pDestDC(pDC)
{
    pWnd->GetClientRect(&m_rcDest);
    Create(m_rcDest.Width(), m_rcDest.Height());
    if (const auto clr = static_cast<COLORREF>(clrBk)) m_dc.FillSolidRect(&m_rcDest, clr);
}

CKXPaintMemoryDC::CKXPaintMemoryDC(CDC* pDC, const CRect& rect) : m_pDestDC(pDC), m_rcDest(rect)
{
    Create(rect.Width(), rect.Height());
}

CKXPaintMemoryDC::~CKXPaintMemoryDC()
{
    if (m_pDestDC && GetHBitmap())
        m_pDestDC->BitBlt(m_rcDest.left, m_rcDest.top, m_rcDest.Width(), m_rcDest.Height(), &m_dc, 0, 0,
                          SRCCOPY);
}
