#include "KXHttpDownloadMgr.h"
#include "KXStatSender.h"

#include <filesystem>
#include <iterator>
#include <semaphore>
#include <thread>

namespace {

std::binary_semaphore ended{0};

int OnDownload(unsigned int code, unsigned int, CString const&, CString const&, unsigned long, unsigned long,
               unsigned int)
{
    if (code == WM_KXDOWNLOADENDED) ended.release();
    return 0;
}

std::ptrdiff_t Threads()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

} // namespace

// StatChild BASE: reports one start. StatChild BASE early: reports before it is initialised, then again.
int main(int argc, char** argv)
{
    CKXStatSender& sender = CKXStatSender::Instance();
    if (argc > 2) {
        sender.Report("abc", 3);
        while (Threads() > 1) // until the worker has ended by itself
            std::this_thread::yield();
    }
    sender.Initialize(argv[1], "7");
    sender.Report("start", 1);
    if (argc > 2) return 0;
    CKXHttpDownloadMgr::Instance().AddTask(CString(argv[1]) + "/end", "", OnDownload, 0);
    ended.acquire();
    return 0;
}
