#include "KXSkinBtnRes.h"

#include "skin/SkinFiles.h"

using kx::skin::SetFill;
using kx::skin::StateSize;
using Res = CKXSkinBtnRes;

namespace {

constexpr struct
{
    CKXBitmap Res::*pBitmap;
    const char* pszFile;
    int nStates;
    CSize Res::*pSize;
    int Res::*pLoaded = nullptr;
} bitmaps[] = {
    {&Res::m_bmpPushButton, "PushButton.bmp", 5, &Res::m_sizePushButton, &Res::m_bPushButton},
    {&Res::m_bmpCheckBox, "CheckBox.bmp", 12, &Res::m_sizeCheckBox, &Res::m_bCheckBox},
    {&Res::m_bmpRadioButton, "RadioButton.bmp", 8, &Res::m_sizeRadioButton, &Res::m_bRadioButton},
    {&Res::m_bmpSpinButton, "SpinButton.bmp", 8, &Res::m_sizeSpinButton, &Res::m_bSpinButton},
    {&Res::m_bmpComboButton, "ComboButton.bmp", 4, &Res::m_sizeComboButton, &Res::m_bComboButton},
    {&Res::m_bmpTabBtnVert, "TabButtonVert.bmp", 4, &Res::m_sizeTabBtnVert},
    {&Res::m_bmpTabBtnHorz, "TabButtonHorz.bmp", 4, &Res::m_sizeTabBtnHorz},
    {&Res::m_bmpMainTabBtn, "MainTabButton.bmp", 4, &Res::m_sizeMainTabBtn},
    {&Res::m_bmpListViewHeader, "ListViewHeader.bmp", 4, &Res::m_sizeListViewHeader},
};

} // namespace

int CKXSkinBtnRes::LoadRes(const CString& strResDir, const CString& strIniFile)
{
    for (const auto& entry : bitmaps) {
        const int bLoaded = (this->*entry.pBitmap).LoadBitmapA(strResDir + entry.pszFile);
        if (entry.pLoaded) this->*entry.pLoaded = bLoaded;
    }

    const kx::skin::Section section(strIniFile, "Button");
    SetFill(m_bmpPushButton, section, "PushButton_Left", "PushButton_Right");
    SetFill(m_bmpTabBtnVert, section, "TabBtnVert_Left", "TabBtnVert_Right");
    SetFill(m_bmpTabBtnHorz, section, "TabBtnHorz_Left", "TabBtnHorz_Right");
    SetFill(m_bmpListViewHeader, section, "ListViewHeaderLeft", "ListViewHeaderRight"); // no underscore here

    for (const auto& entry : bitmaps) {
        CKXBitmap& bitmap = this->*entry.pBitmap;
        bitmap.SetMultiState(entry.nStates, 1);
        this->*entry.pSize = StateSize(bitmap);
    }
    m_strMainTabBtnMask = section.Text("MainTabBtn_Mask");
    m_nMainTabBtnIntersectHeight = section.Integer("MainTabBtnIntersect_Height");
    return 1;
}
