#include "platform/module/OpenModule.h"

#include "platform/Immortal.h"

#include <utility>

namespace kx::module {

std::shared_ptr<OpenModule> OpenModule::Of(HMODULE hModule)
{
    static Immortal<std::shared_ptr<OpenModule>> executable(
        std::make_shared<OpenModule>(Bundle::OfProcess(), std::string()));
    return hModule ? FindHandle<OpenModule>(hModule) : executable.Get();
}

HRSRC OpenModule::Find(HMODULE hThis, const std::string& path)
{
    const sync::MutexLock lock(m_lock);
    if (m_bClosed) return nullptr;
    const bool bHeld = m_bundle.Holds(path);
    if (const auto known = m_found.find(path); known != m_found.end()) {
        if (bHeld) return known->second;
        RemoveHandle<Resource>(known->second); // a library of the process that carried it is gone
        m_found.erase(known);
    }
    Content content = bHeld ? m_bundle.Read(path) : nullptr;
    if (!content) return nullptr;
    const auto entry = m_found.emplace(path, nullptr).first;
    auto resource = std::make_shared<Resource>(Resource{hThis, std::move(content)});
    entry->second = static_cast<HRSRC>(AddHandle(std::move(resource), false));
    if (entry->second) return entry->second;
    m_found.erase(entry);
    return nullptr;
}

void OpenModule::Close()
{
    const sync::MutexLock lock(m_lock);
    m_bClosed = true;
    for (const auto& [path, handle] : m_found)
        RemoveHandle<Resource>(handle);
    m_found.clear();
}

} // namespace kx::module
