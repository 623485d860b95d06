#include "platform/module/ModuleTable.h"

#include "platform/Immortal.h"
#include "platform/module/ExecutablePath.h"

#include <utility>

namespace kx::module {

ModuleTable& ModuleTable::Instance()
{
    static Immortal<ModuleTable> table;
    return table.Get();
}

ModuleTable::ModuleTable()
{
    m_modules.try_emplace(nullptr, Bundle::OfProcess());
}

HMODULE ModuleTable::Add(Bundle bundle, std::string systemPath)
{
    Module module(std::move(bundle));
    module.path = std::move(systemPath);
    module.live = std::make_unique<LiveHandle>();
    std::lock_guard lock(m_lock);
    const auto handle = reinterpret_cast<HMODULE>(++m_last);
    m_modules.emplace(handle, std::move(module));
    return handle;
}

bool ModuleTable::Remove(HMODULE hModule)
{
    if (!hModule) return false;
    std::lock_guard lock(m_lock);
    const auto node = m_modules.extract(hModule);
    if (node.empty()) return false;
    for (const auto& [path, handle] : node.mapped().found)
        m_resources.erase(handle);
    return true;
}

const ModuleTable::Module* ModuleTable::Get(HMODULE hModule) const
{
    const auto it = m_modules.find(hModule);
    return it == m_modules.end() ? nullptr : &it->second;
}

bool ModuleTable::Has(HMODULE hModule) const
{
    std::lock_guard lock(m_lock);
    return Get(hModule) != nullptr;
}

std::string ModuleTable::PathOf(HMODULE hModule) const
{
    if (!hModule) return ExecutablePath();
    std::lock_guard lock(m_lock);
    const Module* module = Get(hModule);
    return module ? module->path : std::string();
}

HRSRC ModuleTable::Find(HMODULE hModule, const std::string& path)
{
    std::lock_guard lock(m_lock);
    auto* module = const_cast<Module*>(Get(hModule));
    if (!module) return nullptr;
    const auto known = module->found.find(path);
    const bool bHeld = module->bundle.Holds(path);
    if (known != module->found.end()) {
        if (bHeld) return reinterpret_cast<HRSRC>(known->second);
        m_resources.erase(known->second); // a library of the process that carried it is gone
        module->found.erase(known);
    }
    Content content = bHeld ? module->bundle.Read(path) : nullptr;
    if (!content) return nullptr;
    m_resources.emplace(++m_last, Resource{hModule, std::move(content)});
    module->found.emplace(path, m_last);
    return reinterpret_cast<HRSRC>(m_last);
}

Content ModuleTable::ContentOf(HMODULE hModule, HRSRC hResource) const
{
    std::lock_guard lock(m_lock);
    const auto it = m_resources.find(reinterpret_cast<std::uintptr_t>(hResource));
    return it == m_resources.end() || it->second.module != hModule ? nullptr : it->second.content;
}

Content ModuleTable::ContentOf(HGLOBAL hResource) const
{
    std::lock_guard lock(m_lock);
    const auto it = m_resources.find(reinterpret_cast<std::uintptr_t>(hResource));
    return it == m_resources.end() ? nullptr : it->second.content;
}

} // namespace kx::module
