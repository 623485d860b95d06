#include "KXSkinOtherRes.h"

#include "skin/SkinFiles.h"

using kx::skin::SetFill;
using kx::skin::StateSize;

int CKXSkinOtherRes::LoadRes(const CString& strResDir, const CString& strIniFile)
{
    m_bmpSliderTrack.LoadBitmapA(strResDir + "SliderCtrlTrack.bmp");
    m_bmpSliderThumb.LoadBitmapA(strResDir + "SliderCtrlThumb.bmp");
    m_bmpOutlookBar.LoadBitmapA(strResDir + "OutlookCtrlBar.bmp");
    m_bmpMenuIconChecked.LoadBitmapA(strResDir + "MenuIconChecked.bmp");
    m_bmpFileTransProgress.LoadBitmapA(strResDir + "FileTransProgressBar.bmp");

    const kx::skin::Section section(strIniFile, "OtherCtrl");
    SetFill(m_bmpSliderTrack, section, "SliderCtrlTrack_Left", "SliderCtrlTrack_Right");
    SetFill(m_bmpSliderThumb, section, "SliderCtrlThumb_Left", "SliderCtrlThumb_Right");
    SetFill(m_bmpOutlookBar, section, "OutlookCtrlBar_Left", "OutlookCtrlBar_Right");
    m_bmpOutlookBar.SetMultiState(3, 1);
    SetFill(m_bmpFileTransProgress, section, "FileTransProgressBar_Left", "FileTransProgressBar_Right");
    m_bmpFileTransProgress.SetMultiState(2, 1);
    m_sizeOutlookBar = StateSize(m_bmpOutlookBar);

    UnLoadRes(); // a load that fails would leave the earlier skin's image
    m_imgFileSend.Load(strResDir + "FileSend.png");
    m_imgFileReceive.Load(strResDir + "FileReceive.png");
    return 1;
}

void CKXSkinOtherRes::UnLoadRes()
{
    m_imgFileReceive.Free();
    m_imgFileSend.Free();
}
