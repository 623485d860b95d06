#include "skin/SkinFiles.h"

#include "KXIniDataMgr.h"

namespace kx::skin {

int Section::Integer(const char* pszKey) const
{
    return CKXIniDataMgr::GetInteger(m_strFile, m_pszSection, pszKey, 0);
}

int Section::Boolean(const char* pszKey, bool bDefault) const
{
    return CKXIniDataMgr::GetBoolean(m_strFile, m_pszSection, pszKey, bDefault);
}

COLORREF Section::Color(const char* pszKey, COLORREF clrDefault) const
{
    return static_cast<COLORREF>(CKXIniDataMgr::GetRGB(m_strFile, m_pszSection, pszKey, clrDefault));
}

CString Section::Text(const char* pszKey, const char* pszDefault) const
{
    return CKXIniDataMgr::GetString(m_strFile, m_pszSection, pszKey, pszDefault);
}

void SetFill(CKXBitmap& bitmap, const Section& section, const char* pszFirst, const char* pszLast, int bHorz)
{
    const int nFirst = section.Integer(pszFirst);
    const int nLast = section.Integer(pszLast);
    bitmap.SetFillParam(nFirst, nLast, bHorz);
}

CSize StateSize(CKXBitmap& bitmap)
{
    if (!bitmap.GetHBITMAP()) return {};
    const CRect& state = bitmap.GetSrcImageRect();
    return {state.Width(), state.Height()};
}

} // namespace kx::skin
