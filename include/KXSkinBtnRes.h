#pragma once

#include "KXBitmap.h"

// The current skin's pictures and colours for buttons, tabs and list headers. Clients read the members; which
// state of a bitmap stands for what is theirs to say. Everything is 0 or empty until the first load. A copy
// shares the images of that moment with its source. One thread at a time.
class KX_API CKXSkinBtnRes
{
public:
    CKXSkinBtnRes() = default;
    CKXSkinBtnRes(const CKXSkinBtnRes& src) = default;
    CKXSkinBtnRes& operator=(const CKXSkinBtnRes& src) = default;
    ~CKXSkinBtnRes() = default;

    // Loads the bitmaps from `strResDir`, which ends in a backslash, and reads section "Button" of the skin's
    // `Skin.ini`; what either lacks becomes empty or 0. The result is always 1.
    int LoadRes(const CString& strResDir, const CString& strIniFile);

    // Whether the bitmap of that name was loaded.
    int m_bPushButton = 0;
    int m_bCheckBox = 0;
    int m_bRadioButton = 0;
    int m_bSpinButton = 0;
    int m_bComboButton = 0;

    // The states lie side by side. Behind the file, the keys of the ends that stay unstretched, if it has
    // some.
    CKXBitmap m_bmpPushButton;     // 5 states; PushButton.bmp; PushButton_Left, PushButton_Right
    CKXBitmap m_bmpCheckBox;       // 12; CheckBox.bmp
    CKXBitmap m_bmpRadioButton;    // 8; RadioButton.bmp
    CKXBitmap m_bmpSpinButton;     // 8; SpinButton.bmp
    CKXBitmap m_bmpComboButton;    // 4, as all below; ComboButton.bmp
    CKXBitmap m_bmpTabBtnVert;     // TabButtonVert.bmp; TabBtnVert_Left, TabBtnVert_Right
    CKXBitmap m_bmpTabBtnHorz;     // TabButtonHorz.bmp; TabBtnHorz_Left, TabBtnHorz_Right
    CKXBitmap m_bmpMainTabBtn;     // MainTabButton.bmp
    CKXBitmap m_bmpListViewHeader; // ListViewHeader.bmp; ListViewHeaderLeft, ListViewHeaderRight

    // The values are those of the file.
    CString m_strMainTabBtnMask;          // MainTabBtn_Mask
    int m_nMainTabBtnIntersectHeight = 0; // MainTabBtnIntersect_Height

    // The size of one state; 0 by 0 for a bitmap that couldn't be loaded.
    CSize m_sizePushButton;
    CSize m_sizeCheckBox;
    CSize m_sizeRadioButton;
    CSize m_sizeSpinButton;
    CSize m_sizeComboButton;
    CSize m_sizeTabBtnVert;
    CSize m_sizeTabBtnHorz;
    CSize m_sizeMainTabBtn;
    CSize m_sizeListViewHeader;

    // The bitmaps' transparent colour, for clients: never changed here.
    int m_bUseMaskColor = 1;
    COLORREF m_clrMask = 0xFF00FF;
};
