#include "tests/soak/Soak.h"

#include "KXFileSystem.h"
#include "include/platform/Host.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <vector>

// kx_soak SECONDS SEED SAMPLE-DIR: all works at once, on the languages and skins of a sample client. Fails
// for a loss.
int main(int nArgs, char** args)
{
    if (nArgs != 4) return 2;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(args[1]));
    const auto seed = static_cast<unsigned>(std::atoi(args[2]));
    const test::TempDir dir;
    for (const char* pszTree : {"Skins", "Languages"})
        std::filesystem::copy(std::filesystem::path(args[3]) / pszTree, dir.Path(pszTree),
                              std::filesystem::copy_options::recursive);
    KXHost::SetExecutablePath(dir.Path("app"));
    KXHost::UseMemoryDesktop();
    CKXFileSystem::GetInstancePtr();

    struct Part
    {
        const char* pszName;
        std::future<soak::Figures> figures;
    };
    std::vector<Part> parts;
    const auto start = [&](const char* pszName, soak::Work work) {
        const auto own = seed + static_cast<unsigned>(parts.size());
        parts.push_back({pszName, std::async(std::launch::async, work, soak::Turn{end, std::mt19937(own)},
                                             std::ref(dir))});
    };
    start("log", soak::RunLog);
    start("languages", soak::RunLanguages);
    start("skins", soak::RunSkins);
    start("downloads", soak::RunDownloads);
    start("registry", soak::RunRegistry);
    start("xml", soak::RunXml);
    std::uint64_t losses = 0;
    std::printf("seed %u\n", seed);
    std::printf("%-12s %12s %12s %12s\n", "", "operations", "faults", "losses");
    for (Part& part : parts) {
        const soak::Figures figures = part.figures.get();
        std::printf(
            "%-12s %12llu %12llu %12llu\n", part.pszName, static_cast<unsigned long long>(figures.operations),
            static_cast<unsigned long long>(figures.faults), static_cast<unsigned long long>(figures.losses));
        losses += figures.losses + (figures.operations == 0);
    }
    return losses == 0 ? 0 : 1;
}
