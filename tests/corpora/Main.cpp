// kx_corpora FILE [SAVED], which scripts/corpora runs: reads a file and prints what came of it, and why.
#include "tests/corpora/Readers.h"

#include "include/platform/CodePage.h"
#include "include/platform/Host.h"
#include "tests/support/GdiPlus.h"

int main(int argc, char** argv)
{
    if (argc < 2) return 2;
    KXHost::SetCodePage(CP_UTF8);
    const test::GdiPlus gdiPlus;
    const auto [verdict, reason] = corpora::Read(argv[1], argc > 2 ? argv[2] : "");
    constexpr const char* kWords[] = {"read", "refused", "wrong", "unknown"};
    std::printf("%s: %s\n", kWords[static_cast<int>(verdict)], reason.c_str());
    return 0;
}
