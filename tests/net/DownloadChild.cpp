#include "KXHttpDownloadMgr.h"
#include "tests/support/Standard.h"

namespace {

// Never destroyed: the last notifications come while the static objects are.
std::counting_semaphore<>& Reached = *new std::counting_semaphore<>(0);

// The user's parameter is the code that is waited for, or 0: the first block ends the process.
int Print(unsigned int code, unsigned int id, CString const&, CString const&, unsigned long, unsigned long,
          unsigned int uAwaited)
{
    std::fprintf(stderr, "%u %u\n", id, code);
    if (code == WM_KXDOWNLOADBLOCK && uAwaited == 0) std::exit(0);
    if (code == uAwaited) Reached.release();
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
    }
    const unsigned int uAwaited = how == "wait" ? WM_KXDOWNLOADENDED : WM_KXDOWNLOADBLOCK;
    mgr.AddTask(argv[2], argv[3], Print, how == "exit" ? 0 : uAwaited);
    if (how == "wait") {
        mgr.AddTask(argv[2], "", Print, uAwaited);
        Reached.acquire();
    }
    while (how == "limit" && mgr.IsRunning())
        std::this_thread::yield();
    if (how != "limit") Reached.acquire(); // never, if the callback ends the process
    return 0;
}
