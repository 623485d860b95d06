#pragma once

#include "KXBitmap.h"

#include <memory>

// The current skin's pictures and colours for the list of contacts. Clients read the members. Everything is 0
// or empty until the first load. A copy shares the images and icons of that moment with its source, and what
// is shared ends with the last of them. One thread at a time.
class KX_API CKXSkinIMListRes
{
public:
    CKXSkinIMListRes() = default;
    CKXSkinIMListRes(const CKXSkinIMListRes& src) = default;
    CKXSkinIMListRes& operator=(const CKXSkinIMListRes& src) = default;
    ~CKXSkinIMListRes() = default;

    // Loads bitmaps and icons from `strResDir`, which ends in a backslash, and reads section "IMList" of the
    // skin's `Skin.ini`; what either lacks becomes empty or 0. The result is always 1.
    int LoadRes(const CString& strResDir, const CString& strIniFile);

    // 3 states side by side.
    CKXBitmap m_bmpGroupBtn; // GroupBtn.bmp; the ends that stay unstretched: GroupBtn_Left, GroupBtn_Right
    CKXBitmap m_bmpTeamBtn;  // TeamBtn.bmp

    // The size of one state; 0 by 0 for a bitmap that couldn't be loaded.
    CSize m_sizeGroupBtn;
    CSize m_sizeTeamBtn;

    // The bitmaps' transparent colour, for clients: never changed here.
    int m_bUseMaskColor = 1;
    COLORREF m_clrMask = 0xFF00FF;

    // 16 by 16 pixels, of the file's entries the nearest. The object's own, until the next load or its end;
    // null for one that couldn't be loaded.
    HICON m_hNormalIcon = nullptr; // Normal.ico
    HICON m_hExpandIcon = nullptr; // Expand.ico

private:
    // End the icons.
    std::shared_ptr<void> m_pNormalIcon;
    std::shared_ptr<void> m_pExpandIcon;
};
