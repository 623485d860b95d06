#pragma once

#include "platform/module/ByteSource.h"

#include <gio/gio.h>
#include <memory>
#include <optional>
#include <string>

namespace kx::module {

// The bytes of one resource. A pointer into them stays good for as long as a copy of this lives.
using Content = std::shared_ptr<GBytes>;

// A set of resources by path: a bundle that was loaded, or those that are linked into the process. Any
// thread.
class Bundle
{
public:
    // Nothing if the bytes are no sound bundle.
    static std::optional<Bundle> Load(const ByteSource& source);
    // What the program and its libraries linked in.
    static Bundle OfProcess() { return Bundle(nullptr); }

    bool Holds(const std::string& path) const;
    // Null without such a resource, or where its bytes are damaged.
    Content Read(const std::string& path) const;

private:
    explicit Bundle(GResource* resource) : m_resource(resource, Unref{}) {}

    struct Unref
    {
        void operator()(GResource* resource) const noexcept
        {
            if (resource) g_resource_unref(resource);
        }
    };

    Content Decompress(const std::string& path, std::size_t nSize) const;

    std::unique_ptr<GResource, Unref> m_resource; // null: those of the process
};

} // namespace kx::module
