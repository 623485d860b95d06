#include "include/platform/GdiObject.h"
#include "include/platform/Dc.h"
#include "include/platform/Module.h"
#include "include/platform/Object.h"
#include "platform/framework/TempMap.h"
#include "platform/gdi/Object.h"
#include "platform/text/CharWalk.h"

#include <utility>

CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), 0xFFFF, nullptr, nullptr};

CObject::~CObject() = default;

CRuntimeClass* CObject::GetThisClass()
{
    return &classCObject;
}

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return &classCObject;
}

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBase) const
{
    const CRuntimeClass* pClass = this;
    while (pClass && pClass != pBase)
        pClass = pClass->m_pfnGetBaseClass ? pClass->m_pfnGetBaseClass() : nullptr;
    return pClass != nullptr;
}

IMPLEMENT_DYNAMIC(CGdiObject, CObject)
IMPLEMENT_DYNAMIC(CBitmap, CGdiObject)
IMPLEMENT_DYNAMIC(CPen, CGdiObject)
IMPLEMENT_DYNAMIC(CBrush, CGdiObject)
IMPLEMENT_DYNAMIC(CFont, CGdiObject)
IMPLEMENT_DYNAMIC(CRgn, CGdiObject)

namespace {

bool IsAlive(HGDIOBJ handle)
{
    return kx::FindHandle<kx::gdi::Object>(handle) != nullptr;
}

template <class Wrapper>
void Bind(Wrapper& wrapper, HGDIOBJ handle)
{
    wrapper.m_hObject = handle;
}

template <class Wrapper>
Wrapper* TempOf(HGDIOBJ handle)
{
    return kx::framework::TempMap<Wrapper, HGDIOBJ, IsAlive, Bind<Wrapper>>::OfThread(handle);
}

HGDIOBJ HandleOf(const CGdiObject* pObject)
{
    return pObject ? pObject->m_hObject : nullptr;
}

} // namespace

CGdiObject::~CGdiObject()
{
    DeleteObject();
}

int CGdiObject::Attach(HGDIOBJ hObject)
{
    if (m_hObject || !hObject) return 0;
    m_hObject = hObject;
    return 1;
}

HGDIOBJ CGdiObject::Detach()
{
    return std::exchange(m_hObject, nullptr);
}

int CGdiObject::DeleteObject()
{
    return m_hObject ? ::DeleteObject(Detach()) : 0;
}

CGdiObject* CGdiObject::FromHandle(HGDIOBJ hObject)
{
    return TempOf<CGdiObject>(hObject);
}

CBitmap* CBitmap::FromHandle(HBITMAP hBitmap)
{
    return TempOf<CBitmap>(hBitmap);
}

CPen* CPen::FromHandle(HPEN hPen)
{
    return TempOf<CPen>(hPen);
}

CBrush* CBrush::FromHandle(HBRUSH hBrush)
{
    return TempOf<CBrush>(hBrush);
}

CFont* CFont::FromHandle(HFONT hFont)
{
    return TempOf<CFont>(hFont);
}

CRgn* CRgn::FromHandle(HRGN hRgn)
{
    return TempOf<CRgn>(hRgn);
}

int CBitmap::CreateCompatibleBitmap(CDC* pDC, int cx, int cy)
{
    return m_hObject ? 0 : Attach(::CreateCompatibleBitmap(pDC ? pDC->m_hDC : nullptr, cx, cy));
}

int CBitmap::LoadBitmapA(UINT nId)
{
    if (m_hObject) return 0;
    const char* pszName = MAKEINTRESOURCEA(static_cast<WORD>(nId));
    return Attach(::LoadBitmapA(AfxFindResourceHandle(pszName, RT_BITMAP), pszName));
}

int CPen::CreatePen(int nStyle, int nWidth, COLORREF clr)
{
    return m_hObject ? 0 : Attach(::CreatePen(nStyle, nWidth, clr));
}

int CBrush::CreateSolidBrush(COLORREF clr)
{
    return m_hObject ? 0 : Attach(::CreateSolidBrush(clr));
}

int CFont::CreateFontIndirectA(const LOGFONTA* pFont)
{
    return m_hObject ? 0 : Attach(::CreateFontIndirectA(pFont));
}

int CFont::CreatePointFont(int nPointSize, const char* pszFace, CDC*)
{
    LOGFONTA font{};
    font.lfHeight = -((nPointSize * 96 + 360) / 720);
    if (pszFace) kx::text::CopyCut(pszFace, font.lfFaceName, sizeof(font.lfFaceName));
    return CreateFontIndirectA(&font);
}

int CRgn::CreateRectRgn(int nLeft, int nTop, int nRight, int nBottom)
{
    return m_hObject ? 0 : Attach(::CreateRectRgn(nLeft, nTop, nRight, nBottom));
}

int CRgn::CreateRoundRectRgn(int nLeft, int nTop, int nRight, int nBottom, int cx, int cy)
{
    return m_hObject ? 0 : Attach(::CreateRoundRectRgn(nLeft, nTop, nRight, nBottom, cx, cy));
}

int CRgn::CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nMode)
{
    return ::CombineRgn(*this, static_cast<HRGN>(HandleOf(pRgn1)), static_cast<HRGN>(HandleOf(pRgn2)), nMode);
}
