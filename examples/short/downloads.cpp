#include "Short.h"

#include <httplib.h>
#include <platform/Clock.h>
#include <platform/Sync.h>
#include <thread>

// A file downloaded from a server in this process, with a callback that hears of each step; a report of use;
// and a download that fails, which ends the worker.
namespace {

HANDLE hDone;

int Tell(unsigned uCode, unsigned, const CString& strUrl, const CString&, unsigned long dwTotal,
         unsigned long dwReceived, unsigned)
{
    if (uCode != WM_KXDOWNLOADENDED) return 0;
    std::printf("%s: %lu of %lu bytes\n", strUrl.GetString(), dwReceived, dwTotal);
    SetEvent(hDone);
    return 0;
}

} // namespace

int main()
{
    httplib::Server server;
    server.Get("/lesson", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(std::string(10'000, 'x'), "text/plain");
    });
    const HANDLE hReport = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    server.Get("/report", [&](const httplib::Request&, httplib::Response&) { SetEvent(hReport); });
    CString strHost;
    strHost.Format("http://127.0.0.1:%d", server.bind_to_any_port("127.0.0.1"));
    std::jthread thread([&] { server.listen_after_bind(); });

    hDone = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    CKXHttpDownloadMgr::Instance().AddTask(strHost + "/lesson", Beside("lesson.txt"), Tell, 0);
    const bool bEnded = WaitForSingleObject(hDone, 10'000) == WAIT_OBJECT_0;

    KXHost::SetRegistryFile(KXHost::ToSystemPath(Beside("registry.ini"))); // where the user's id is kept
    CKXStatSender::Instance().Initialize(strHost + "/report", "2.6");
    CKXStatSender::Instance().Report("lesson", 12);
    const bool bReported = WaitForSingleObject(hReport, 10'000) == WAIT_OBJECT_0;
    server.stop();

    CKXHttpDownloadMgr& downloads = CKXHttpDownloadMgr::Instance();
    downloads.AddTask("http://127.0.0.1:1/lesson", "", nullptr); // nobody listens there
    while (downloads.IsRunning()) // a client asks when it next has something to download
        Sleep(10);
    std::printf("no more downloads: %s\n", downloads.GetLastFailure().GetString());
    CloseHandle(hReport);
    CloseHandle(hDone);
    return bEnded && bReported && !downloads.GetLastFailure().IsEmpty() ? 0 : 1;
}
