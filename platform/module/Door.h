#pragma once

#include "include/KXExport.h"

#include <atomic>

// Doors to the library's modules: families that stand on large libraries of their own and that not every
// client uses. A module is a shared object in the folder KXCommonClass beside the library. It is loaded at
// the first use of what it gives, is never unloaded, and exports one object, its entry. A library that was
// built without modules has the entries in itself.

// The entry of a module, defined by the record of what it can do. What stands first in the record may have a
// door of its own.
#define KX_MODULE_ENTRY(name, functions)                                                                     \
    extern "C" {                                                                                             \
    extern KX_API const kx::module::ModuleEntry kx_module_##name;                                            \
    const kx::module::ModuleEntry kx_module_##name{KX_VERSION, &(functions)};                                \
    }

// The door of a module: the entry in the library itself is null where the module is an object of its own.
// Doors of one module share what was told of it.
#define KX_DOOR(name, Functions)                                                                             \
    extern "C" {                                                                                             \
    extern KX_API const kx::module::ModuleEntry kx_module_##name [[gnu::weak]];                              \
    inline constinit std::atomic<bool> kx_told_##name{false};                                                \
    }                                                                                                        \
    static constinit kx::module::Door<Functions> g_door(#name, &kx_module_##name, kx_told_##name)

namespace kx::module {

struct ModuleEntry
{
    const char* pszVersion; // of the library that it belongs to
    const void* functions;
};

// The record of the entry; null, with a line on the debug channel the first time, for a module
// that isn't there, that lacks a library of its own, or that belongs to another version. Loads nothing
// while the doors are shut. Any thread.
const void* OpenDoor(const char* pszName, const ModuleEntry* linked, std::atomic<bool>& told) noexcept;

// While a crash is handled no module is loaded.
void ShutDoors(bool bShut) noexcept;

template <class Functions>
class Door
{
public:
    constexpr Door(const char* pszName, const ModuleEntry* linked, std::atomic<bool>& told) noexcept
        : m_pszName(pszName), m_linked(linked), m_told(told)
    {
    }

    // The module's record, which stays until the process ends; null if it can't be had.
    const Functions* Open() noexcept
    {
        const void* functions = m_functions.load(std::memory_order_acquire);
        if (!functions) {
            functions = OpenDoor(m_pszName, m_linked, m_told);
            m_functions.store(functions, std::memory_order_release);
        }
        return static_cast<const Functions*>(functions);
    }

private:
    const char* m_pszName;
    const ModuleEntry* m_linked;
    std::atomic<bool>& m_told;
    std::atomic<const void*> m_functions{nullptr};
};

} // namespace kx::module
