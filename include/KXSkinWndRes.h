#pragma once

#include "KXBitmap.h"
#include "platform/GdiObject.h"

#include <vector>

// The current skin's looks of a top-level window: frame, caption buttons, corners, colours and
// background. Clients read the members; which state of a bitmap and which corner stands for what is theirs to
// say. Everything is 0 or empty until the first load. Not copyable. One thread at a time.
class KX_API CKXSkinWndRes
{
public:
    CKXSkinWndRes() = default;
    CKXSkinWndRes(const CKXSkinWndRes&) = delete;
    CKXSkinWndRes& operator=(const CKXSkinWndRes&) = delete;
    ~CKXSkinWndRes() = default;

    // Loads the bitmaps from `strResDir`, which ends in a backslash, and reads sections "COLOR",
    // "RoundCorner", "Border", "SysButton" and "Background" of the skin's `Skin.ini`. A bitmap that can't be
    // loaded becomes empty, a value that the file lacks takes its default: white for back and title colours
    // (`m_clrTitleAlt`: 0xFF00FF), 1 for `m_bAutoAlign`, otherwise 0 or empty. The scroll bar's bitmap and
    // what belongs to another type of background than the skin's stay as they were. The result is always 1.
    int LoadRes(const CString& strResDir, const CString& strIniFile);

    // Replaces `vecPoints` by the points in a text like `0,5|1,3|3,1|5,0`. A coordinate is the number that
    // its text begins with, 0 without one; a piece without a comma, or with nothing before it, is no point.
    void ParsePathPoint(CString& strPath, std::vector<CPoint>& vecPoints);

    // Values of "RoundCorner".
    std::vector<CPoint> m_vecCornerPath1; // CornerPath1
    std::vector<CPoint> m_vecCornerPath2; // CornerPath2
    std::vector<CPoint> m_vecCornerPath3; // CornerPath3
    std::vector<CPoint> m_vecCornerPath4; // CornerPath4
    CString m_strCornerMask[4];           // CornerMask1 to CornerMask4, as the file has them
    int m_nDrawType = 0;                  // "Border", DrawType, as the file has it

    // Places of title text, system menu and caption buttons, in pixels, from "SysButton".
    int m_bAutoAlign = 0;        // AutoAlign
    int m_nMinBtnOffset = 0;     // MinButton_Offset
    int m_nMaxBtnOffset = 0;     // MaxButton_Offset
    int m_nCloseBtnOffset = 0;   // CloseButton_Offset
    int m_nMinBtnTop = 0;        // MinButton_Top
    int m_nMaxBtnTop = 0;        // MaxButton_Top
    int m_nCloseBtnTop = 0;      // CloseButton_Top
    int m_nBtnSpace = 0;         // Button_Space
    int m_nSysMenuTop = 0;       // SysMenu_Top
    int m_nSysMenuLeft = 0;      // SysMenu_Left
    int m_nTitleTextTop = 0;     // TitleText_Top
    int m_nTitleTextLeft = 0;    // TitleText_Left
    int m_bAlwaysShowMinBtn = 0; // AlwaysShowMinButton

    // The size of one state; here and below 0 for a bitmap that couldn't be loaded.
    CSize m_sizeMinBtn;
    CSize m_sizeMaxBtn;
    CSize m_sizeCloseBtn;

    // How thick one state of the frame's bitmaps is, now and before the latest load.
    int m_nLeftWidth = 0;
    int m_nRightWidth = 0;
    int m_nTitleHeight = 0;
    int m_nBottomHeight = 0;
    int m_nOldLeftWidth = 0;
    int m_nOldRightWidth = 0;
    int m_nOldTitleHeight = 0;
    int m_nOldBottomHeight = 0;

    // Values of "COLOR".
    COLORREF m_clrBack = 0;     // BackColor
    COLORREF m_clrText = 0;     // TextColor
    COLORREF m_clrTitle = 0;    // TitleColor
    COLORREF m_clrTitleAlt = 0; // TitleColor again, with another default

    // The frame: 2 states, of the title and the bottom one above the other, of the sides side by side. Their
    // ends are of "Border".
    CKXBitmap m_bmpTitle;  // Frame_Title.bmp; Title_Left_Width, Title_Right_Width
    CKXBitmap m_bmpLeft;   // Frame_Left.bmp; Left_Top_Height, Left_Bottom_Height
    CKXBitmap m_bmpRight;  // Frame_Right.bmp; Right_Top_Height, Right_Bottom_Height
    CKXBitmap m_bmpBottom; // Frame_Bottom.bmp; Bottom_Left_Width, Bottom_Right_Width
    // The caption buttons: 8 states side by side.
    CKXBitmap m_bmpMinBtn;     // Frame_MinBtn.bmp
    CKXBitmap m_bmpMaxBtn;     // Frame_MaxBtn.bmp
    CKXBitmap m_bmpRestoreBtn; // Frame_RestoreBtn.bmp
    CKXBitmap m_bmpCloseBtn;   // Frame_CloseBtn.bmp

    // The background. `m_nBkgType` tells what counts: 0 nothing of it, 1 `m_clrBkg`, 2 `m_bmpBkg`, 3 the
    // three bitmaps and two heights. The rest may be an earlier skin's. Ends and colour are of "Background".
    CKXBitmap m_bmpBkg;      // WndBkg.bmp; Bkg_bmp_Left, Bkg_bmp_Right
    CKXBitmap m_bmpBkgTop;   // WndBkg_Top.bmp; BkgTop_bmp_Left, BkgTop_bmp_Right
    CKXBitmap m_bmpBkgMid;   // WndBkg_Mid.bmp; BkgMid_bmp_Left, BkgMid_bmp_Right
    CKXBitmap m_bmpBkgBtm;   // WndBkg_Btm.bmp; BkgBtm_bmp_Left, BkgBtm_bmp_Right
    int m_nBkgTopHeight = 0; // of `m_bmpBkgTop`
    int m_nBkgBtmHeight = 0; // of `m_bmpBkgBtm`
    int m_nBkgType = 0;      // BkgType, in any case: 1 colorfill, 2 singlebmp, 3 multibmp, 0 for all else
    COLORREF m_clrBkg = 0;   // BackColor

    // ScrollBar.bmp. An earlier skin's where the current one has none. Replacing it ends the old bitmap.
    CBitmap m_bmpScrollBar;
};
