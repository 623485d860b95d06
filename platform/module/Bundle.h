#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

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

} // namespace kx::module
