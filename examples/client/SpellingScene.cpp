#include "GdiplusStart.h"
#include "Scene.h"
#include "SkinWindows.h"
#include "SkinnedWindow.h"
#include "SpellingWnd.h"
#include "TipThread.h"

#include <cstdio>
#include <cstdlib>
#include <platform/Host.h>

namespace {

// Plays the user: what it does goes through the window's queue, as from a mouse and a keyboard.
class Player
{
public:
    explicit Player(client::CSpellingWnd& wnd) : m_wnd(wnd) {}

    void Type(const CString& str)
    {
        for (int n = 0; n < str.GetLength(); ++n)
            Post(WM_CHAR, static_cast<BYTE>(str[n]));
    }
    void Enter() { Post(WM_KEYDOWN, VK_RETURN); }
    void Click(CPoint point)
    {
        const LPARAM lParam = point.x | point.y << 16;
        Post(WM_LBUTTONDOWN, MK_LBUTTON, lParam);
        Post(WM_LBUTTONUP, 0, lParam);
    }
    bool Save(const char* pszName)
    {
        const CString strPath = CKXFileSystem::GetInstancePtr()->GetAppPath() + pszName;
        const std::string path = KXHost::ToSystemPath(strPath);
        if (!KXHost::SaveDesktop(path)) return false;
        std::printf("      %s\n", path.c_str());
        return true;
    }

private:
    void Post(UINT nMsg, WPARAM wParam, LPARAM lParam = 1)
    {
        m_wnd.PostMessage(nMsg, wParam, lParam);
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
    }

    client::CSpellingWnd& m_wnd;
};

bool TakeTest(client::CSpellingWnd& wnd, Player& player)
{
    const client::SpellingTest& test = wnd.Test();
    std::printf("   asked for \"%s\" as %s\n", KXText::ToUtf8(test.Meaning()).c_str(),
                test.Shown().GetString());
    player.Type("voyege");
    if (!player.Save("spelling-1-typed.png")) return false;
    player.Enter();
    std::printf("   typed %s: %s\n", test.Typed().GetString(), test.IsRight() ? "right" : "wrong");
    if (test.IsRight() || !player.Save("spelling-2-wrong.png")) return false;

    player.Enter();
    player.Type("harboux\br");
    player.Click(wnd.ButtonCenter(0));
    std::printf("   typed %s: %s\n", test.Typed().GetString(), test.IsRight() ? "right" : "wrong");
    return test.IsRight() && test.Right() == 1;
}

bool ChangeLook(client::CSpellingWnd& wnd, Player& player)
{
    player.Click(wnd.SkinCenter(0));
    player.Click(wnd.LanguageCenter(0));
    std::printf("   picked the skin %s and the language %s\n",
                KXText::ToUtf8(CKXSkinResManager::GetSingletonPtr()->GetCurrentSkinName()).c_str(),
                KXText::ToUtf8(CKXLanResManager::GetSingletonPtr()->GetCurrentLan().strName).c_str());
    if (!player.Save("spelling-3-other-look.png")) return false;
    player.Enter();
    player.Click(wnd.ButtonCenter(1)); // the hint, a tip that is up by now
    return player.Save("spelling-4-hint.png");
}

bool Play()
{
    std::srand(7);
    client::CSpellingWnd wnd;
    CKXTipWnd tip;
    const auto showHint = [&](const CString& str) { tip.ShowTipWnd(str, 2000); };
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    if (!pSkins->SetSkin(pSkins->GetSkinName(1), 0) ||
        !CKXLanResManager::GetSingletonPtr()->SetCurrentLan("English", 0) || !tip.CreateTipWnd() ||
        !wnd.Create(showHint))
        return false;
    wnd.ShowWindow(SW_SHOW);
    Player player(wnd);
    const bool bPlayed = TakeTest(wnd, player) && ChangeLook(wnd, player);
    tip.DestroyWindow();
    wnd.DestroyWindow();
    MSG msg; // the window's end is the program's
    return bPlayed && PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
}

} // namespace

// A spelling test as one takes it, on a clock that doesn't wait for the fades of the hint.
bool client::ShowSpelling()
{
    const GdiplusStart start;
    if (!start.IsStarted() || !KXHost::UseMemoryDesktop(760, 520)) return false;
    KXHost::UseVirtualClock(1'700'000'000, KXHost::VirtualSleep::Advances);
    const bool bPlayed = Play();
    KXHost::UseRealClock();
    return bPlayed;
}

// The same on a display, for a user.
int client::RunSpelling()
{
    const GdiplusStart start;
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    if (!start.IsStarted() || !pLans->Initialize("Languages")) return 1;
    CKXRandom::Init();
    pLans->SetCurrentLanFromReg("SampleClient", 0);
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    pSkins->SetSkin(pSkins->GetSkinName(0), 0);
    TipThread tip;
    CSpellingWnd wnd;
    if (!wnd.Create([&](const CString& str) { tip.Show(str, wnd.m_hWnd, CSpellingWnd::TAKE_FOCUS); }))
        return 1;
    SkinnedWindow friends(CRect(16, 16, 288, 442),
                          {"friends", "IDS_FRIENDS", true, false, PaintFriends, FriendsField});
    friends.Redraw();
    wnd.ShowWindow(SW_SHOW);
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    CKXLanResManager::SaveLanToReg("SampleClient", pLans->GetCurrentLan().strID);
    return static_cast<int>(msg.wParam);
}
