#include "KXCrashDumper.h"
#include "KXLogSys.h"
#include "core/LogRecord.h"
#include "internal/Debug.h"
#include "platform/FileSystem.h"
#include "platform/Host.h"
#include "tests/support/CrashKinds.h"

// LogCrashChild ROOT HOW WHAT: crashes while its log, ROOT/app/app.log, has lines that aren't written yet.

namespace {

using kx::core::Block;
using kx::core::Record;

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

// A queue made by hand, of which the file has the first line and a part of the second.
struct Forged
{
    static constexpr std::size_t nRoom = 200;

    struct Piece
    {
        Block head{kx::core::kBlockMagic, 7, 0, nRoom, 0};
        char lines[nRoom] = "";
        void Add(const std::string& line)
        {
            const auto length = static_cast<std::uint32_t>(line.size());
            std::memcpy(lines + head.used, &length, sizeof(length));
            std::memcpy(lines + head.used + sizeof(length), line.data(), line.size());
            head.used += sizeof(length) + line.size();
        }
    };

    Forged()
    {
        const int file = open((KXHost::ToSystemPath("C:\\app\\app.log")).c_str(), O_WRONLY | O_CREAT, 0600);
        if (write(file, "before\nfirst\nsec", 16) != 16) std::_Exit(1);
        pieces[0].Add("first\n");
        pieces[0].Add("second\n");
        pieces[1].Add("third\n");
        pieces[0].head.next = reinterpret_cast<std::uint64_t>(&pieces[1]);
        pieces[1].head.number = 8;
        const auto pid = static_cast<std::uint64_t>(getpid());
        record = {kx::core::kRecordMagic,
                  kx::core::kRecordVersion,
                  1,
                  0,
                  pid,
                  file,
                  kx::core::CheckOf(pid, file),
                  {}};
        record.positions[1] = {reinterpret_cast<std::uint64_t>(&pieces[0]), 0, 7, 0};
        kx::debug::SetLogRecord(&record);
    }

    std::array<Piece, 2> pieces;
    Record record;
};

void CrashWithForgedQueue(const std::string& what)
{
    static Forged queue;
    const std::map<std::string, void (*)()> faults{
        {"sound", [] {}},
        {"break",
         [] {
             queue.record.positions[1] = {reinterpret_cast<std::uint64_t>(&queue.pieces[0]),
                                          queue.pieces[0].head.used, 16, 1};
         }},
        {"next", [] { queue.pieces[1].head.next = 0x1234; }},
        {"circle", [] { queue.pieces[1].head.next = queue.pieces[0].head.next; }},
        {"used", [] { queue.pieces[1].head.used = 1'000; }},
        {"number", [] { queue.pieces[1].head.number = 9; }},
        {"magic", [] { queue.pieces[1].head.magic = 0; }},
        {"length", [] { std::memset(queue.pieces[1].lines, 0xFF, 4); }},
        {"longer", [] { ++queue.pieces[1].lines[0]; }},
        {"first", [] { queue.record.positions[1].block = 16; }},
        {"file", [] { queue.record.file = 1; }},
        {"check", [] { ++queue.record.check; }},
        {"process", [] { queue.record.process += 1; }},
        {"version", [] { queue.record.version += 1; }},
        {"record", [] { kx::debug::SetLogRecord(reinterpret_cast<const void*>(16)); }},
    };
    faults.at(what)();
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
