#include "platform/registry/RegistryPath.h"

#include "include/platform/Host.h"
#include "platform/Immortal.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <pwd.h>
#include <unistd.h>
#include <utility>

namespace {

struct HostPath
{
    std::mutex lock;
    std::string path;
};

HostPath& TheHostPath()
{
    static kx::Immortal<HostPath> path;
    return path.Get();
}

std::string HomeDirectory()
{
    if (const char* home = std::getenv("HOME"); home && home[0] == '/') return home;
    std::array<char, 4096> buffer;
    passwd entry{};
    passwd* found = nullptr;
    getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return found && found->pw_dir && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

// A relative setting counts as none.
std::string ConfigDirectory()
{
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/') return config;
    const std::string home = HomeDirectory();
    return home.empty() ? home : home + "/.config";
}

} // namespace

void KXHost::SetRegistryFile(const std::string& strPath)
{
    std::error_code error;
    std::string path = strPath.empty() ? strPath : std::filesystem::absolute(strPath, error).string();
    HostPath& host = TheHostPath();
    const std::lock_guard lock(host.lock);
    host.path = std::move(path);
}

std::string kx::registry::FilePath()
{
    HostPath& host = TheHostPath();
    {
        const std::lock_guard lock(host.lock);
        if (!host.path.empty()) return host.path;
    }
    const std::string config = ConfigDirectory();
    return config.empty() ? config : config + "/kxcommon/registry.ini";
}
