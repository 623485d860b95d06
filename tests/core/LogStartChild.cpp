#include "KXLogSys.h"
#include "platform/Exception.h"
#include "platform/Host.h"
#include "tests/support/Process.h"
#include "tests/support/ShortMemory.h"
#include <dlfcn.h>
#include <pthread.h>

// LogStartChild FILE: starts the log and queues lines while an allocation fails, each in its turn, and starts
// it while no thread can be made.

namespace {

using shortage::g_nLeft;

std::atomic<bool> g_bNoThreads{false};

#define CHECK(condition)                                                                                     \
    if (!(condition)) {                                                                                      \
        std::fprintf(stderr, "line %d, failing allocation %d: %s\n", __LINE__, n, #condition);               \
        std::_Exit(1);                                                                                       \
    }

// Whether a line is queued; the memory exception alone tells that it isn't.
bool Push(CKXLogSys* pLog, const std::string& line)
{
    try {
        pLog->PushLogEx(CKXLogSys::LogInfo, "%s", line.c_str());
        return true;
    } catch (CMemoryException* pException) {
        pException->Delete();
        return false;
    }
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
    const auto text = [&] {
        std::ifstream file(args[1]);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    int n = 0;
    for (bool bAll = false; !bAll; ++n) {
        const int nHandles = KXHost::LiveHandles();
        g_nLeft = n;
        const int nStarted = pLog->Initialize(strFile);
        bAll = g_nLeft >= 0;
        g_nLeft = -1;
        CHECK(nStarted || test::Threads() == 1);
        CHECK(nStarted || KXHost::LiveHandles() == nHandles);
        pLog->PushLog(CKXLogSys::LogInfo, "line");
        CHECK(nStarted || pLog->Flush(INFINITE) == 0);
        pLog->Uninitialize();
        CHECK(KXHost::LiveHandles() == nHandles);
        CHECK(pLog->Initialize(strFile));
        CHECK(pLog->Flush(INFINITE));
        pLog->Uninitialize();
    }
    CHECK(n > 5);

    const std::string line(100'000, 'x');
    std::size_t nQueued = 0;
    n = 0;
    for (bool bAll = false; !bAll; ++n) {
        g_nLeft = n;
        const bool bQueued = Push(pLog, line);
        bAll = g_nLeft >= 0;
        g_nLeft = -1;
        CHECK(bQueued == bAll);
        nQueued += bQueued;
    }
    CHECK(n > 2);
    CHECK(pLog->Initialize(strFile));
    CHECK(pLog->Flush(INFINITE));
    CHECK(text().size() == nQueued * (line.size() + std::strlen("[2009-03-14 08:05:09] 1 \n")));
    pLog->Uninitialize();

    g_bNoThreads = true;
    CHECK(pLog->Initialize(strFile));
    pLog->PushLog(CKXLogSys::LogInfo, "waits");
    CHECK(pLog->Flush(INFINITE) == 0);
    pLog->Uninitialize();
    CHECK(text().empty());
    g_bNoThreads = false;
    CHECK(pLog->Initialize(strFile));
    CHECK(pLog->Flush(INFINITE));
    CHECK(text().ends_with("] 1 waits\n"));
    pLog->Uninitialize();
    return 0;
}
