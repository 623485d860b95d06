#include "KXSkinColorDef.h"

#include "skin/SkinFiles.h"

namespace {

constexpr COLORREF clrWhite = RGB(255, 255, 255);
constexpr COLORREF clrBlue = RGB(0, 0, 255);

constexpr struct
{
    COLORREF CKXSkinColorDef::*pColor;
    const char* pszKey;
    COLORREF clrDefault;
} colors[] = {
    {&CKXSkinColorDef::m_clrMainTabClient, "MainTabClient", clrWhite},
    {&CKXSkinColorDef::m_clrMainTabBkg, "MainTabBkg", clrWhite},
    {&CKXSkinColorDef::m_clrMainTabBorderLine, "MainTabBorderLine", clrBlue},
    {&CKXSkinColorDef::m_clrTabBorderLine, "TabBorderLine", clrBlue},
    {&CKXSkinColorDef::m_clrCommonBorderLine, "CommonBorderLine", clrBlue},
    {&CKXSkinColorDef::m_clrControlBarBk1, "ControlBarBk1", clrWhite},
    {&CKXSkinColorDef::m_clrControlBarBk2, "ControlBarBk2", clrBlue},
    {&CKXSkinColorDef::m_clrMenuBorderNormal, "MenuBorderNormal", clrBlue},
    {&CKXSkinColorDef::m_clrMenuBorderSelect, "MenuBorderSelect", clrBlue},
    {&CKXSkinColorDef::m_clrMenuBorderPress, "MenuBorderPress", clrBlue},
    {&CKXSkinColorDef::m_clrMenuSelectBk, "MenuSelectBk", clrBlue},
    {&CKXSkinColorDef::m_clrPopMenuBk, "PopMenuBk", clrBlue},
    {&CKXSkinColorDef::m_clrPopMenuLeftBk, "PopMenuLeftBk", clrBlue},
    {&CKXSkinColorDef::m_clrPopMenuSelBk, "PopMenuSelBk", clrBlue},
    {&CKXSkinColorDef::m_clrPopMenuSelBorder, "PopMenuSelBorder", clrBlue},
    {&CKXSkinColorDef::m_clrFileTransHotBk1, "FileTransHotBk1", RGB(200, 200, 255)},
    {&CKXSkinColorDef::m_clrFileTransHotBk2, "FileTransHotBk2", clrBlue},
};

} // namespace

void CKXSkinColorDef::ReadColors(const CString& strIniFile)
{
    const kx::skin::Section section(strIniFile, "COLOR");
    for (const auto& color : colors)
        this->*color.pColor = section.Color(color.pszKey, color.clrDefault);
}
