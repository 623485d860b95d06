#pragma once

#include "include/platform/Types.h"
#include "platform/Handles.h"
#include "platform/sync/Mutex.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace kx::module {

// The bytes of one resource, which stay where they are for as long as a copy of the owner lives.
struct Content
{
    std::shared_ptr<const void> owner; // null: there is no such resource
    std::string_view bytes;
};

// A set of resources by path: a bundle that was loaded, or those that are linked into the process. Any
// thread.
class Bundle
{
public:
    virtual ~Bundle() = default;
    virtual bool Holds(const std::string& path) const = 0;
    // Nothing without such a resource, or where its bytes are damaged.
    virtual Content Read(const std::string& path) const = 0;
};

// Bundles are read by the module for the shell, whose library knows their format.
struct BundleFunctions
{
    // Null if the bytes are no sound bundle.
    std::unique_ptr<Bundle> (*load)(std::string bytes);
    // Gives the resources that the program and its libraries linked in.
    std::unique_ptr<Bundle> (*ofProcess)();
};

// The most that a bundle file, or one resource of it, may hold.
inline constexpr std::size_t MAX_BUNDLE = std::size_t{256} << 20;

// Null where the module can't be used.
const BundleFunctions* Bundles() noexcept;

// A resource that was found. Its handle lasts as long as its module's.
struct Resource
{
    static constexpr HandleKind HANDLE_KIND = HandleKind::Resource;

    HMODULE hModule;
    Content content;
};

// An open resource module with the resources found in it. Any thread.
class OpenModule
{
public:
    static constexpr HandleKind HANDLE_KIND = HandleKind::Module;

    // Null stands for the bundles that are linked into the process.
    OpenModule(std::unique_ptr<Bundle> bundle, std::string systemPath)
        : m_bundle(std::move(bundle)), m_path(std::move(systemPath))
    {
    }

    // The module of a handle; the null handle stands for the executable, which is always there. Null for a
    // handle that isn't open.
    static std::shared_ptr<OpenModule> Of(HMODULE hModule);

    // The Linux path of the module's file; empty for the executable.
    const std::string& Path() const noexcept { return m_path; }

    // A resource by its path in the bundle; the same resource has one handle. Null without one.
    HRSRC Find(HMODULE hThis, const std::string& path);
    // Ends the handles of all resources.
    void Close();

private:
    const std::unique_ptr<Bundle> m_bundle;
    const std::string m_path;
    sync::Mutex m_lock; // the handle table's is taken under it
    std::map<std::string, HRSRC> m_found KX_GUARDED_BY(m_lock);
    bool m_bClosed KX_GUARDED_BY(m_lock) = false;
};

} // namespace kx::module
