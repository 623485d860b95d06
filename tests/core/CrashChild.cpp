#include "KXCrashDumper.h"
#include "KXLogSys.h"
#include "tests/core/ForgedQueue.h"
#include "tests/support/CrashKinds.h"

// CrashChild ROOT HOW [WHAT]: with `C:` at the directory ROOT, crashes in that way. The environment says the
// rest.

namespace {

std::string Setting(const char* pszName, const char* pszElse = "")
{
    const char* psz = std::getenv(pszName);
    return psz ? psz : pszElse;
}

// Other threads look for files the whole time, and so hold the lock of the drives nearly always: each look
// copies all that is known of the drive, which is much here.
void CrashBesideSearches(KXHost::Drive drive)
{
    drive.strLabel.assign(1 << 20, 'x');
    KXHost::MountDrive('C', drive);
    constexpr int nThreads = 16;
    static std::atomic<int> nSearches{0};
    for (int n = 0; n < nThreads; ++n)
        std::thread([] {
            for (;; ++nSearches)
                PathFileExistsA("C:\\nothing");
        }).detach();
    while (nSearches < 100 * nThreads)
        std::this_thread::yield();
    crashes::CrashByRead();
}

// Crashes with more mappings than are counted on, all of them before the stack.
void CrashWithManyMappings()
{
    constexpr std::size_t nPages = 50'000, nPage = 4096;
    void* const p = mmap(nullptr, nPages * nPage, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    for (std::size_t n = 0; p != MAP_FAILED && n < nPages; n += 2)
        mprotect(static_cast<char*>(p) + n * nPage, nPage, PROT_NONE);
    crashes::CrashByRead();
}

// Crashes without a descriptor left.
void CrashWithoutDescriptors()
{
    const rlimit few{64, 64};
    setrlimit(RLIMIT_NOFILE, &few);
    while (dup(STDERR_FILENO) >= 0) {
    }
    crashes::CrashByRead();
}

// ---- While the process ends

std::string g_root;
std::atomic<bool> g_bCrashNow{false};

// The thread crashes when it is told to.
void StartThread()
{
    std::thread([] {
        g_bCrashNow.wait(false);
        crashes::CrashByRead();
    }).detach();
}

// Returns once the reporter is there.
void LetThreadCrash()
{
    g_bCrashNow = true;
    g_bCrashNow.notify_all();
    while (!std::filesystem::exists(g_root + "/app/args"))
        std::this_thread::yield();
}

// Goes after all that main made.
struct Last
{
    std::string how;
    ~Last()
    {
        if (how == "static") crashes::CrashByRead();
        if (how == "outliving") LetThreadCrash();
        if (how == "masked") std::ofstream(g_root + "/gone") << "now";
    }
} g_last;

void EndMain(const std::string& how)
{
    g_last.how = how;
    if (how == "atexit") std::atexit(crashes::CrashByRead);
    if (how == "outliving") StartThread();
    if (how == "masked") {
        StartThread();
        LetThreadCrash();
        std::atexit([] { std::ofstream(g_root + "/exits") << "now"; });
    }
}

// ---- While the log, ROOT/app/app.log, has lines that aren't written yet

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
    const std::string root = g_root = args[1];
    const std::string how = args[2];
    if (how == "restarted") { // how this very program is started again
        std::ofstream(root) << args[3] << "\n";
        return 0;
    }
    const KXHost::Drive drive{root, DRIVE_FIXED, "", "", 0};
    KXHost::MountDrive('C', drive);
    if (!Setting("KX_TEST_TIME").empty())
        KXHost::UseVirtualClock(std::atoll(Setting("KX_TEST_TIME").c_str()));
    static CKXCrashDumper& dumper = *new CKXCrashDumper; // the process's, to its last end
    if (Setting("KX_TEST_EARLY").empty()) {
        dumper.Initialize("first", "C:\\elsewhere\\", "first", "first", "first", 0, 0);
        dumper.Initialize(Setting("KX_TEST_APP", "App").c_str(), Setting("KX_TEST_PATH", "C:\\app\\").c_str(),
                          "stem", Setting("KX_TEST_RUN").c_str(), "ann@example.com",
                          Setting("KX_TEST_SEND") == "1", Setting("KX_TEST_RESTART") == "1");
        dumper.Unintialize();
    }
    if (how == "searches") CrashBesideSearches(drive);
    if (how == "mappings") CrashWithManyMappings();
    if (how == "descriptors") CrashWithoutDescriptors();
    if (how == "threads") CrashAmongThreads(root, static_cast<unsigned>(std::atoi(args[3])));
    if (how == "waiting") CrashWithLinesWaiting(args[3]);
    if (how == "forged") CrashWithForgedQueue(args[3]);
    if (crashes::kKinds.count(how))
        crashes::kKinds.at(how).pfnCrash();
    else
        EndMain(how);
    return 0;
}
