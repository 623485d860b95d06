#include "include/platform/Wnd.h"

CPaintDC::CPaintDC(CWnd* pWnd) : m_hWnd(pWnd ? pWnd->m_hWnd : nullptr)
{
    Attach(BeginPaint(m_hWnd, &m_ps));
}

CPaintDC::~CPaintDC()
{
    Detach();
    EndPaint(m_hWnd, &m_ps);
}

CClientDC::CClientDC(CWnd* pWnd) : m_hWnd(pWnd ? pWnd->m_hWnd : nullptr)
{
    if (m_hWnd) Attach(GetDC(m_hWnd));
}

CClientDC::~CClientDC()
{
    ReleaseDC(m_hWnd, Detach());
}
