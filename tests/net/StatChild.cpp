#include "KXHttpDownloadMgr.h"
#include "KXStatSender.h"
#include "tests/net/WorkerThread.h"

namespace {

test::WorkerThread worker;
std::counting_semaphore<> ended{0};

int OnDownload(unsigned int code, unsigned int, CString const&, CString const&, unsigned long, unsigned long,
               unsigned int)
{
    worker.Note();
    if (code == WM_KXDOWNLOADENDED) ended.release();
    return 0;
}

// Waits until all that was added before has been sent.
void Drain(const CString& strBase)
{
    CKXHttpDownloadMgr::Instance().AddTask(strBase + "/end", "", OnDownload, 0);
    ended.acquire();
}

} // namespace

// StatChild BASE: reports one start. StatChild BASE early: reports before it is initialised, then again.
int main(int argc, char** argv)
{
    CKXStatSender& sender = CKXStatSender::Instance();
    if (argc > 2) {
        Drain(argv[1]);
        sender.Report("abc", 3);
        worker.AwaitEnd();
    }
    sender.Initialize(argv[1], "7");
    sender.Report("start", 1);
    if (argc == 2) Drain(argv[1]);
    return 0;
}
