#pragma once

#include "KXBitmap.h"
#include "KXGdiplusImage.h"

// The current skin's pictures and colours for sliders, the outlook bar, menus and file transfers. Clients
// read the members. Everything is 0 or empty until the first load. A copy shares the images of that moment
// with its source. One thread at a time.
class KX_API CKXSkinOtherRes
{
public:
    CKXSkinOtherRes() = default;
    CKXSkinOtherRes(const CKXSkinOtherRes& src) = default;
    CKXSkinOtherRes& operator=(const CKXSkinOtherRes& src) = default;
    ~CKXSkinOtherRes() = default;

    // Loads bitmaps and images from `strResDir`, which ends in a backslash, and reads section "OtherCtrl" of
    // the skin's `Skin.ini`; what either lacks becomes empty or 0. The images need Gdiplus::GdiplusStartup.
    // The result is always 1.
    int LoadRes(const CString& strResDir, const CString& strIniFile);

    // Empties the two images, which is to be done before the last GdiplusShutdown. The bitmaps stay.
    void UnLoadRes();

    // Behind the file, the keys of the ends that stay unstretched.
    CKXBitmap m_bmpSliderTrack;     // SliderCtrlTrack.bmp; SliderCtrlTrack_Left, SliderCtrlTrack_Right
    CKXBitmap m_bmpSliderThumb;     // SliderCtrlThumb.bmp; SliderCtrlThumb_Left, SliderCtrlThumb_Right
    CKXBitmap m_bmpOutlookBar;      // OutlookCtrlBar.bmp; OutlookCtrlBar_Left, OutlookCtrlBar_Right; 3 states
                                    // side by side
    CKXBitmap m_bmpMenuIconChecked; // MenuIconChecked.bmp

    // The size of one state; 0 by 0 for a bitmap that couldn't be loaded.
    CSize m_sizeOutlookBar;

    // The bitmaps' transparent colour, for clients: never changed here.
    int m_bUseMaskColor = 1;
    COLORREF m_clrMask = 0xFF00FF;

    // FileTransProgressBar.bmp; FileTransProgressBar_Left, FileTransProgressBar_Right; 2 states side by side.
    CKXBitmap m_bmpFileTransProgress;

    CKXGdiplusImage m_imgFileSend;    // FileSend.png
    CKXGdiplusImage m_imgFileReceive; // FileReceive.png
};
