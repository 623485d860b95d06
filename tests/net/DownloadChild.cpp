#include "KXHttpDownloadMgr.h"
#include "tests/net/WorkerThread.h"

namespace {

// Never destroyed: the last notifications come while the static objects are.
std::counting_semaphore<>& Blocks = *new std::counting_semaphore<>(0);
std::counting_semaphore<>& Ends = *new std::counting_semaphore<>(0);

test::WorkerThread worker;

int Print(unsigned int code, unsigned int id, CString const&, CString const&, unsigned long, unsigned long,
          unsigned int bExit)
{
    worker.Note();
    std::fprintf(stderr, "%u %u\n", id, code);
    if (code == WM_KXDOWNLOADBLOCK && bExit) std::exit(0);
    if (code == WM_KXDOWNLOADBLOCK) Blocks.release();
    if (code == WM_KXDOWNLOADENDED) Ends.release();
    return 0;
}

} // namespace

// DownloadChild HOW URL FILE: fetches it and ends in one of several ways.
int main(int, char** argv)
{
    const std::string_view how = argv[1];
    CKXHttpDownloadMgr& mgr = CKXHttpDownloadMgr::Instance();
    if (how == "limit") {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit none{2, 2};
        setrlimit(RLIMIT_FSIZE, &none);
        mgr.AddTask(argv[2], argv[3], Print, 0);
        worker.AwaitEnd();
        return 0;
    }
    mgr.AddTask(argv[2], argv[3], Print, how == "exit");
    if (how == "wait") mgr.AddTask(argv[2], "", Print, 0);
    Blocks.acquire(); // never, if the callback ends the process
    if (how == "wait")
        for (int n = 0; n < 2; ++n)
            Ends.acquire();
    return 0;
}
