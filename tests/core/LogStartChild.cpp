#include "KXLogSys.h"
#include "platform/Exception.h"
#include "platform/Host.h"
#include "tests/support/Process.h"
#include "tests/support/ShortMemory.h"
#include "tests/support/TempDir.h"

#include <dlfcn.h>
#include <pthread.h>
#include <thread>

// LogStartChild FILE: starts the log and queues lines while an allocation fails, each in its turn, and starts
// it while no thread can be made.

namespace {

std::atomic<bool> g_bNoThreads{false};

#define CHECK(condition)                                                                                     \
    if (!(condition)) {                                                                                      \
        std::fprintf(stderr, "line %d, failing allocation %d: %s\n", __LINE__, n, #condition);               \
        std::_Exit(1);                                                                                       \
    }

// Runs a step whose allocation of this number fails; false if it has fewer.
template <class Step>
bool Fails(int n, Step step)
{
    shortage::g_nLeft = n;
    step();
    return shortage::g_nLeft.exchange(-1) < 0;
}

} // namespace

extern "C" int pthread_create(pthread_t* pThread, const pthread_attr_t* pAttributes, void* (*pfnMain)(void*),
                              void* pArg)
{
    if (g_bNoThreads) return EAGAIN;
    static const auto pfnReal =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return pfnReal(pThread, pAttributes, pfnMain, pArg);
}

int main(int, char** args)
{
    const CString strFile = ("C:" + std::string(args[1])).c_str();
    const auto text = [&] { return test::ReadFile(args[1]); };
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    int n = 0;
    // The second start is as usual, and writes what the first one couldn't.
    const auto startTwice = [&] {
        const int nHandles = KXHost::LiveHandles();
        int nStarted = 0;
        const bool bFails = Fails(n, [&] { nStarted = pLog->Initialize(strFile); });
        CHECK(nStarted || bFails);
        while (!nStarted && test::Threads() > 1) // one that was joined is listed for a moment more
            std::this_thread::yield();
        CHECK(nStarted || KXHost::LiveHandles() == nHandles);
        pLog->PushLog(CKXLogSys::LogInfo, "line");
        const int nFlushed = pLog->Flush(INFINITE);
        CHECK(nFlushed ? nStarted && !g_bNoThreads : bFails || g_bNoThreads);
        pLog->Uninitialize();
        CHECK(KXHost::LiveHandles() == nHandles);
        g_bNoThreads = false;
        CHECK(pLog->Initialize(strFile));
        CHECK(pLog->Flush(INFINITE));
        CHECK(nFlushed ? text().empty() : text().ends_with("] 1 line\n"));
        pLog->Uninitialize();
        return bFails;
    };
    while (startTwice())
        ++n;
    CHECK(n > 5);
    g_bNoThreads = true;
    startTwice();

    const std::string line(100'000, 'x');
    bool bQueued = false;
    for (n = 0; !bQueued; ++n) {
        const bool bFails = Fails(n, [&] {
            try {
                pLog->PushLogEx(CKXLogSys::LogInfo, "%s", line.c_str());
                bQueued = true;
            } catch (CMemoryException* pException) { // alone tells that it isn't queued
                pException->Delete();
            }
        });
        CHECK(bQueued != bFails);
    }
    CHECK(n > 2);
    CHECK(pLog->Initialize(strFile));
    CHECK(pLog->Flush(INFINITE));
    CHECK(text().size() == line.size() + std::strlen("[2009-03-14 08:05:09] 1 \n"));
    pLog->Uninitialize();
    return 0;
}
