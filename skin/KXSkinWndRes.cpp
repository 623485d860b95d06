#include "KXSkinWndRes.h"

#include "platform/Exception.h"
#include "skin/SkinFiles.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

using kx::skin::Section;
using kx::skin::SetFill;
using kx::skin::StateSize;
using Res = CKXSkinWndRes;

namespace {

constexpr COLORREF clrWhite = RGB(255, 255, 255);

constexpr struct
{
    CKXBitmap Res::*pBitmap;
    const char* pszFile;
    int nStates;
    int bHorz;
} frameBitmaps[] = {
    {&Res::m_bmpTitle, "Frame_Title.bmp", 2, 0},           {&Res::m_bmpLeft, "Frame_Left.bmp", 2, 1},
    {&Res::m_bmpRight, "Frame_Right.bmp", 2, 1},           {&Res::m_bmpBottom, "Frame_Bottom.bmp", 2, 0},
    {&Res::m_bmpMinBtn, "Frame_MinBtn.bmp", 8, 1},         {&Res::m_bmpMaxBtn, "Frame_MaxBtn.bmp", 8, 1},
    {&Res::m_bmpRestoreBtn, "Frame_RestoreBtn.bmp", 8, 1}, {&Res::m_bmpCloseBtn, "Frame_CloseBtn.bmp", 8, 1},
};

constexpr struct
{
    int Res::*pValue;
    const char* pszKey;
} buttonValues[] = {
    {&Res::m_nMinBtnOffset, "MinButton_Offset"},
    {&Res::m_nMaxBtnOffset, "MaxButton_Offset"},
    {&Res::m_nCloseBtnOffset, "CloseButton_Offset"},
    {&Res::m_nMinBtnTop, "MinButton_Top"},
    {&Res::m_nMaxBtnTop, "MaxButton_Top"},
    {&Res::m_nCloseBtnTop, "CloseButton_Top"},
    {&Res::m_nBtnSpace, "Button_Space"},
    {&Res::m_nSysMenuTop, "SysMenu_Top"},
    {&Res::m_nSysMenuLeft, "SysMenu_Left"},
    {&Res::m_nTitleTextTop, "TitleText_Top"},
    {&Res::m_nTitleTextLeft, "TitleText_Left"},
};

constexpr struct
{
    std::vector<CPoint> Res::*pPath;
    const char* pszPathKey;
    const char* pszMaskKey;
} corners[] = {
    {&Res::m_vecCornerPath1, "CornerPath1", "CornerMask1"},
    {&Res::m_vecCornerPath2, "CornerPath2", "CornerMask2"},
    {&Res::m_vecCornerPath3, "CornerPath3", "CornerMask3"},
    {&Res::m_vecCornerPath4, "CornerPath4", "CornerMask4"},
};

void KeepOldFrame(Res& res)
{
    res.m_nOldLeftWidth = res.m_nLeftWidth;
    res.m_nOldRightWidth = res.m_nRightWidth;
    res.m_nOldTitleHeight = res.m_nTitleHeight;
    res.m_nOldBottomHeight = res.m_nBottomHeight;
}

void LoadFrame(Res& res, const CString& strResDir)
{
    for (const auto& entry : frameBitmaps) {
        CKXBitmap& bitmap = res.*entry.pBitmap;
        bitmap.LoadBitmapA(strResDir + entry.pszFile);
        bitmap.SetMultiState(entry.nStates, entry.bHorz);
    }
    res.m_nLeftWidth = StateSize(res.m_bmpLeft).cx;
    res.m_nRightWidth = StateSize(res.m_bmpRight).cx;
    res.m_nTitleHeight = StateSize(res.m_bmpTitle).cy;
    res.m_nBottomHeight = StateSize(res.m_bmpBottom).cy;
    res.m_sizeMinBtn = StateSize(res.m_bmpMinBtn);
    res.m_sizeMaxBtn = StateSize(res.m_bmpMaxBtn);
    res.m_sizeCloseBtn = StateSize(res.m_bmpCloseBtn);
}

void ReadColors(Res& res, const Section& section)
{
    res.m_clrBack = section.Color("BackColor", clrWhite);
    res.m_clrText = section.Color("TextColor", 0);
    res.m_clrTitle = section.Color("TitleColor", clrWhite);
    res.m_clrTitleAlt = section.Color("TitleColor", 0xFF00FF);
}

void ReadCorners(Res& res, const Section& section)
{
    for (const auto& corner : corners) {
        CString strPath = section.Text(corner.pszPathKey);
        res.ParsePathPoint(strPath, res.*corner.pPath);
    }
    for (std::size_t n = 0; n < std::size(corners); ++n)
        res.m_strCornerMask[n] = section.Text(corners[n].pszMaskKey);
}

void ReadBorder(Res& res, const Section& section)
{
    res.m_nDrawType = section.Integer("DrawType");
    SetFill(res.m_bmpTitle, section, "Title_Left_Width", "Title_Right_Width");
    SetFill(res.m_bmpLeft, section, "Left_Top_Height", "Left_Bottom_Height", 0);
    SetFill(res.m_bmpRight, section, "Right_Top_Height", "Right_Bottom_Height", 0);
    SetFill(res.m_bmpBottom, section, "Bottom_Left_Width", "Bottom_Right_Width");
}

void ReadButtons(Res& res, const Section& section)
{
    res.m_bAutoAlign = section.Boolean("AutoAlign", true);
    for (const auto& value : buttonValues)
        res.*value.pValue = section.Integer(value.pszKey);
    res.m_bAlwaysShowMinBtn = section.Boolean("AlwaysShowMinButton", false);
}

void LoadOneBackground(Res& res, const CString& strResDir, const Section& section)
{
    res.m_bmpBkg.LoadBitmapA(strResDir + "WndBkg.bmp");
    SetFill(res.m_bmpBkg, section, "Bkg_bmp_Left", "Bkg_bmp_Right");
}

void LoadThreeBackgrounds(Res& res, const CString& strResDir, const Section& section)
{
    res.m_bmpBkgTop.LoadBitmapA(strResDir + "WndBkg_Top.bmp");
    res.m_bmpBkgMid.LoadBitmapA(strResDir + "WndBkg_Mid.bmp");
    res.m_bmpBkgBtm.LoadBitmapA(strResDir + "WndBkg_Btm.bmp");
    SetFill(res.m_bmpBkgTop, section, "BkgTop_bmp_Left", "BkgTop_bmp_Right");
    SetFill(res.m_bmpBkgMid, section, "BkgMid_bmp_Left", "BkgMid_bmp_Right");
    SetFill(res.m_bmpBkgBtm, section, "BkgBtm_bmp_Left", "BkgBtm_bmp_Right");
    res.m_nBkgTopHeight = StateSize(res.m_bmpBkgTop).cy;
    res.m_nBkgBtmHeight = StateSize(res.m_bmpBkgBtm).cy;
}

void LoadBackground(Res& res, const CString& strResDir, const Section& section)
{
    res.m_clrBkg = section.Color("BackColor", clrWhite);
    CString strType = section.Text("BkgType", "default");
    strType.MakeLower();
    res.m_nBkgType = 0;
    if (strType == "colorfill") {
        res.m_nBkgType = 1;
    } else if (strType == "singlebmp") {
        res.m_nBkgType = 2;
        LoadOneBackground(res, strResDir, section);
    } else if (strType == "multibmp") {
        res.m_nBkgType = 3;
        LoadThreeBackgrounds(res, strResDir, section);
    }
}

void LoadScrollBar(CBitmap& bitmap, const CString& strFile)
{
    const HANDLE hBitmap =
        LoadImageA(nullptr, strFile, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION);
    if (!hBitmap) return;
    bitmap.DeleteObject();
    bitmap.Attach(hBitmap);
}

// A number too large for an `int` gives the nearest one.
int ToInteger(const CString& strText)
{
    return static_cast<int>(std::clamp(std::strtol(strText, nullptr, 10), long{INT_MIN}, long{INT_MAX}));
}

} // namespace

int CKXSkinWndRes::LoadRes(const CString& strResDir, const CString& strIniFile)
{
    KeepOldFrame(*this);
    LoadFrame(*this, strResDir);
    ReadColors(*this, {strIniFile, "COLOR"});
    ReadCorners(*this, {strIniFile, "RoundCorner"});
    ReadBorder(*this, {strIniFile, "Border"});
    ReadButtons(*this, {strIniFile, "SysButton"});
    LoadBackground(*this, strResDir, {strIniFile, "Background"});
    LoadScrollBar(m_bmpScrollBar, strResDir + "ScrollBar.bmp");
    return 1;
}

void CKXSkinWndRes::ParsePathPoint(CString& strPath, std::vector<CPoint>& vecPoints)
try {
    vecPoints.clear();
    int nStart = 0;
    CString strPoint;
    while (!(strPoint = strPath.Tokenize("|", nStart)).IsEmpty()) {
        const int nComma = strPoint.Find(',');
        if (nComma < 1) continue;
        vecPoints.emplace_back(ToInteger(strPoint.Left(nComma)), ToInteger(strPoint.Mid(nComma + 1)));
    }
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
