#include "KXLanResManager.h"
#include "KXSkinResManager.h"
#include "platform/Host.h"
#include "tests/support/Check.h"
#include "tests/support/GdiPlus.h"
#include <cstdio>

using test::Check;

// Tries the state before a skin is selected, and with a second argument at the end of a process that has
// loaded that skin. The first is the executable's path.
int main(int argc, char** argv)
{
    KXHost::SetExecutablePath(argv[1]);
    CKXLanResManager::GetSingletonPtr();
    const int nHandles = KXHost::LiveHandles();
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    pSkins->Initialize();
    pSkins->UnInitialize();
    if (argc < 3)
        Check(pSkins->GetSkinsTotal() == 0 && !pSkins->SetSkin(0, 1) && !pSkins->SetSkin("", 1), "no skins");
    Check(pSkins->GetCurrentSkinkID() == -1, "no skin is current");
    Check(pSkins->GetCurrentSkinName().IsEmpty() && pSkins->GetCurrentSkinPath().IsEmpty(), "it has no name");
    Check(pSkins->GetTitleBarAdjust() == -23 && !pSkins->GetIMLRes()->m_hNormalIcon, "nothing is loaded");
    if (argc < 3) return 0;

    {
        const test::GdiPlus gdiPlus;
        Check(pSkins->SetSkin(argv[2], 1) == 1, "the skin is selected");
        Check(pSkins->GetOthRes()->m_imgFileSend.GetImageSize().cx > 0, "and has its images");
    }
    // The next singleton to go speaks when the skins are gone.
    KXHost::AddDebugObserver([nHandles](std::string_view text) {
        if (text == "CKXLanResManager Deconstruction!\n")
            std::fprintf(stderr, "%d handles left\n", KXHost::LiveHandles() - nHandles);
    });
    return 0;
}
