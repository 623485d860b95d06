#include "platform/module/OpenModule.h"

#include "platform/Immortal.h"
#include "platform/module/Door.h"

#include <utility>

KX_DOOR(shell, kx::module::BundleFunctions);

namespace kx::module {

const BundleFunctions* Bundles() noexcept
{
    return g_door.Open();
}

namespace {

// Null where the module can't be used, of which no lock may be held: what it tells is heard.
const Bundle* BundleOfProcess()
{
    const BundleFunctions* const bundles = Bundles();
    if (!bundles) return nullptr;
    static Immortal<std::unique_ptr<Bundle>> ofProcess(bundles->ofProcess());
    return ofProcess->get();
}

} // namespace

std::shared_ptr<OpenModule> OpenModule::Of(HMODULE hModule)
{
    static Immortal<std::shared_ptr<OpenModule>> executable(
        std::make_shared<OpenModule>(nullptr, std::string()));
    return hModule ? FindHandle<OpenModule>(hModule) : executable.Get();
}

HRSRC OpenModule::Find(HMODULE hThis, const std::string& path)
{
    const Bundle* const bundle = m_bundle ? m_bundle.get() : BundleOfProcess();
    const sync::MutexLock lock(m_lock);
    if (m_bClosed || !bundle) return nullptr;
    const bool bHeld = bundle->Holds(path);
    if (const auto known = m_found.find(path); known != m_found.end()) {
        if (bHeld) return known->second;
        RemoveHandle<Resource>(known->second); // a library of the process that carried it is gone
        m_found.erase(known);
    }
    Content content = bHeld ? bundle->Read(path) : Content();
    if (!content.owner) return nullptr;
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
