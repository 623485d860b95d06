#include "KXMemoryDC.h"

#include "platform/Window.h"

#include <utility>

CKXMemoryDC::~CKXMemoryDC()
{
    Destroy();
}

void CKXMemoryDC::Destroy()
{
    if (CGdiObject* pOld = std::exchange(m_pOldBitmap, nullptr)) m_dc.SelectObject(pOld);
    m_dc.DeleteDC();
    m_bitmap.DeleteObject();
}

void CKXMemoryDC::Create(int cx, int cy)
{
    Destroy();
    m_size = CSize(cx, cy);
    const HDC hDesktop = ::GetDC(GetDesktopWindow());
    CDC* pDesktop = CDC::FromHandle(hDesktop);
    m_dc.CreateCompatibleDC(pDesktop);
    m_bitmap.CreateCompatibleBitmap(pDesktop, cx, cy);
    m_pOldBitmap = m_dc.SelectObject(static_cast<CGdiObject*>(&m_bitmap));
    ReleaseDC(GetDesktopWindow(), hDesktop);
}
