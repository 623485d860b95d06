#pragma once

#include "include/platform/Types.h"
#include "platform/Errno.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <systemd/sd-bus.h>
#include <variant>
#include <vector>

namespace kx::services::systemd {

inline constexpr const char* kManagerPath = "/org/freedesktop/systemd1";
inline constexpr const char* kManager = "org.freedesktop.systemd1.Manager";

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

// A connection to systemd, made for the calls of one operation and used by one thread. All its waits together
// take no longer than it was given. Results are ERROR_... codes.
class Bus
{
public:
    explicit Bus(DWORD timeout);

    // Connects to a D-Bus address; empty: for root to the system bus, else to the user's.
    DWORD Connect(const std::string& address);

    // Calls a method with arguments as sd_bus_message_append takes them.
    template <class... Args>
    DWORD Call(Message* pReply, const char* path, const char* interface, const char* method,
               const char* types, Args... args)
    {
        Message call = NewCall(path, interface, method);
        if (!call) return ERROR_NOT_ENOUGH_MEMORY;
        if constexpr (sizeof...(args) > 0) {
            const int result = sd_bus_message_append(call.get(), types, args...);
            if (result < 0) return ErrorFromErrno(-result);
        }
        return Send(call.get(), pReply);
    }

    // Reads those of an object's properties that are asked for.
    DWORD Read(const char* path, const char* interface, std::span<const Property> properties);

private:
    struct Close
    {
        void operator()(sd_bus* bus) const noexcept { sd_bus_close_unref(bus); }
    };

    DWORD AwaitReady();
    Message NewCall(const char* path, const char* interface, const char* method);
    DWORD Send(sd_bus_message* call, Message* pReply);
    std::uint64_t MicrosecondsLeft() const noexcept; // 0: none

    const std::chrono::steady_clock::time_point m_deadline;
    std::unique_ptr<sd_bus, Close> m_bus;
};

} // namespace kx::services::systemd
