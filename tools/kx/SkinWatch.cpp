// A window with a skin's sheet, drawn anew whenever a file of the skin changes.

#include "skin/SkinCheck.h"
#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"
#include "tools/kx/SkinSheet.h"

#include <KXText.h>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <platform/Host.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace kx::tool {

namespace {

namespace fs = std::filesystem;

constexpr UINT kTimer = 1;
constexpr UINT kTimerPeriod = 150; // milliseconds: an editor's several writes of one file count as one change
constexpr int kLine = 16;
constexpr std::size_t kMostLines = 12;
constexpr COLORREF kProblemGround = RGB(255, 240, 238);
constexpr COLORREF kProblemText = RGB(160, 32, 24);

// Tells of changes below a directory. Directories that come later are watched too.
class Changes
{
public:
    explicit Changes(std::string dir) : m_dir(std::move(dir)), m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        WatchAll();
    }
    Changes(const Changes&) = delete;
    Changes& operator=(const Changes&) = delete;
    ~Changes()
    {
        if (m_fd >= 0) close(m_fd);
    }

    // Whether there were any since the last call.
    bool Take()
    {
        alignas(inotify_event) char buffer[4096];
        bool bAny = false;
        while (m_fd >= 0 && read(m_fd, buffer, sizeof(buffer)) > 0)
            bAny = true;
        const bool bWasThere = m_bThere;
        if (bAny || !bWasThere) WatchAll();
        return bAny || m_bThere != bWasThere;
    }

private:
    void WatchAll()
    {
        constexpr std::uint32_t kWhat =
            IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MOVE_SELF;
        m_bThere = inotify_add_watch(m_fd, m_dir.c_str(), kWhat) >= 0;
        std::error_code error;
        int nLeft = 1000;
        for (fs::recursive_directory_iterator it(m_dir, error), end; !error && it != end && nLeft-- > 0;
             it.increment(error))
            if (it->is_directory(error)) inotify_add_watch(m_fd, it->path().c_str(), kWhat);
    }

    const std::string m_dir;
    const int m_fd;
    bool m_bThere = true; // some programs replace a whole directory
};

class CWatchWnd : public CWnd
{
public:
    CWatchWnd(const std::string& dir, const CString& strDir) : m_changes(dir), m_strDir(strDir) { Load(); }

    int Create()
    {
        CRect rcDesktop;
        CWnd::FromHandle(::GetDesktopWindow())->GetClientRect(rcDesktop);
        const int cy = std::min<int>(rcDesktop.Height() - 40, m_sheet->Height());
        const CRect rc(20, 20, 20 + SkinSheet::kWidth, 20 + std::max(cy, 200));
        const char* const pszClass = AfxRegisterWndClass(0, nullptr, nullptr, nullptr);
        if (!CreateEx(0, pszClass, "kx skin watch", WS_POPUP | WS_VISIBLE, rc, nullptr, 0)) return 0;
        SetTimer(kTimer, kTimerPeriod, nullptr);
        return 1;
    }

protected:
    void OnTimer(unsigned int)
    {
        // Drawn once it has been quiet for a period.
        const bool bChanged = m_changes.Take();
        if (!bChanged && m_bDirty) {
            Load();
            Invalidate();
        }
        m_bDirty = bChanged;
    }
    int OnEraseBkgnd(CDC*) { return 1; }
    void OnPaint()
    {
        CPaintDC dc(this);
        CRect rc;
        GetClientRect(rc);
        const int cyProblems = m_problems.empty() ? 0 : (static_cast<int>(m_problems.size()) + 1) * kLine;
        const int cySheet = rc.Height() - cyProblems;
        m_yTop = std::clamp(m_yTop, 0, std::max(0, m_sheet->Height() - cySheet));
        dc.FillSolidRect(rc, RGB(250, 250, 251));
        ::BitBlt(dc, 0, 0, rc.Width(), std::min(cySheet, m_sheet->Height()), m_sheet->DC(), 0, m_yTop,
                 SRCCOPY);
        if (cyProblems == 0) return;
        CRect rcLine(8, cySheet + kLine / 2, rc.right, cySheet + kLine / 2 + kLine);
        dc.FillSolidRect(0, cySheet, rc.Width(), cyProblems, kProblemGround);
        dc.SetTextColor(kProblemText);
        dc.SetBkMode(TRANSPARENT);
        for (const CString& strProblem : m_problems) {
            dc.DrawText(strProblem, rcLine, DT_SINGLELINE | DT_NOPREFIX);
            rcLine.top += kLine;
            rcLine.bottom += kLine;
        }
    }
    void OnKeyDown(unsigned int nKey, unsigned int, unsigned int)
    {
        constexpr unsigned int kEscape = 0x1B, kPageUp = 0x21, kPageDown = 0x22;
        if (nKey == kEscape) PostQuitMessage(0);
        if (nKey == kPageDown) m_yTop += 300;
        if (nKey == kPageUp) m_yTop -= 300;
        Invalidate();
    }
    void OnDestroy() { PostQuitMessage(0); }
    DECLARE_MESSAGE_MAP()

private:
    // The last good sheet stays while the skin has errors.
    void Load()
    {
        m_problems.clear();
        bool bErrors = false;
        skin::CheckSkin(m_strDir, [&](const Finding& finding) {
            bErrors = bErrors || finding.severity == Severity::Error;
            if (finding.severity == Severity::Note || m_problems.size() >= kMostLines) return;
            CString strLine = finding.strFile.Mid(m_strDir.GetLength());
            if (finding.nLine > 0) strLine.AppendFormat(":%d", finding.nLine);
            m_problems.push_back(strLine + ": " + finding.strText);
        });
        if (!bErrors || !m_sheet) m_sheet = std::make_unique<SkinSheet>(m_strDir);
        std::printf("%s\n", bErrors ? "the skin has errors: the sheet before stays" : "drawn");
        for (const CString& strProblem : m_problems)
            std::printf("  %s\n", Printable(KXText::ToUtf8(strProblem)).c_str());
        std::fflush(stdout);
    }

    Changes m_changes;
    const CString m_strDir;
    std::unique_ptr<SkinSheet> m_sheet;
    std::vector<CString> m_problems;
    int m_yTop = 0;
    bool m_bDirty = false;
};

BEGIN_MESSAGE_MAP(CWatchWnd, CWnd)
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_WM_TIMER()
ON_WM_KEYDOWN()
ON_WM_DESTROY()
END_MESSAGE_MAP()

} // namespace

int WatchSkin(Arguments& arguments)
{
    const auto dir = arguments.Word();
    if (!dir || !arguments.Rest().empty()) return Misused("kx skin watch DIR");
    const CString strDir = LibraryPath(*dir, true);
    if (strDir.IsEmpty() || !fs::is_directory(*dir)) return Complain("there is no directory " + *dir);
    if (!KXHost::UseDisplay()) return Complain("there is no display that answers: DISPLAY names none");
    CWatchWnd window(*dir, strDir);
    if (!window.Create()) return Complain("there can't be a window");
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0) > 0)
        DispatchMessageA(&msg);
    return Clean;
}

} // namespace kx::tool
