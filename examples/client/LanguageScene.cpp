#include "Scene.h"

#include <cstdio>

namespace {

constexpr char szAppName[] = "SampleClient";
int g_nHeard = 0;

LRESULT OnMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg != WM_KXLANCHANGED) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    ++g_nHeard;
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    const CString strTitle = pLans->GetString("IDS_TITLE");
    SetWindowTextA(hWnd, strTitle);
    std::printf("   window heard message %u: its title is now \"%s\"\n", nMsg,
                KXText::ToUtf8(strTitle).c_str());
    CKXLogSys::GetSingletonPtr()->PushLogEx(CKXLogSys::LogInfo, "language is now %s",
                                            pLans->GetCurrentLan().strID.GetString());
    return 0;
}

// The client's own window for as long as the scene lasts.
class Window
{
public:
    Window()
    {
        const WNDCLASSA windowClass{OnMessage, "SampleClient"};
        RegisterClassA(&windowClass);
        m_hWnd = CreateWindowExA(0, "SampleClient", "", WS_POPUP | WS_VISIBLE, 0, 0, 640, 400);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window()
    {
        DestroyWindow(m_hWnd);
        UnregisterClassA("SampleClient");
    }

private:
    HWND m_hWnd;
};

void PrintTexts(CKXLanResManager* pLans)
{
    for (const char* pszKey : {"IDS_GREETING", "IDS_TEST_HINT", "IDS_NOT_THERE"})
        std::printf("      %-14s %s\n", pszKey, KXText::ToUtf8(pLans->GetString(pszKey)).c_str());
}

} // namespace

// Each run starts in the language that the run before it saved, and saves the other one.
bool client::ShowLanguages()
{
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    if (!pLans->Initialize("Languages")) return false;
    const int nLans = pLans->GetLanCount();
    for (int n = 0; n < nLans; ++n)
        std::printf("   %d: %s, \"%s\"\n", n, KXText::ToUtf8(pLans->GetLanID(n)).c_str(),
                    KXText::ToUtf8(pLans->GetLanName(n)).c_str());

    const Window window;
    pLans->SetCurrentLanFromReg(szAppName, 1);
    std::printf("   starting in %s, as saved for this user\n",
                KXText::ToUtf8(pLans->GetCurrentLan().strName).c_str());
    PrintTexts(pLans);

    const int nNext = (pLans->GetCurrentLanIndex() + 1) % nLans;
    if (!pLans->SetCurrentLan(nNext, 1)) return false;
    PrintTexts(pLans);
    std::printf("   saving %s for the next run\n", KXText::ToUtf8(pLans->GetCurrentLan().strName).c_str());
    return CKXLanResManager::SaveLanToReg(szAppName, pLans->GetCurrentLan().strID) && g_nHeard == 2;
}
