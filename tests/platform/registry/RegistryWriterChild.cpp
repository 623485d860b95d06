// Writes per-user values: RegistryWriterChild FILE PREFIX COUNT sets COUNT values, each once; with COUNT 0 it
// sets one value to two long ones in turn until it is killed.

#include "include/platform/Host.h"
#include "tests/support/Registry.h"

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    KXHost::SetRegistryFile(argv[1]);
    const std::string prefix = argv[2];
    const int count = std::atoi(argv[3]);
    for (int n = 0; n < count; ++n)
        test::StoreValue("Shared", (prefix + std::to_string(n)).c_str(), REG_BINARY, std::to_string(n));
    for (int n = 0; count == 0; ++n)
        test::StoreValue("Shared", argv[2], REG_BINARY, std::string(10'000, n % 2 == 0 ? 'A' : 'B'));
    return 0;
}
