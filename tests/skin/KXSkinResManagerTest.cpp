#include "KXSkinResManager.h"

#include "KXMessages.h"
#include "platform/Sync.h"
#include "tests/platform/window/Support.h"
#include "tests/skin/SkinTree.h"
#include "tests/support/Process.h"

#include <cctype>
#include <sys/inotify.h>

using namespace test;
using testing::ElementsAre, testing::IsEmpty;

namespace {

// Spelled as by somebody whose file system doesn't tell case apart.
std::string Mixed(std::string name)
{
    const std::size_t step = name == "Skin.ini" ? 1 : 2;
    for (std::size_t n = 0; n < name.size(); n += step)
        name[n] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[n])));
    return name;
}

// The process's skins, written before the manager looks for them.
const TempDir& Tree()
{
    static const TempDir& tree = []() -> const TempDir& {
        const TempDir& app = AppDir();
        for (const std::string& name : SkinFiles()) {
            app.Write("Skins/Full/" + name, SkinFile(name));
            app.Write("Skins/mixed/" + Mixed(name), SkinFile(name));
            app.Write("Skins/Garbage/" + name, "garbage\xFF\xFE[ = \n" + std::string(3000, '['));
        }
        for (const char* name : {"Skin.ini", "Common/Window/Frame_Title.bmp", "Common/Button/CheckBox.bmp",
                                 "Common/IMList/Expand.ico", "Common/Others/FileReceive.png"})
            app.Write("Skins/Partial/" + std::string(name), SkinFile(name));
        for (const char* name : {"Skins/Gone/skin.ini", "Skins/Bare/skin.ini", "Skins/.hidden/skin.ini",
                                 "Skins/None/other.ini", "Skins/Directory/skin.ini/file", "Skins/skin.ini"})
            app.Write(name, "");
        for (const std::string& name : SkinFiles()) { // that a reader would wait for
            app.Write("Skins/Pipes/" + name, "");
            std::filesystem::remove(app.Path("Skins/Pipes/" + name));
            EXPECT_EQ(mkfifo(app.Path("Skins/Pipes/" + name).c_str(), 0600), 0);
        }
        return app;
    }();
    return tree;
}

std::vector<std::string> events;
std::function<void()> onMessage; // once

int OnSkinChanged(const CString& strPath)
{
    auto* pSkins = CKXSkinResManager::GetSingletonPtr();
    EXPECT_EQ(strPath, pSkins->GetCurrentSkinPath());
    events.push_back("callback " + std::to_string(pSkins->GetWndRes()->m_nTitleHeight) + " " +
                     std::to_string(pSkins->GetBtnRes()->m_bPushButton) + " " +
                     std::to_string(pSkins->GetClrDef()->m_clrMainTabClient));
    return 0;
}

LRESULT OnMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    std::array<char, 16> name{};
    GetWindowTextA(hWnd, name.data(), static_cast<int>(name.size()));
    if (nMsg == WM_KXSKINCHANGED && wParam == 0 && lParam == 0)
        events.push_back(std::string("message to ") + name.data());
    if (const auto act = nMsg == WM_KXSKINCHANGED ? std::exchange(onMessage, {}) : nullptr) act();
    return DefWindowProcA(hWnd, nMsg, wParam, lParam);
}

// A window of the test's that hears of changes.
struct Window : Fixed
{
    explicit Window(const char* pszName, DWORD dwStyle = WS_VISIBLE)
        : hWnd(Make(nullptr, dwStyle, pszName, {OnMessage, "SkinListener"}))
    {
    }
    ~Window() { DestroyWindow(hWnd); }

    const HWND hWnd;
};

// The files of the full skin that are opened while it lives, in the order of their first opening: values of a
// file written a moment ago are not kept for the next read.
class OpenedFiles : Fixed
{
public:
    OpenedFiles()
    {
        for (const char* dir : {"", "Common/Window/", "Common/Button/", "Common/IMList/", "Common/Others/"})
            m_dirs[inotify_add_watch(m_fd, Tree().Path("Skins/Full/" + std::string(dir)).c_str(), IN_OPEN)] =
                dir;
    }
    ~OpenedFiles() { close(m_fd); }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        alignas(inotify_event) std::array<char, 16384> buffer;
        const ssize_t got = read(m_fd, buffer.data(), buffer.size());
        for (ssize_t at = 0; at < got;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            const std::string name = m_dirs.at(event->wd) + event->name;
            if (!(event->mask & IN_ISDIR) && !std::ranges::count(names, name)) names.push_back(name);
            at += static_cast<ssize_t>(sizeof(*event) + event->len);
        }
        return names;
    }

private:
    int m_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    std::map<int, std::string> m_dirs;
};

struct Skins : testing::Test
{
    Skins()
    {
        skins->SetSkin("Bare", 0);
        skins->SetCallbackFunc(OnSkinChanged);
        events.clear();
    }
    ~Skins() override { skins->UnInitialize(); }

    const GdiPlus gdiPlus;
    CKXSkinResManager* skins = (Tree(), CKXSkinResManager::GetSingletonPtr());
    const CString root = CKXFileSystem::GetInstancePtr()->GetAppPath() + "\\Skins\\";
};

TEST_F(Skins, AreTheDirectoriesThatHoldASkinFile)
{
    std::vector<std::string> names;
    for (int n = 0; n < skins->GetSkinsTotal(); ++n)
        names.emplace_back(skins->GetSkinName(n));
    EXPECT_THAT(names,
                ElementsAre("Bare", "Directory", "Full", "Garbage", "Gone", "mixed", "Partial", "Pipes"));
    for (const int n : {-1, skins->GetSkinsTotal(), INT_MIN, INT_MAX}) {
        EXPECT_EQ(skins->GetSkinName(n), "");
        EXPECT_EQ(skins->SetSkin(n, 1), 0);
    }
    for (const char* name : {"", "None", ".hidden", "skin.ini", "..", "Full\\"})
        EXPECT_EQ(skins->SetSkin(name, 1), 0) << name;
    EXPECT_EQ(skins->GetCurrentSkinName(), "Bare");
    EXPECT_EQ(skins->GetCurrentSkinPath(), root + "Bare\\");
    EXPECT_THAT(events, IsEmpty());
}

// All is loaded in order, then the callback is told, then the windows that are to hear of it.
TEST_F(Skins, AChangeLoadsAllThenTellsTheCallbackAndTheWindows)
{
    const Window first("first"), hidden("hidden", 0), second("second");
    const HWND hForeign = KXHost::AddForeignWindow(GetCurrentProcessId() + 1, true);
    Tree().Write("Skins/Full/Skin.ini", SkinFile("Skin.ini") + "\r\n"); // so that it is read anew
    const OpenedFiles files;
    EXPECT_EQ(skins->SetSkin("full", 1), 1);
    EXPECT_THAT(files.Names(), testing::ElementsAreArray(SkinFiles()));
    EXPECT_THAT(events, ElementsAre("callback 30 1 197121", "message to first", "message to second"));
    EXPECT_THAT(KXHost::TakeForeignMessages(hForeign), IsEmpty());
    KXHost::RemoveForeignWindow(hForeign);
    EXPECT_EQ(skins->GetTitleBarAdjust(), 7);
    EXPECT_EQ(skins->GetCurrentSkinName(), "Full");
    EXPECT_EQ(skins->GetCurrentSkinPath(), root + "full\\");
}

TEST_F(Skins, TheCurrentOneIsLoadedAgainByNameOnly)
{
    const Window window("window");
    EXPECT_EQ(skins->SetSkin(2, 0), 1); // silently
    EXPECT_EQ(skins->GetCurrentSkinkID(), 2);
    EXPECT_EQ(skins->GetBtnRes()->m_bPushButton, 1);
    const OpenedFiles files;
    EXPECT_EQ(skins->SetSkin(2, 1), 1);
    EXPECT_THAT(files.Names(), IsEmpty());
    EXPECT_THAT(events, IsEmpty());
    EXPECT_EQ(skins->SetSkin("FULL", 1), 1);
    skins->SetCallbackFunc(nullptr);
    EXPECT_EQ(skins->SetSkin(0, 1), 1);
    EXPECT_THAT(events, ElementsAre("callback 30 1 197121", "message to window", "message to window"));
}

TEST_F(Skins, MissingAndBrokenFilesLeaveDefaults)
{
    std::filesystem::remove_all(Tree().Path("Skins/Gone")); // since it was listed
    for (const char* name : {"Bare", "Directory", "Garbage", "Gone", "Pipes"}) {
        skins->SetSkin("Full", 0);
        EXPECT_EQ(skins->SetSkin(name, 1), 1) << name;
        EXPECT_EQ(events.back(), "callback 0 0 16777215");
        EXPECT_EQ(skins->GetWndRes()->m_nBkgType, 0);
        EXPECT_EQ(skins->GetWndRes()->m_bAutoAlign, 1);
        EXPECT_EQ(skins->GetIMLRes()->m_hNormalIcon, nullptr);
        EXPECT_EQ(skins->GetOthRes()->m_imgFileSend.GetImageSize().cx, 0);
    }
    EXPECT_THAT(KXHost::TakeMessageBoxes(), IsEmpty());
    skins->SetSkin("Full", 0);
    EXPECT_EQ(skins->SetSkin("Partial", 1), 1); // as far as its files go
    EXPECT_EQ(events.back(), "callback 30 0 197121");
    EXPECT_THAT((std::array{skins->GetWndRes()->m_nLeftWidth, skins->GetWndRes()->m_nOldLeftWidth,
                            skins->GetBtnRes()->m_bRadioButton, skins->GetBtnRes()->m_bCheckBox}),
                ElementsAre(0, 12, 0, 1));
    EXPECT_EQ(skins->GetIMLRes()->m_hNormalIcon, nullptr);
    EXPECT_NE(skins->GetIMLRes()->m_hExpandIcon, nullptr);
    EXPECT_EQ(skins->GetOthRes()->m_imgFileSend.IsValid(), 0);
    EXPECT_EQ(skins->GetOthRes()->m_imgFileReceive.GetImageSize().cx, 1);
}

// An observer that asks for diagnostics hears of each fallback once; nobody else does.
TEST_F(Skins, DiagnosticsTellWhatIsMissing)
{
    const DebugText described;
    const DebugText debug(true);
    Tree().Write("Skins/Partial/Skin.ini", "TextColor=1,2,3\r\n[COLOR]\r\n");
    skins->SetSkin("Partial", 0);
    Tree().Write("Skins/Partial/Skin.ini", SkinFile("Skin.ini"));
    const auto linesOf = [&](const std::string& name) {
        std::istringstream all(debug.Text());
        std::vector<std::string> lines;
        for (std::string line; std::getline(all, line);)
            if (line.find("Partial\\" + name) != line.npos) lines.push_back(line);
        return lines;
    };
    const std::string path = "skin: " + std::string(root) + "Partial\\";
    EXPECT_THAT(linesOf("Skin.ini"),
                ElementsAre(path + "Skin.ini:1: key TextColor stands before the first section, where nothing "
                                   "reads it"));
    EXPECT_THAT(linesOf("Common\\Button\\PushButton.bmp"),
                ElementsAre(path + "Common\\Button\\PushButton.bmp is missing: nothing is drawn where it is "
                                   "needed"));
    EXPECT_EQ(described.Text(), "");
}

int ChangeFullToMixed(const CString& strPath)
{
    OnSkinChanged(strPath);
    auto* pSkins = CKXSkinResManager::GetSingletonPtr();
    if (pSkins->GetCurrentSkinName() == "Full") pSkins->SetSkin("mixed", 1);
    return 0;
}

// By the callback, and by a window that ends the next one as well: each change is announced whole, and the
// last one stands. The skin named "mixed" spells the names of its files as it likes.
TEST_F(Skins, MayBeChangedWhileAChangeIsAnnounced)
{
    const Window first("first"), second("second");
    skins->SetCallbackFunc(ChangeFullToMixed);
    EXPECT_EQ(skins->SetSkin("Full", 1), 1);
    EXPECT_EQ(skins->GetCurrentSkinPath(), root + "mixed\\");
    EXPECT_THAT(events, ElementsAre("callback 30 1 197121", "callback 30 1 197121", "message to first",
                                    "message to second", "message to first", "message to second"));
    events.clear();
    onMessage = [&] {
        DestroyWindow(second.hWnd);
        skins->SetSkin("Bare", 1);
    };
    EXPECT_EQ(skins->SetSkin("mixed", 1), 1);
    EXPECT_EQ(skins->GetCurrentSkinPath(), root + "Bare\\");
    EXPECT_THAT(events, ElementsAre("callback 30 1 197121", "message to first", "callback 0 0 16777215",
                                    "message to first"));
}

TEST_F(Skins, AThousandChangesLeaveNothingBehind)
{
#ifdef __SANITIZE_ADDRESS__ // which holds on to what is freed
    constexpr long nBound = LONG_MAX / 2;
#else
    constexpr long nBound = 2048;
#endif
    int nHandles = 0;
    long nResident = 0;
    for (int n = 0; n < 1000; ++n) {
        ASSERT_EQ(skins->SetSkin(n % skins->GetSkinsTotal(), 0), 1);
        if (n != 9) continue;
        nHandles = KXHost::LiveHandles();
        nResident = ResidentKilobytes();
    }
    EXPECT_EQ(KXHost::LiveHandles(), nHandles);
    EXPECT_LE(ResidentKilobytes(), nResident + nBound);
}

TEST(SkinProcess, KnowsNothingAtFirstAndEndsWithAllReleased)
{
    const TempDir none;
    EXPECT_EQ(RunChild("FreshSkinChild", {none.Path("app")}), "");
    EXPECT_EQ(RunChild("FreshSkinChild", {Tree().Path("app"), "Full"}), "0 handles left\n");
}

} // namespace
