#include "bench/BenchDir.h"
#include "bench/Loop.h"

#include <KXIniDataMgr.h>
#include <array>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <string>
#include <sys/stat.h>
#include <vector>

// A file of a hundred keys, as a skin's: a hundred typed reads against as many stat() calls and against
// loading the file anew for each, and the first read of a file that isn't known yet.

namespace {

constexpr int kKeys = 100;
constexpr int kColdFiles = 200; // more than are kept

const char* Value(std::size_t n)
{
    constexpr std::array<const char*, 5> values{"17", "Arial", "RGB(64,128,255)", "TRUE", "3"};
    return values[n % values.size()];
}

std::string Content()
{
    std::string text = "[Window]\r\n";
    for (std::size_t n = 0; n < kKeys; ++n)
        text += "Property" + std::to_string(n) + "=" + Value(n) + "\r\n";
    return text;
}

const std::vector<std::string>& Keys()
{
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> made;
        for (int n = 0; n < kKeys; ++n)
            made.push_back("Property" + std::to_string(n));
        return made;
    }();
    return keys;
}

const std::string& File()
{
    static const std::string path = bench::Dir().Write("skins/Default/Skin.ini", Content());
    return path;
}

std::string ColdName(int n)
{
    return "cold/" + std::to_string(n) + ".ini";
}

void ReadOurs(benchmark::State& state)
{
    File();
    const CString file = bench::Dir().Win("skins/Default/Skin.ini");
    for (auto _ : bench::Loop(state)) {
        for (std::size_t n = 0; n < kKeys; ++n) {
            const char* key = Keys()[n].c_str();
            switch (n % 5) {
            case 1:
                benchmark::DoNotOptimize(CKXIniDataMgr::GetString(file, "Window", key, ""));
                break;
            case 2:
                benchmark::DoNotOptimize(CKXIniDataMgr::GetRGB(file, "Window", key, 0));
                break;
            case 3:
                benchmark::DoNotOptimize(CKXIniDataMgr::GetBoolean(file, "Window", key, false));
                break;
            default:
                benchmark::DoNotOptimize(CKXIniDataMgr::GetInteger(file, "Window", key, 0));
                break;
            }
        }
    }
    if (CKXIniDataMgr::GetRGB(file, "window", "property2", 0) != 0xFF8040) state.SkipWithError("wrong value");
    for (std::size_t n = 0; n < kKeys; ++n)
        if (CKXIniDataMgr::GetString(file, "Window", Keys()[n].c_str(), "") != Value(n))
            state.SkipWithError("wrong value");
}

void ReadStat(benchmark::State& state)
{
    const char* file = File().c_str();
    for (auto _ : bench::Loop(state)) {
        for (int n = 0; n < kKeys; ++n) {
            struct stat status;
            benchmark::DoNotOptimize(stat(file, &status));
        }
    }
}

// One value out of a file that is loaded for it; false if it isn't there.
bool LoadAndGet(const std::string& file, const std::string& key)
{
    GKeyFile* loaded = g_key_file_new();
    g_key_file_load_from_file(loaded, file.c_str(), G_KEY_FILE_NONE, nullptr);
    gchar* value = g_key_file_get_value(loaded, "Window", key.c_str(), nullptr);
    const bool bThere = value != nullptr;
    g_free(value);
    g_key_file_free(loaded);
    return bThere;
}

void ReadGKeyFile(benchmark::State& state)
{
    for (auto _ : bench::Loop(state))
        for (const auto& key : Keys())
            if (!LoadAndGet(File(), key)) state.SkipWithError("no value");
}

void WriteColdFiles()
{
    static const bool written = [] {
        for (int n = 0; n < kColdFiles; ++n)
            bench::Dir().Write(ColdName(n), Content());
        return true;
    }();
    benchmark::DoNotOptimize(written);
}

void ColdOurs(benchmark::State& state)
{
    WriteColdFiles();
    std::vector<CString> files;
    for (int n = 0; n < kColdFiles; ++n)
        files.push_back(bench::Dir().Win("cold\\" + std::to_string(n) + ".ini"));
    static std::size_t n = 0; // goes on in the next run, for which the last files are kept
    for (auto _ : bench::Loop(state))
        if (CKXIniDataMgr::GetInteger(files[n++ % kColdFiles], "Window", "Property50", 0) != 17)
            state.SkipWithError("wrong value");
}

void ColdGKeyFile(benchmark::State& state)
{
    WriteColdFiles();
    std::vector<std::string> files;
    for (int n = 0; n < kColdFiles; ++n)
        files.push_back(bench::Dir().Path(ColdName(n)));
    std::size_t n = 0;
    for (auto _ : bench::Loop(state))
        if (!LoadAndGet(files[n++ % kColdFiles], "Property50")) state.SkipWithError("no value");
}

const int registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->UseRealTime();
    };
    add("ini_read100/ours", ReadOurs);
    add("ini_read100/stat", ReadStat);
    add("ini_read100/gkeyfile", ReadGKeyFile);
    add("ini_cold/ours", ColdOurs);
    add("ini_cold/gkeyfile", ColdGKeyFile);
    return 0;
}();

} // namespace
