#include "include/platform/Dc.h"

#include "include/platform/Wnd.h"
#include "platform/framework/TempMap.h"
#include "platform/gdi/Object.h"
#include "platform/gdi/Rect.h"

#include <utility>

IMPLEMENT_DYNAMIC(CDC, CObject)

namespace {

bool IsAlive(HDC hDC)
{
    return ::GetBkMode(hDC) != 0;
}

void Bind(CDC& dc, HDC hDC)
{
    dc.m_hDC = hDC;
}

HDC HandleOf(const CDC* pDC)
{
    return pDC ? pDC->m_hDC : nullptr;
}

// Selects an object, if there is one, and gives the wrapper of what it displaced. Where memory for that
// lacks, nothing is displaced: the caller may end the object, which can't be deleted while it is selected.
// The wrapper of the object itself is made beforehand, so that the selection can be taken back without
// memory.
template <class Wrap>
auto Select(HDC hDC, const CGdiObject* pObject, Wrap&& wrap)
{
    if (!pObject) return wrap(HGDIOBJ{});
    wrap(pObject->m_hObject);
    const HGDIOBJ hOld = ::SelectObject(hDC, pObject->m_hObject);
    try {
        return wrap(hOld);
    } catch (...) {
        ::SelectObject(hDC, hOld);
        throw;
    }
}

} // namespace

CDC::~CDC()
{
    DeleteDC();
}

int CDC::Attach(HDC hDC)
{
    if (m_hDC || !hDC) return 0;
    m_hDC = hDC;
    return 1;
}

HDC CDC::Detach()
{
    return std::exchange(m_hDC, nullptr);
}

int CDC::CreateCompatibleDC(CDC* pDC)
{
    return m_hDC ? 0 : Attach(::CreateCompatibleDC(HandleOf(pDC)));
}

int CDC::DeleteDC()
{
    return m_hDC ? ::DeleteDC(Detach()) : 0;
}

CDC* CDC::FromHandle(HDC hDC)
{
    return kx::framework::TempMap<CDC, HDC, IsAlive, Bind>::OfThread(hDC);
}

CBitmap* CDC::SelectObject(CBitmap* pObject)
{
    return Select(m_hDC, pObject,
                  [](HGDIOBJ hOld) { return CBitmap::FromHandle(static_cast<HBITMAP>(hOld)); });
}

CPen* CDC::SelectObject(CPen* pObject)
{
    return Select(m_hDC, pObject, [](HGDIOBJ hOld) { return CPen::FromHandle(static_cast<HPEN>(hOld)); });
}

CBrush* CDC::SelectObject(CBrush* pObject)
{
    return Select(m_hDC, pObject, [](HGDIOBJ hOld) { return CBrush::FromHandle(static_cast<HBRUSH>(hOld)); });
}

CFont* CDC::SelectObject(CFont* pObject)
{
    return Select(m_hDC, pObject, [](HGDIOBJ hOld) { return CFont::FromHandle(static_cast<HFONT>(hOld)); });
}

CGdiObject* CDC::SelectObject(CGdiObject* pObject)
{
    return Select(m_hDC, pObject, [](HGDIOBJ hOld) { // a region gives a number
        return kx::FindHandle<kx::gdi::Object>(hOld) ? CGdiObject::FromHandle(hOld) : nullptr;
    });
}

int CDC::SelectObject(CRgn* pRgn)
{
    return pRgn && pRgn->m_hObject ? SelectClipRgn(pRgn) : RGN_ERROR;
}

CGdiObject* CDC::SelectStockObject(int nIndex)
{
    return CGdiObject::FromHandle(::SelectObject(m_hDC, GetStockObject(nIndex)));
}

void CDC::FillSolidRect(const RECT* pRect, COLORREF clr)
{
    if (!pRect) return;
    ::SetBkColor(m_hDC, clr);
    const CBrush brush(clr);
    ::FillRect(m_hDC, pRect, brush);
}

void CDC::FillSolidRect(int x, int y, int cx, int cy, COLORREF clr)
{
    const RECT rect{x, y, kx::gdi::ToSide(std::int64_t{x} + cx), kx::gdi::ToSide(std::int64_t{y} + cy)};
    FillSolidRect(&rect, clr);
}

void CDC::FillRect(const RECT* pRect, CBrush* pBrush)
{
    if (pRect && pBrush) ::FillRect(m_hDC, pRect, *pBrush);
}

int CDC::FillRgn(CRgn* pRgn, CBrush* pBrush)
{
    return pRgn && pBrush ? ::FillRgn(m_hDC, *pRgn, *pBrush) : 0;
}

int CDC::RoundRect(const RECT* pRect, POINT ptEllipse)
{
    return ::RoundRect(m_hDC, pRect->left, pRect->top, pRect->right, pRect->bottom, ptEllipse.x, ptEllipse.y);
}

int CDC::BitBlt(int x, int y, int cx, int cy, CDC* pSrc, int xSrc, int ySrc, DWORD dwRop)
{
    return ::BitBlt(m_hDC, x, y, cx, cy, HandleOf(pSrc), xSrc, ySrc, dwRop);
}

int CDC::StretchBlt(int x, int y, int cx, int cy, CDC* pSrc, int xSrc, int ySrc, int cxSrc, int cySrc,
                    DWORD dwRop)
{
    return ::StretchBlt(m_hDC, x, y, cx, cy, HandleOf(pSrc), xSrc, ySrc, cxSrc, cySrc, dwRop);
}

int CDC::TransparentBlt(int x, int y, int cx, int cy, CDC* pSrc, int xSrc, int ySrc, int cxSrc, int cySrc,
                        UINT clrKey)
{
    return ::TransparentBlt(m_hDC, x, y, cx, cy, HandleOf(pSrc), xSrc, ySrc, cxSrc, cySrc, clrKey);
}

int CDC::SelectClipRgn(CRgn* pRgn)
{
    return ::SelectClipRgn(m_hDC, pRgn ? static_cast<HRGN>(*pRgn) : nullptr);
}

int CDC::DrawText(const CString& str, RECT* pRect, UINT nFormat)
{
    return DrawTextA(m_hDC, str, str.GetLength(), pRect, nFormat);
}

int CDC::DrawText(const char* psz, int nLength, RECT* pRect, UINT nFormat)
{
    return DrawTextA(m_hDC, psz, nLength, pRect, nFormat);
}

int CDC::TextOut(int x, int y, const CString& str)
{
    return TextOutA(m_hDC, x, y, str, str.GetLength());
}

CSize CDC::GetTextExtent(const CString& str) const
{
    SIZE size;
    GetTextExtentPoint32A(m_hDC, str, str.GetLength(), &size);
    return size;
}

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
