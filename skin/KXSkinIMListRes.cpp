#include "KXSkinIMListRes.h"

#include "platform/Exception.h"
#include "skin/SkinFiles.h"

#include <new>

using kx::skin::SetFill;
using kx::skin::StateSize;

namespace {

// Loads an icon, which ends with the last copy of `owner`.
HICON LoadSmallIcon(const CString& strFile, std::shared_ptr<void>& owner)
{
    constexpr int nSide = 16;
    const HANDLE hIcon = LoadImageA(nullptr, strFile, IMAGE_ICON, nSide, nSide, LR_LOADFROMFILE);
    owner.reset(hIcon, [](HANDLE handle) { DestroyIcon(static_cast<HICON>(handle)); });
    return static_cast<HICON>(hIcon);
}

} // namespace

int CKXSkinIMListRes::LoadRes(const CString& strResDir, const CString& strIniFile)
try {
    m_bmpGroupBtn.LoadBitmapA(strResDir + "GroupBtn.bmp");
    m_bmpTeamBtn.LoadBitmapA(strResDir + "TeamBtn.bmp");
    SetFill(m_bmpGroupBtn, {strIniFile, "IMList"}, "GroupBtn_Left", "GroupBtn_Right");
    m_bmpGroupBtn.SetMultiState(3, 1);
    m_bmpTeamBtn.SetMultiState(3, 1);
    m_sizeGroupBtn = StateSize(m_bmpGroupBtn);
    m_sizeTeamBtn = StateSize(m_bmpTeamBtn);
    m_hNormalIcon = LoadSmallIcon(strResDir + "Normal.ico", m_pNormalIcon);
    m_hExpandIcon = LoadSmallIcon(strResDir + "Expand.ico", m_pExpandIcon);
    return 1;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
