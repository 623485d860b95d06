#include "LocalServer.h"
#include "Scene.h"
#include "Sheet.h"
#include "SkinPainter.h"

#include <cstdio>
#include <platform/Window.h>

namespace {

constexpr int cxSheet = 520;
constexpr int nSteps = 5; // pictures of the bar: a fifth of it, two, and so on
constexpr int cyStep = 36;
constexpr int cyHead = 40;

// Draws the bar anew, below the last one, whenever another fifth has arrived.
class ProgressSheet
{
public:
    ProgressSheet() : m_sheet(cxSheet, cyHead + nSteps * cyStep + 12), m_painter(m_sheet.DC())
    {
        const CRect rcAll(0, 0, cxSheet, cyHead + nSteps * cyStep + 12);
        m_painter.DC().FillSolidRect(&rcAll, m_painter.Colors().m_clrMainTabClient);
        m_painter.Heading(CRect(16, 8, cxSheet - 16, cyHead - 4), "lesson.pak");
    }

    void Show(unsigned long dwReceived, unsigned long dwTotal)
    {
        if (dwTotal == 0) return;
        for (; m_nShown < nSteps && dwReceived * nSteps >= dwTotal * static_cast<unsigned long>(m_nShown + 1);
             ++m_nShown) {
            const int y = cyHead + m_nShown * cyStep;
            m_painter.Progress(CRect(16, y, 340, y + cyStep), static_cast<int>(dwReceived * 100 / dwTotal));
            CString strSize;
            strSize.Format("%lu of %lu KB", dwReceived / 1024, dwTotal / 1024);
            m_painter.Text(CRect(356, y, cxSheet - 16, y + cyStep), strSize);
        }
    }
    bool Write(const char* pszName) { return m_nShown == nSteps && m_sheet.Write(pszName); }

private:
    client::Sheet m_sheet;
    client::SkinPainter m_painter;
    int m_nShown = 0;
};

struct Download
{
    ProgressSheet sheet;
    unsigned long dwTotal = 0;
    int nBlocks = 0;
    bool bEnded = false;
};

// The window that the downloads notify; its value is the one that runs.
LRESULT DownloadProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    auto* pDownload = reinterpret_cast<Download*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (!pDownload) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    switch (nMsg) {
    case WM_KXDOWNLOADOPENED:
        pDownload->dwTotal = static_cast<unsigned long>(lParam);
        return 0;
    case WM_KXDOWNLOADBLOCK:
        ++pDownload->nBlocks;
        pDownload->sheet.Show(static_cast<unsigned long>(lParam), pDownload->dwTotal);
        return 0;
    case WM_KXDOWNLOADENDED:
    case WM_TIMER:
        pDownload->bEnded = true;
        return 0;
    default:
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    }
}

bool DownloadInSkin(const client::LocalServer& server, HWND hWnd, const CString& strSkin)
{
    const CString strFile = CKXFileSystem::GetInstancePtr()->GetAppPath() + "lesson.pak";
    Download download;
    SetWindowLongPtrA(hWnd, GWLP_USERDATA, reinterpret_cast<std::intptr_t>(&download));
    const unsigned int uTask = CKXHttpDownloadMgr::Instance().AddTask(server.LessonUrl(), strFile, hWnd);
    // A download that fails falls silent.
    constexpr UINT_PTR nSilence = 1;
    constexpr UINT nLimit = 30'000;
    SetTimer(hWnd, nSilence, nLimit, nullptr);
    MSG msg;
    while (!download.bEnded && GetMessageA(&msg, nullptr, 0, 0))
        DispatchMessageA(&msg);
    KillTimer(hWnd, nSilence);
    SetWindowLongPtrA(hWnd, GWLP_USERDATA, 0);

    CFile file;
    const std::uint64_t nLength = file.Open(strFile, CFile::modeRead) ? file.GetLength() : 0;
    std::printf("   task %u, in %s: %lu bytes in %d blocks\n", uTask, KXText::ToUtf8(strSkin).c_str(),
                static_cast<unsigned long>(nLength), download.nBlocks);
    return nLength == client::LocalServer::kLessonSize &&
           download.sheet.Write("download-" + strSkin + ".png");
}

bool DownloadInAllSkins(const client::LocalServer& server)
{
    WNDCLASSA wndClass;
    wndClass.lpfnWndProc = DownloadProc;
    wndClass.lpszClassName = "downloads";
    RegisterClassA(&wndClass);
    const HWND hWnd = CreateWindowExA(0, "downloads", "Downloads", WS_POPUP, 0, 0, 1, 1);
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    bool bAll = hWnd != nullptr && pSkins->GetSkinsTotal() > 0;
    for (int n = 0; bAll && n < pSkins->GetSkinsTotal(); ++n) {
        pSkins->SetSkin(n, 0);
        bAll = DownloadInSkin(server, hWnd, pSkins->GetSkinName(n));
    }
    DestroyWindow(hWnd);
    UnregisterClassA("downloads");
    return bAll;
}

} // namespace

// A file from a server, once for each skin's progress bar, and two reports to it.
bool client::ShowDownloads()
{
    LocalServer server;
    if (!DownloadInAllSkins(server)) return false;
    CKXStatSender& sender = CKXStatSender::Instance();
    sender.Initialize(server.ReportUrl(), "2.6");
    sender.Report("lesson", 12);
    sender.Report("minutes", 45);
    for (const std::string& report : server.AwaitReports(2))
        std::printf("   the server got %s\n", report.c_str());
    return true;
}
