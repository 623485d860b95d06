#include "Short.h"

// The installed skins: their bitmaps, pictures and colours are loaded anew at each change, and windows
// redraw. They lie in `Skins` beside the executable.
namespace {

int nChanges = 0;

int OnSkin(const CString& strPath)
{
    std::printf("loaded %s\n", strPath.GetString());
    return ++nChanges;
}

} // namespace

int main()
{
    KXHost::UseMemoryDesktop();
    const Pictures pictures;
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    pSkins->SetCallbackFunc(OnSkin);

    const CRect rcButton(0, 0, 80, 24);
    for (int n = 0; n < pSkins->GetSkinsTotal(); ++n) {
        if (!pSkins->SetSkin(pSkins->GetSkinName(n), 1)) return 1;
        CKXMemoryDC surface;
        surface.Create(rcButton.Width(), rcButton.Height());
        pSkins->GetBtnRes()->m_bmpPushButton.DrawFill(&surface.GetDC(), rcButton, 0);
        std::printf("%s: the button's middle is %06X\n", pSkins->GetSkinName(n).GetString(),
                    static_cast<unsigned>(surface.GetDC().GetPixel(40, 12)));
    }
    pSkins->UnInitialize();
    return nChanges >= 2 ? 0 : 1;
}
