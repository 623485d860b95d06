#include "bench/BenchDir.h"
#include "bench/Loop.h"

#include <KXFileSystem.h>
#include <KXLanResManager.h>
#include <array>
#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <platform/Host.h>
#include <string>
#include <vector>

// The table of texts: 2,000 look-ups against a std::map under a std::mutex, and loading against reading the
// same file and splitting its lines.

namespace {

constexpr int nKeys = 2000;

std::string Key(int n)
{
    return "IDS_PAGE_" + std::to_string(n * 7919 % 100'000) + "_TEXT";
}

std::string Text(int n)
{
    return "The text of entry number " + std::to_string(n);
}

CKXLanResManager* Manager()
{
    static CKXLanResManager* const pManager = [] {
        KXHost::SetExecutablePath(bench::Dir().Path("app"));
        std::string data;
        for (int n = 0; n < nKeys; ++n)
            data += Key(n) + " = " + Text(n) + "\r\n";
        bench::Dir().Write("lans/L/Lan.ini", "[Language]\r\nLanguage=L\r\n");
        bench::Dir().Write("lans/L/Data.txt", data);
        auto* pMade = CKXLanResManager::GetSingletonPtr();
        pMade->Initialize("lans");
        pMade->SetCurrentLan("L", 0);
        return pMade;
    }();
    return pManager;
}

struct Peer
{
    std::map<std::string, std::string> texts;
    std::mutex lock;

    Peer()
    {
        for (int n = 0; n < nKeys; ++n)
            texts[Key(n)] = Text(n);
    }
    std::string Get(const std::string& key)
    {
        const std::lock_guard guard(lock);
        const auto found = texts.find(key);
        return found != texts.end() ? found->second : key;
    }
};

bool HasAll()
{
    for (int n = 0; n < nKeys; ++n)
        if (Manager()->GetString(Key(n).c_str()) != Text(n).c_str()) return false;
    return true;
}

void Ours(benchmark::State& state)
{
    CKXLanResManager* pManager = Manager();
    std::vector<CString> keys;
    for (int n = 0; n < nKeys; ++n)
        keys.emplace_back(Key(n).c_str());
    if (!HasAll()) state.SkipWithError("wrong text");
    for (auto _ : bench::Loop(state))
        for (const CString& key : keys)
            benchmark::DoNotOptimize(pManager->GetString(key));
}

void Theirs(benchmark::State& state)
{
    static Peer peer;
    std::vector<std::string> keys;
    for (int n = 0; n < nKeys; ++n)
        keys.push_back(Key(n));
    for (auto _ : bench::Loop(state))
        for (const std::string& key : keys)
            benchmark::DoNotOptimize(peer.Get(key));
}

void LoadOurs(benchmark::State& state)
{
    CKXLanResManager* pManager = Manager();
    for (auto _ : bench::Loop(state))
        if (!pManager->SetCurrentLan("L", 0)) state.SkipWithError("no language");
    if (!HasAll()) state.SkipWithError("not all loaded");
}

void LoadTheirs(benchmark::State& state)
{
    Manager();
    for (auto _ : bench::Loop(state)) {
        std::ifstream file(bench::Dir().Path("lans/L/Data.txt"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        if (lines.size() != nKeys) state.SkipWithError("not all read");
    }
}

const int registered = [] {
    benchmark::RegisterBenchmark("text_1_thread/ours", Ours)->UseRealTime();
    benchmark::RegisterBenchmark("text_1_thread/map_and_mutex", Theirs)->UseRealTime();
    benchmark::RegisterBenchmark("text_4_threads/ours", Ours)->Threads(4)->UseRealTime();
    benchmark::RegisterBenchmark("text_4_threads/map_and_mutex", Theirs)->Threads(4)->UseRealTime();
    benchmark::RegisterBenchmark("text_load/ours", LoadOurs)->UseRealTime();
    benchmark::RegisterBenchmark("text_load/read_and_split", LoadTheirs)->UseRealTime();
    return 0;
}();

} // namespace
