#include "tests/soak/Soak.h"

#include "KXFileSystem.h"
#include "include/platform/Host.h"
#include "tests/support/Process.h"

namespace {

constexpr int kLooks = 10; // at the memory, over the run

// Prints the memory at each tenth of the run. False where it has grown from the third to the last by more
// than a fifth and what the works' own texts come to.
bool StaysFlat(std::chrono::steady_clock::time_point begin, std::chrono::seconds time)
{
    constexpr long kOwn = 8;
    std::array<long, kLooks> resident{};
    for (int n = 0; n < kLooks; ++n) {
        std::this_thread::sleep_until(begin + time * (n + 1) / kLooks);
        resident[static_cast<std::size_t>(n)] = test::ResidentKilobytes() / 1024;
    }
    std::printf("memory, MB: ");
    for (const long n : resident)
        std::printf(" %ld", n);
    std::printf("\n");
    return time < std::chrono::minutes(2) || resident.back() <= resident[2] + resident[2] / 5 + kOwn;
}

} // namespace

// kx_soak SECONDS SEED SAMPLE-DIR: all works at once, on the languages and skins of a sample client. Fails
// for a loss, and where memory grows.
int main(int nArgs, char** args)
{
    if (nArgs != 4) return 2;
    const auto begin = std::chrono::steady_clock::now();
    const std::chrono::seconds time(std::atoi(args[1]));
    const auto end = begin + time;
    const auto seed = static_cast<unsigned>(std::atoi(args[2]));
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    const test::TempDir dir;
    for (const char* pszTree : {"Skins", "Languages"})
        std::filesystem::copy(std::filesystem::path(args[3]) / pszTree, dir.Path(pszTree),
                              std::filesystem::copy_options::recursive);
    KXHost::SetExecutablePath(dir.Path("app"));
    KXHost::UseMemoryDesktop();
    CKXFileSystem::GetInstancePtr();

    const std::pair<const char*, soak::Work> works[] = {
        {"log", soak::RunLog},           {"languages", soak::RunLanguages},
        {"skins", soak::RunSkins},       {"downloads", soak::RunDownloads},
        {"registry", soak::RunRegistry}, {"others", soak::RunFaults},
    };
    std::vector<std::future<soak::Figures>> running;
    for (const auto& [pszName, work] : works) {
        const auto own = seed + static_cast<unsigned>(running.size());
        running.push_back(
            std::async(std::launch::async, work, soak::Turn{end, std::mt19937(own)}, std::ref(dir)));
    }
    std::size_t losses = StaysFlat(begin, time) ? 0 : 1;
    std::printf("%-12s %12s %12s %12s\n", "", "operations", "faults", "losses");
    for (std::size_t n = 0; n < running.size(); ++n) {
        const soak::Figures figures = running[n].get();
        std::printf("%-12s %12zu %12zu %12zu\n", works[n].first, figures.operations, figures.faults,
                    figures.losses);
        losses += figures.losses + (figures.operations == 0);
    }
    return losses == 0 ? 0 : 1;
}
