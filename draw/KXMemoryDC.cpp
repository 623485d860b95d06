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
    m_dc.Attach(::CreateCompatibleDC(hDesktop));
    m_bitmap.Attach(::CreateCompatibleBitmap(hDesktop, cx, cy));
    ReleaseDC(GetDesktopWindow(), hDesktop);
    m_hOldBitmap = ::SelectObject(m_dc, m_bitmap);
    if (m_hOldBitmap)
        m_pOldBitmap = CGdiObject::FromHandle(m_hOldBitmap);
    else
        Destroy();
}
