#pragma once

#include "platform/Errno.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <systemd/sd-bus.h>
#include <variant>
#include <vector>

namespace kx::systemd {

struct Unref
{
    void operator()(sd_bus_message* message) const noexcept { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, Unref>;

// A unit's job: 0 and "/" without one.
struct JobRef
{
    std::uint32_t id = 0;
    std::string path;
};

// A property that is wanted, and where its value goes.
struct Property
{
    std::string_view name;
    std::variant<std::string*, std::vector<std::string>*, bool*, std::int32_t*, std::uint32_t*,
                 std::uint64_t*, JobRef*>
        target;
};

// Reads a{sv}. A property of another type than the target's is passed over like one that isn't wanted.
// Negative errno for a message that isn't of that form.
int ReadProperties(sd_bus_message* message, std::span<const Property> properties);

} // namespace kx::systemd
