#include "KXMemoryDC.h"

#include "platform/Window.h"

#include <utility>

CKXMemoryDC::~CKXMemoryDC()
{
    Destroy();
}

void CKXMemoryDC::Destroy()
{
    m_pOldBitmap = nullptr;
    if (HGDIOBJ hOld = std::exchange(m_hOldBitmap, nullptr)) ::SelectObject(m_dc, hOld);
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
    if (m_bitmap.CreateCompatibleBitmap(pDesktop, cx, cy)) {
        m_hOldBitmap = ::SelectObject(m_dc, m_bitmap);
        m_pOldBitmap = CGdiObject::FromHandle(m_hOldBitmap);
    } else {
        m_dc.DeleteDC();
    }
    ReleaseDC(GetDesktopWindow(), hDesktop);
}
