#include "GdiplusStart.h"
#include "Scene.h"
#include "SkinWindows.h"
#include "SkinnedWindow.h"

#include <cstdio>
#include <platform/Host.h>

namespace {

const CSize sizePicture(980, 712);

// The ground behind the windows.
void PaintDesktop()
{
    const HDC hDC = GetDC(nullptr);
    CKXGdiplusHelper::DrawGradientRect(hDC, RGB(112, 124, 138), RGB(62, 72, 84),
                                       CRect(0, 0, sizePicture.cx, sizePicture.cy), 0, 0);
    ReleaseDC(nullptr, hDC);
}

bool WriteDesktop(const CString& strSkin, const CString& strLan)
{
    const CString strPath =
        CKXFileSystem::GetInstancePtr()->GetAppPath() + "skin-" + strSkin + "-" + strLan + ".png";
    const std::string systemPath = KXHost::ToSystemPath(strPath);
    const bool bWritten = KXHost::SaveDesktop(systemPath);
    if (bWritten) std::printf("      %s\n", systemPath.c_str());
    return bWritten;
}

int OnSkinChanged(const CString& strPath)
{
    std::printf("      all of it is loaded from %s\n", KXText::ToUtf8(strPath).c_str());
    return 1;
}

bool ShowSkin(CKXSkinResManager& skins, int nSkin)
{
    const CString strSkin = skins.GetSkinName(nSkin);
    PaintDesktop();
    std::printf("   changing to %s\n", KXText::ToUtf8(strSkin).c_str());
    if (!skins.SetSkin(strSkin, 1) || skins.GetCurrentSkinkID() != nSkin) return false;
    std::printf("      the current skin is %s, its title by %d pixels higher than the desktop's\n",
                KXText::ToUtf8(skins.GetCurrentSkinName()).c_str(), skins.GetTitleBarAdjust());
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    for (int n = 0; n < pLans->GetLanCount(); ++n) {
        const CString strLan = pLans->GetLanID(n);
        if (!pLans->SetCurrentLan(strLan, 1) || !WriteDesktop(strSkin, strLan)) return false;
    }
    return true;
}

bool ShowAllSkins(CKXSkinResManager& skins)
{
    client::SkinnedWindow trainer(CRect(16, 16, 676, 696),
                                  {"trainer", "IDS_TITLE", true, true, client::PaintTrainer});
    client::SkinnedWindow friends(CRect(692, 16, 964, 442), {"friends", "IDS_FRIENDS", false, false,
                                                             client::PaintFriends, client::FriendsField});
    client::SkinnedWindow menu(CRect(716, 462, 936, 630),
                               {"menu", nullptr, true, false, client::PaintFriendMenu});
    const int nSkins = skins.GetSkinsTotal();
    for (int n = 0; n < nSkins; ++n)
        if (!ShowSkin(skins, n)) return false;
    return trainer.SkinsHeard() == nSkins && friends.SkinsHeard() == nSkins && menu.SkinsHeard() == nSkins;
}

} // namespace

// The client's windows in each skin and language, changed while they are open.
bool client::ShowSkins()
{
    const GdiplusStart start;
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    if (!start.IsStarted() || pSkins->GetSkinsTotal() == 0) return false;
    if (!KXHost::UseMemoryDesktop(sizePicture.cx, sizePicture.cy)) return false;
    for (int n = 0; n < pSkins->GetSkinsTotal(); ++n)
        std::printf("   %d: %s\n", n, KXText::ToUtf8(pSkins->GetSkinName(n)).c_str());
    pSkins->SetCallbackFunc(OnSkinChanged);
    const bool bShown = ShowAllSkins(*pSkins);
    pSkins->SetCallbackFunc(nullptr);
    pSkins->UnInitialize();
    return bShown;
}
