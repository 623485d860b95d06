#pragma once

#include "KXBitmap.h"

// The steps that loading any of a skin's sets is made of.
namespace kx::skin {

// A section of a skin's `Skin.ini`.
class Section
{
public:
    Section(const CString& strFile, const char* pszSection) : m_strFile(strFile), m_pszSection(pszSection) {}

    int Integer(const char* pszKey) const; // 0 without the key
    int Boolean(const char* pszKey, bool bDefault) const;
    COLORREF Color(const char* pszKey, COLORREF clrDefault) const;
    CString Text(const char* pszKey, const char* pszDefault = "") const;

private:
    CString m_strFile;
    const char* m_pszSection;
};

// Sets a bitmap's fill, along x unless `bHorz` is 0, from the keys of its two lengths.
void SetFill(CKXBitmap& bitmap, const Section& section, const char* pszFirst, const char* pszLast,
             int bHorz = 1);

// The size of one state. Nothing for an empty bitmap, whose own rectangle is still that of an earlier image.
CSize StateSize(CKXBitmap& bitmap);

} // namespace kx::skin
