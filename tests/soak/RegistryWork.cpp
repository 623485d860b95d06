#include "include/platform/Host.h"
#include "include/platform/Registry.h"
#include "tests/soak/Soak.h"
#include "tests/support/Child.h"

#include <memory>
#include <string>
#include <thread>

namespace {

std::string Get(const std::string& name)
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, "Shared", 0, KEY_READ, &hKey) != ERROR_SUCCESS) return {};
    std::string data(20'000, '\0');
    auto nSize = static_cast<DWORD>(data.size());
    const long error =
        RegQueryValueExA(hKey, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &nSize);
    RegCloseKey(hKey);
    return error == ERROR_SUCCESS ? data.substr(0, nSize) : std::string();
}

} // namespace

soak::Figures soak::RunRegistry(Turn turn, const test::TempDir& dir)
{
    constexpr int kValues = 5;
    const std::string file = dir.Path("registry.ini");
    KXHost::SetRegistryFile(file);
    Figures figures;
    for (int nRound = 0; turn.Goes(); ++nRound) {
        const std::string whole = "whole" + std::to_string(nRound % 50) + "_",
                          torn = "torn" + std::to_string(nRound % 50);
        test::Child writer("RegistryWriterChild", {file, whole, std::to_string(kValues)});
        test::Child victim("RegistryWriterChild", {file, torn, "0"}); // until it is killed
        figures.Need(writer.Wait() == 0, "a registry writer");
        std::this_thread::sleep_for(std::chrono::milliseconds(turn.Below(30)));
        victim.Kill();
        victim.Wait();
        for (int n = 0; n < kValues; ++n)
            figures.Need(Get(whole + std::to_string(n)) == std::to_string(n), "registry value " + whole);
        const std::string left = Get(torn);
        figures.Need(left.empty() || left == std::string(10'000, left[0]), "a killed writer's value, whole");
        figures.operations += kValues + 1;
        ++figures.faults;
    }
    return figures;
}
