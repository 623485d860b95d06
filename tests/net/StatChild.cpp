#include "KXHttpDownloadMgr.h"
#include "KXStatSender.h"
#include "tests/support/Standard.h"

namespace {

std::counting_semaphore<> ended{0};

int OnDownload(unsigned int code, unsigned int, CString const&, CString const&, unsigned long, unsigned long,
               unsigned int)
{
    if (code == WM_KXDOWNLOADENDED) ended.release();
    return 0;
}

} // namespace

// StatChild BASE: reports one start. StatChild BASE early: reports before it is initialised, then again.
int main(int argc, char** argv)
{
    CKXStatSender& sender = CKXStatSender::Instance();
    CKXHttpDownloadMgr& mgr = CKXHttpDownloadMgr::Instance();
    if (argc > 2) {
        sender.Report("abc", 3);
        while (mgr.IsRunning())
            std::this_thread::yield();
    }
    sender.Initialize(argv[1], "7");
    sender.Report("start", 1);
    if (argc == 2) {
        mgr.AddTask(CString(argv[1]) + "/end", "", OnDownload, 0); // behind the report
        ended.acquire();
    }
    return 0;
}
