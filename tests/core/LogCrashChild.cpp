#include "KXCrashDumper.h"
#include "KXLogSys.h"
#include "tests/core/ForgedQueue.h"
#include "tests/support/CrashKinds.h"

// LogCrashChild ROOT HOW WHAT: crashes while its log, ROOT/app/app.log, has lines that aren't written yet.

namespace {

CKXCritSection CKXLogSys::*LockOf(CKXLogSys*);
template <CKXCritSection CKXLogSys::*pLock>
struct Reach
{
    friend CKXCritSection CKXLogSys::*LockOf(CKXLogSys*) { return pLock; }
};
template struct Reach<&CKXLogSys::m_lockLog>;

// The number of lines that each thread has pushed, which the test reads in the file ROOT/counts.
std::atomic<std::uint64_t>* Counts(const std::string& root, std::size_t nThreads)
{
    const int file = open((root + "/counts").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    const std::size_t size = nThreads * sizeof(std::atomic<std::uint64_t>);
    if (ftruncate(file, static_cast<off_t>(size)) != 0) std::_Exit(1);
    void* const shared = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    return static_cast<std::atomic<std::uint64_t>*>(shared);
}

// One of eight threads that log crashes, at a moment that the seed tells.
void CrashAmongThreads(const std::string& root, unsigned nSeed)
{
    constexpr unsigned nThreads = 8;
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    if (!pLog->Initialize("C:\\app\\app.log")) std::_Exit(1);
    auto* const counts = Counts(root, nThreads);
    std::vector<std::jthread> threads;
    for (unsigned t = 0; t < nThreads; ++t)
        threads.emplace_back([=] {
            std::mt19937 random(nSeed * nThreads + t);
            const std::uint64_t nLast = t == 0 ? random() % 3000 : UINT64_MAX;
            for (std::uint64_t n = 0; n < nLast; ++n) {
                const std::string padding(random() % 64 == 0 ? random() % 9000 : random() % 90, 'x');
                pLog->PushLogEx(CKXLogSys::LogInfo, "%u %llu %s", t, static_cast<unsigned long long>(n),
                                padding.c_str());
                counts[t].store(n + 1);
            }
            crashes::CrashByRead();
        });
}

// Lines from before the start wait for one behind it, which never comes.
void CrashWithLinesWaiting(const std::string& kind)
{
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    const auto push = [&](int nFirst) {
        for (int n = nFirst; n < nFirst + 1000; ++n)
            pLog->PushLogEx(CKXLogSys::LogInfo, "n%d %s", n,
                            std::string(n % 500 ? 9u : 100'000u, 'x').c_str());
    };
    push(0);
    if (kind != "unopened" && !pLog->Initialize("C:\\app\\app.log")) std::_Exit(1);
    if (kind == "locked") {
        (pLog->*LockOf(pLog)).Lock();
        crashes::OnThread<crashes::CrashByRead>();
    }
    crashes::kKinds.at(kind == "unopened" ? "read" : kind).pfnCrash();
}

void CrashWithForgedQueue(const std::string& what)
{
    static test::ForgedQueue queue;
    for (const test::QueueFault& fault : test::kQueueFaults)
        if (what == fault.pszName) fault.pfnMake(queue);
    crashes::CrashByRead();
}

} // namespace

int main(int, char** args)
{
    const std::string root = args[1];
    const std::string how = args[2];
    KXHost::MountDrive('C', {root, DRIVE_FIXED, "", "", 0});
    CKXCrashDumper dumper;
    dumper.Initialize("App", "C:\\app\\", "stem", "", "", 0, 0);
    if (how == "threads") CrashAmongThreads(root, static_cast<unsigned>(std::atoi(args[3])));
    if (how == "waiting") CrashWithLinesWaiting(args[3]);
    if (how == "forged") CrashWithForgedQueue(args[3]);
    return 0;
}
