// Writes per-user values: RegistryWriterChild FILE PREFIX COUNT sets COUNT values, each once; with COUNT 0 it
// sets one value to two long ones in turn until it is killed.

#include "include/platform/Host.h"
#include "include/platform/Registry.h"

#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    KXHost::SetRegistryFile(argv[1]);
    const std::string prefix = argv[2];
    const int count = std::atoi(argv[3]);
    HKEY hKey = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Shared", 0, nullptr, 0, KEY_WRITE, nullptr, &hKey, nullptr);
    const auto set = [&](const std::string& name, const std::string& data) {
        return RegSetValueExA(hKey, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>(data.data()),
                              static_cast<DWORD>(data.size())) == ERROR_SUCCESS;
    };
    for (int n = 0; n < count; ++n)
        if (!set(prefix + std::to_string(n), std::to_string(n))) return 1;
    for (int n = 0; count == 0; ++n)
        if (!set(prefix, std::string(10'000, n % 2 == 0 ? 'A' : 'B'))) return 1;
    return 0;
}
