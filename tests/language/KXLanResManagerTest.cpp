#include "KXMessages.h"
#include "tests/language/LanguageTree.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Registry.h"
#include "tests/support/Test.h"

using namespace test;
using testing::ElementsAre;

namespace {

struct Language : testing::Test
{
    Language()
    {
        tree.Add("Beta", "B", "k=beta\n");
        tree.Add("alpha", "A", "k=alpha\n");
        tree.Add(".hidden", "H", "k=hidden\n");
        AppDir().Write(tree.Path("nameless/Lan.ini"), "[Language]\r\nLanguage=\r\n");
        AppDir().MakeDir(tree.Path("bare"));
        AppDir().Write(tree.Path("file"), "");
        AppDir().Write(tree.Path("Lan.ini"), "[Language]\r\nLanguage=the root itself\r\n");
    }
    void Init() { ASSERT_EQ(lans->Initialize(tree.Name().c_str()), 1); }
    std::vector<std::string> Ids() const
    {
        std::vector<KXLanguageItem> items{{"old", "old"}};
        lans->GetLans(items);
        std::vector<std::string> ids;
        for (const auto& item : items)
            ids.emplace_back(item.strID);
        return ids;
    }
    std::string Current() const { return lans->GetCurrentLan().strID.GetString(); }

    LanguageTree tree;
    CKXLanResManager* lans = (AppDir(), CKXLanResManager::GetSingletonPtr());
};

// A visible window of the test's, writing down what language it finds at each language message.
struct Listener : Fixed
{
    ~Listener() { DestroyWindow(window); }

    std::vector<std::string> heard;
    const Handler handler = [this](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (nMsg != WM_KXLANCHANGED) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        EXPECT_EQ(wParam, 0u);
        EXPECT_EQ(lParam, 0);
        auto* pLans = CKXLanResManager::GetSingletonPtr();
        heard.push_back(std::string(pLans->GetCurrentLan().strID) + ":" + pLans->GetString("k").GetString());
        return 0;
    };
    const HWND window = Make(&handler, WS_VISIBLE);
};

TEST_F(Language, KnowsNothingAtFirstAndListsDirectoriesThatNameThemselves)
{
    EXPECT_EQ(RunChild("FreshLanguageChild", {AppDir().Path("app"), tree.Name()}), "");
    Init();
    EXPECT_THAT(Ids(), ElementsAre(".hidden", "alpha", "Beta"));
    EXPECT_EQ(lans->GetLanCount(), 3);
    EXPECT_STREQ(lans->GetLanName(2), "B");
    EXPECT_STREQ(lans->GetLanID(1), "alpha");
    for (const int n : {-1, 3, INT32_MAX}) {
        EXPECT_STREQ(lans->GetLanName(n), "");
        EXPECT_STREQ(lans->GetLanID(n), "");
    }
    const DebugText text(true);
    EXPECT_EQ(lans->Initialize("nowhere"), 0);
    EXPECT_EQ(lans->GetLanCount(), 0);
    EXPECT_THAT(text.Text(), testing::EndsWith("\\nowhere\\ can't be read: there is no language\n"));
}

TEST_F(Language, SelectsByPositionAndByExactIdentifier)
{
    Init();
    Listener window;
    EXPECT_EQ(lans->SetCurrentLan("Beta", 1), 1);
    EXPECT_EQ(lans->GetCurrentLanIndex(), 2);
    EXPECT_EQ(lans->SetCurrentLan(2, 1), 0);      // current already
    EXPECT_EQ(lans->SetCurrentLan("Beta", 1), 1); // but named, it is loaded and told again
    for (const int n : {-1, 3})
        EXPECT_EQ(lans->SetCurrentLan(n, 1), 0);
    EXPECT_EQ(lans->SetCurrentLan("beta", 1), 0);
    EXPECT_EQ(lans->SetCurrentLan("", 1), 0);
    EXPECT_EQ(Current(), "Beta");
    EXPECT_EQ(lans->SetCurrentLan(1, 0), 1); // silently
    EXPECT_EQ(Current(), "alpha");
    EXPECT_THAT(window.heard, ElementsAre("Beta:beta", "Beta:beta"));
}

// The selecting thread waits for the window's own thread, which finds the selection complete.
TEST_F(Language, WindowsOfOtherThreadsHearItOnTheirOwn)
{
    Init();
    std::promise<void> ready;
    std::jthread owner([&] {
        Listener window;
        ready.set_value();
        MSG msg;
        while (window.heard.empty())
            PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);
        EXPECT_THAT(window.heard, ElementsAre("Beta:beta"));
    });
    ready.get_future().wait();
    EXPECT_EQ(lans->SetCurrentLan("Beta", 1), 1);
}

TEST_F(Language, SavedChoiceComesBackFromAnIniFile)
{
    Init();
    const TempDir dir;
    const CString strIni = dir.Win("user.ini");
    const auto restored = [&] { return lans->SetCurrentLanFromIniFile(strIni, 0), Current(); };
    lans->SetCurrentLan("Beta", 0);
    EXPECT_EQ(restored(), ".hidden"); // none saved: the first
    EXPECT_NE(CKXLanResManager::SaveLanToIniFile(strIni, "alpha"), 0);
    EXPECT_EQ(Current(), ".hidden");
    EXPECT_EQ(restored(), "alpha");
    CKXLanResManager::SaveLanToIniFile(strIni, "gone");
    EXPECT_EQ(restored(), "alpha"); // not installed: nothing changes
    EXPECT_EQ(CKXLanResManager::SaveLanToIniFile(dir.Win("none\\user.ini"), "alpha"), 0);
    const Listener window;
    lans->SetCurrentLanFromIniFile(dir.Win("other.ini"), 1);
    EXPECT_THAT(window.heard, ElementsAre(".hidden:hidden"));
}

TEST_F(Language, SavedChoiceComesBackFromTheRegistry)
{
    Init();
    const NoLeak noLeak;
    const TempDir dir;
    KXHost::SetRegistryFile(dir.Path("sub/registry.ini"));
    const auto restored = [&](const char* pszApp) {
        return lans->SetCurrentLanFromReg(pszApp, 0), Current();
    };
    for (const char* pszId : {"alpha", "Beta"}) {
        EXPECT_EQ(CKXLanResManager::SaveLanToReg("App", pszId), 1);
        EXPECT_EQ(restored("App"), pszId);
    }

    using namespace std::string_view_literals;
    std::string strLong(301, 'x');
    strLong.back() = '\0';
    const std::tuple<DWORD, std::string_view, const char*> cases[] = {
        {REG_EXPAND_SZ, "alpha\0"sv, "alpha"}, {REG_BINARY, "alpha\0"sv, ".hidden"},
        {REG_SZ, "alpha"sv, ".hidden"},        {REG_SZ, ""sv, ".hidden"},
        {REG_SZ, "gone\0"sv, ".hidden"},       {REG_SZ, strLong, ".hidden"},
    };
    for (const auto& [dwType, bytes, pszSelected] : cases) {
        lans->SetCurrentLan("Beta", 0);
        StoreValue("SOFTWARE\\Brightfern\\App", "Language", dwType, bytes);
        EXPECT_EQ(restored("App"), pszSelected) << bytes;
    }
    lans->SetCurrentLan("Beta", 0);
    EXPECT_EQ(restored("Unknown"), ".hidden");
    KXHost::SetRegistryFile("/proc/none/registry.ini");
    EXPECT_EQ(CKXLanResManager::SaveLanToReg("App", "alpha"), 0);
    KXHost::SetRegistryFile("");
}

TEST_F(Language, ASecondListingLeavesTheChoice)
{
    Init();
    lans->SetCurrentLan("Beta", 0);
    LanguageTree fewer;
    fewer.Add("only", "O");
    EXPECT_EQ(lans->Initialize(fewer.Name().c_str()), 1);
    EXPECT_EQ(lans->GetCurrentLanIndex(), 2);
    EXPECT_STREQ(lans->GetLanName(2), "");
    EXPECT_EQ(Current(), "Beta");
    EXPECT_STREQ(lans->GetString("k"), "beta");
}

} // namespace
