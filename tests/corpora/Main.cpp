// kx_corpora DIR [SECONDS [MEBIBYTES [SAVED]]]: reads every file below a directory, each in a child of its
// own with these limits, and prints what came of it. Its result is 1 if a reader crashed, passed a limit or
// made of a file something else than what it must. Frames of pictures are saved below SAVED.
#include "tests/corpora/Readers.h"

#include "include/platform/CodePage.h"
#include "include/platform/Host.h"
#include "tests/support/GdiPlus.h"
#include <poll.h>

namespace fs = std::filesystem;
using namespace corpora;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kBoundsMemory = false; // their shadow takes terabytes of addresses
#else
constexpr bool kBoundsMemory = true;
#endif

struct Limits
{
    int seconds = 20;
    std::size_t mebibytes = 2048;
};

struct Entry
{
    std::string name;
    std::string word; // what came of it
    std::string reason;
    double seconds = 0;
    long kibibytes = 0;
};

[[noreturn]] void RunChild(const fs::path& file, const fs::path& saved, const Limits& limits, int fd)
{
    if (kBoundsMemory) {
        const rlimit memory{limits.mebibytes << 20, limits.mebibytes << 20};
        setrlimit(RLIMIT_AS, &memory);
    }
    KXHost::SetCodePage(CP_UTF8);
    const Outcome outcome = [&] {
        const test::GdiPlus gdiPlus;
        return Read(file, saved);
    }();
    const std::string told = static_cast<char>('0' + static_cast<int>(outcome.verdict)) + outcome.reason;
    const bool bTold = write(fd, told.data(), told.size()) == static_cast<ssize_t>(told.size());
    std::exit(bTold ? 0 : 1); // leaks are looked for on the way out
}

// The child's words, up to its end or the limit; bInTime says which.
std::string Listen(int fd, int nSeconds, bool& bInTime)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(nSeconds);
    std::string told;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waited{fd, POLLIN, 0};
        bInTime = left > 0 && poll(&waited, 1, static_cast<int>(left)) > 0;
        char bytes[256];
        const ssize_t nRead = bInTime ? read(fd, bytes, sizeof bytes) : 0;
        if (nRead <= 0) return told;
        told.append(bytes, static_cast<std::size_t>(nRead));
    }
}

Entry Try(const fs::path& file, const fs::path& root, const fs::path& saved, const Limits& limits)
{
    Entry entry{fs::relative(file, root).string(), {}, {}};
    int ends[2];
    if (pipe(ends) != 0) std::exit(2);
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        RunChild(file, saved, limits, ends[1]);
    }
    close(ends[1]);
    bool bInTime = false;
    const std::string told = Listen(ends[0], limits.seconds, bInTime);
    close(ends[0]);
    if (!bInTime) kill(child, SIGKILL);
    int nStatus = 0;
    rusage used{};
    wait4(child, &nStatus, 0, &used);
    entry.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    entry.kibibytes = used.ru_maxrss;
    constexpr const char* kWords[] = {"read", "refused", "wrong", "unknown"};
    if (!bInTime)
        entry.word = "too slow";
    else if (!WIFEXITED(nStatus) || WEXITSTATUS(nStatus) != 0 || told.empty())
        entry.word = "crashed", entry.reason = "status " + std::to_string(nStatus);
    else if (static_cast<std::size_t>(entry.kibibytes) / 1024 > limits.mebibytes)
        entry.word = "too large";
    else
        entry.word = kWords[told[0] - '0'], entry.reason = told.substr(1);
    return entry;
}

template <class Less>
void PrintMost(const char* pszTitle, std::vector<Entry> entries, Less&& less)
{
    std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) { return less(b, a); });
    std::printf("\n%s\n", pszTitle);
    for (std::size_t n = 0; n < std::min<std::size_t>(5, entries.size()); ++n)
        std::printf("  %6.0f ms %6ld MiB  %s\n", entries[n].seconds * 1000, entries[n].kibibytes / 1024,
                    entries[n].name.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || !fs::is_directory(argv[1])) {
        std::fputs("kx_corpora DIR [SECONDS [MEBIBYTES [SAVED]]]\n", stderr);
        return 2;
    }
    Limits limits;
    if (argc > 2) limits.seconds = std::max(1, std::atoi(argv[2]));
    if (argc > 3) limits.mebibytes = std::strtoul(argv[3], nullptr, 10);
    const fs::path root = fs::canonical(argv[1]), saved = argc > 4 ? fs::absolute(argv[4]) : fs::path();

    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<Entry> entries;
    for (const fs::path& file : files)
        entries.push_back(Try(file, root, saved, limits));

    std::map<std::string, int> counts;
    for (const Entry& entry : entries)
        ++counts[entry.word];
    std::printf("%zu files", entries.size());
    for (const auto& [word, nCount] : counts)
        std::printf(", %d %s", nCount, word.c_str());
    std::puts("");
    for (const Entry& entry : entries)
        if (entry.word != "read" && entry.word != "unknown")
            std::printf("  %-9s %s: %s\n", entry.word.c_str(), entry.name.c_str(), entry.reason.c_str());
    PrintMost("slowest", entries, [](const Entry& a, const Entry& b) { return a.seconds < b.seconds; });
    PrintMost("largest", entries, [](const Entry& a, const Entry& b) { return a.kibibytes < b.kibibytes; });
    return counts["crashed"] + counts["too slow"] + counts["too large"] + counts["wrong"] == 0 ? 0 : 1;
}
