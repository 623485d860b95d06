#include "KXIniDataMgr.h"
#include "KXSkinResManager.h"
#include "tests/soak/Soak.h"
#include "tests/support/GdiPlus.h"
#include <filesystem>

soak::Figures soak::RunSkins(Turn turn, const test::TempDir& dir)
{
    const test::GdiPlus gdiPlus;
    CKXSkinResManager* const pSkins = CKXSkinResManager::GetSingletonPtr();
    Figures figures;
    while (turn.Goes()) {
        const CString strName = pSkins->GetSkinName(turn.Below(pSkins->GetSkinsTotal()));
        const std::string file = dir.Path("Skins/" + std::string(strName) + "/Common/Button/PushButton.bmp");
        const bool bShort = turn.Below(4) == 0 && std::filesystem::exists(file);
        if (bShort) std::filesystem::rename(file, file + ".away");
        pSkins->SetSkin(strName, 1);
        if (bShort) std::filesystem::rename(file + ".away", file);
        const CString strIni = pSkins->GetCurrentSkinPath() + "Skin.ini";
        const bool bLoaded = pSkins->GetBtnRes()->m_bmpPushButton.GetHBITMAP() != nullptr;
        figures.Need(pSkins->GetCurrentSkinName() == strName, "the skin's name");
        figures.Need(bLoaded != bShort || !std::filesystem::exists(file), "the skin's push button");
        figures.Need(pSkins->GetClrDef()->m_clrMenuSelectBk ==
                         CKXIniDataMgr::GetRGB(strIni, "COLOR", "MenuSelectBk", 1),
                     "the skin's colour");
        figures.faults += bShort;
        ++figures.operations;
    }
    pSkins->UnInitialize();
    return figures;
}
