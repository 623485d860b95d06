#pragma once

#include "include/platform/Types.h"
#include "platform/LiveHandles.h"
#include "platform/module/Bundle.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace kx::module {

// The open resource modules and the resources found in them. Handles are numbers that are never used again,
// so that one that ended, or never was, names nothing. Any thread.
class ModuleTable
{
public:
    static ModuleTable& Instance();
    ModuleTable();

    // The null handle stands for the executable, which is always there.
    HMODULE Add(Bundle bundle, std::string systemPath);
    bool Remove(HMODULE hModule);
    bool Has(HMODULE hModule) const;
    // The Linux path of a module's file; empty for one that isn't open.
    std::string PathOf(HMODULE hModule) const;

    // A resource by its path in the bundle; the same resource has one handle. Null without one.
    HRSRC Find(HMODULE hModule, const std::string& path);
    // The bytes of a resource of that module; null for another handle.
    Content ContentOf(HMODULE hModule, HRSRC hResource) const;
    // Of whatever module.
    Content ContentOf(HGLOBAL hResource) const;

private:
    struct Module
    {
        explicit Module(Bundle b) : bundle(std::move(b)) {}

        Bundle bundle;
        std::string path;
        std::map<std::string, std::uintptr_t> found; // handles by resource path
        std::unique_ptr<LiveHandle> live;            // null for the executable
    };
    struct Resource
    {
        HMODULE module;
        Content content;
    };

    const Module* Get(HMODULE hModule) const;

    mutable std::mutex m_lock;
    std::uintptr_t m_last = 0x10000; // above every resource number
    std::map<HMODULE, Module> m_modules;
    std::unordered_map<std::uintptr_t, Resource> m_resources;
};

} // namespace kx::module
