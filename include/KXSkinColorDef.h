#pragma once

#include "KXExport.h"
#include "platform/Geometry.h"
#include "platform/String.h"

// A skin's named colours. All black until they are first read. One thread at a time.
class KX_API CKXSkinColorDef
{
public:
    // Reads all colours from section "COLOR" of a skin's `Skin.ini`, each by CKXIniDataMgr::GetRGB from the
    // key that is its name behind `m_clr`. What the file lacks is blue, but for white (MainTabClient,
    // MainTabBkg, ControlBarBk1) and a light blue, 0xFFC8C8 (FileTransHotBk1).
    void ReadColors(const CString& strIniFile);

    // Tabs and borders.
    COLORREF m_clrMainTabClient = 0;
    COLORREF m_clrMainTabBkg = 0;
    COLORREF m_clrMainTabBorderLine = 0;
    COLORREF m_clrTabBorderLine = 0;
    COLORREF m_clrCommonBorderLine = 0;
    // Control bars: the two ends of a gradient.
    COLORREF m_clrControlBarBk1 = 0;
    COLORREF m_clrControlBarBk2 = 0;
    // Menu bars and pop-up menus.
    COLORREF m_clrMenuBorderNormal = 0;
    COLORREF m_clrMenuBorderSelect = 0;
    COLORREF m_clrMenuBorderPress = 0;
    COLORREF m_clrMenuSelectBk = 0;
    COLORREF m_clrPopMenuBk = 0;
    COLORREF m_clrPopMenuLeftBk = 0;
    COLORREF m_clrPopMenuSelBk = 0;
    COLORREF m_clrPopMenuSelBorder = 0;
    // The row of a file transfer under the mouse: the two ends of a gradient.
    COLORREF m_clrFileTransHotBk1 = 0;
    COLORREF m_clrFileTransHotBk2 = 0;
};
