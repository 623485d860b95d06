#include "platform/services/systemd/Bus.h"

#include "include/platform/Services.h"
#include "platform/Errno.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace kx::services::systemd {

namespace {

constexpr const char* kName = "org.freedesktop.systemd1";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

int Open(sd_bus** bus, const std::string& address)
{
    if (address.empty()) return geteuid() == 0 ? sd_bus_open_system(bus) : sd_bus_open_user(bus);
    int result = sd_bus_new(bus);
    if (result >= 0) result = sd_bus_set_address(*bus, address.c_str());
    if (result >= 0) result = sd_bus_set_bus_client(*bus, 1);
    return result < 0 ? result : sd_bus_start(*bus);
}

struct Error
{
    Error() = default;
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;
    ~Error() { sd_bus_error_free(&value); }
    sd_bus_error value{};
};

struct Known
{
    std::string_view name;
    DWORD error;
};

constexpr Known kOfSystemd[] = {
    {"NoSuchUnit", ERROR_SERVICE_DOES_NOT_EXIST},
    {"LoadFailed", ERROR_INVALID_PARAMETER},
    {"BadUnitSetting", ERROR_INVALID_PARAMETER},
    {"UnitMasked", ERROR_SERVICE_DISABLED},
    {"UnitExists", ERROR_SERVICE_EXISTS},
    {"UnitGenerated", ERROR_ACCESS_DENIED},
    {"OnlyByDependency", ERROR_INVALID_SERVICE_CONTROL},
    {"JobTypeNotApplicable", ERROR_INVALID_SERVICE_CONTROL},
    {"TransactionJobsConflicting", ERROR_SERVICE_DEPENDENCY_FAIL},
    {"TransactionIsDestructive", ERROR_SERVICE_CANNOT_ACCEPT_CTRL},
    {"TransactionOrderIsCyclic", ERROR_CIRCULAR_DEPENDENCY},
    {"ShuttingDown", ERROR_SHUTDOWN_IN_PROGRESS},
    {"DiskFull", ERROR_DISK_FULL},
};

constexpr Known kOfDBus[] = {
    {"AccessDenied", ERROR_ACCESS_DENIED},
    {"AuthFailed", ERROR_ACCESS_DENIED},
    {"InteractiveAuthorizationRequired", ERROR_ACCESS_DENIED},
    {"FileNotFound", ERROR_SERVICE_DOES_NOT_EXIST},
    {"FileExists", ERROR_ALREADY_EXISTS},
    {"InvalidArgs", ERROR_INVALID_PARAMETER},
    {"NoMemory", ERROR_NOT_ENOUGH_MEMORY},
    {"NoReply", ERROR_SERVICE_REQUEST_TIMEOUT},
    {"Timeout", ERROR_SERVICE_REQUEST_TIMEOUT},
    {"Disconnected", RPC_S_SERVER_UNAVAILABLE},
    {"NameHasNoOwner", RPC_S_SERVER_UNAVAILABLE},
    {"ServiceUnknown", RPC_S_SERVER_UNAVAILABLE},
};

DWORD ErrorFromCall(int nErrno) noexcept
{
    switch (nErrno) {
    case ENOENT:
        return ERROR_SERVICE_DOES_NOT_EXIST;
    case ETIMEDOUT:
        return ERROR_SERVICE_REQUEST_TIMEOUT;
    case ENOTCONN:
    case ECONNRESET:
    case EPIPE:
        return RPC_S_SERVER_UNAVAILABLE;
    default:
        return ErrorFromErrno(nErrno);
    }
}

template <std::size_t Count>
DWORD Find(const Known (&known)[Count], std::string_view name, std::string_view prefix) noexcept
{
    if (name.substr(0, prefix.size()) != prefix) return ERROR_SUCCESS;
    for (const Known& one : known)
        if (name.substr(prefix.size()) == one.name) return one.error;
    return ERROR_SUCCESS;
}

// The platform's error number for a call that failed, by the error's name or else by the errno.
DWORD ErrorFromBus(const sd_bus_error& error, int nErrno) noexcept
{
    const std::string_view name = error.name ? error.name : "";
    if (const DWORD found = Find(kOfSystemd, name, "org.freedesktop.systemd1.")) return found;
    if (const DWORD found = Find(kOfDBus, name, "org.freedesktop.DBus.Error.")) return found;
    return ErrorFromCall(nErrno);
}

} // namespace

Bus::Bus(DWORD timeout)
    : m_deadline(std::chrono::steady_clock::now() + std::chrono::milliseconds(std::max<DWORD>(timeout, 1)))
{
}

std::uint64_t Bus::MicrosecondsLeft() const noexcept
{
    using std::chrono::microseconds;
    const auto left =
        std::chrono::duration_cast<microseconds>(m_deadline - std::chrono::steady_clock::now()).count();
    return left > 0 ? static_cast<std::uint64_t>(left) : 0;
}

DWORD Bus::Connect(const std::string& address)
{
    sd_bus* bus = nullptr;
    const int result = Open(&bus, address);
    m_bus.reset(bus);
    if (result == -ENOMEM) return ERROR_NOT_ENOUGH_MEMORY;
    return result < 0 ? RPC_S_SERVER_UNAVAILABLE : AwaitReady();
}

// A call would wait for the greeting too, but by a time-out of its own.
DWORD Bus::AwaitReady()
{
    for (;;) {
        int result = sd_bus_process(m_bus.get(), nullptr);
        if (result < 0) return RPC_S_SERVER_UNAVAILABLE;
        const int ready = sd_bus_is_ready(m_bus.get());
        if (ready != 0) return ready > 0 ? ERROR_SUCCESS : RPC_S_SERVER_UNAVAILABLE;
        if (result > 0) continue;
        const std::uint64_t left = MicrosecondsLeft();
        if (left == 0) return ERROR_SERVICE_REQUEST_TIMEOUT;
        result = sd_bus_wait(m_bus.get(), left);
        if (result < 0 && result != -EINTR) return RPC_S_SERVER_UNAVAILABLE;
    }
}

Message Bus::NewCall(const char* path, const char* interface, const char* method)
{
    sd_bus_message* call = nullptr;
    if (sd_bus_message_new_method_call(m_bus.get(), &call, kName, path, interface, method) < 0)
        return nullptr;
    sd_bus_message_set_auto_start(call, 0); // a manager that has to be started first is none
    return Message(call);
}

DWORD Bus::Send(sd_bus_message* call, Message* pReply)
{
    const std::uint64_t left = MicrosecondsLeft();
    if (left == 0) return ERROR_SERVICE_REQUEST_TIMEOUT;
    Error error;
    sd_bus_message* reply = nullptr;
    const int result = sd_bus_call(m_bus.get(), call, left, &error.value, &reply);
    Message owned(reply);
    if (result < 0) return ErrorFromBus(error.value, -result);
    if (pReply) *pReply = std::move(owned);
    return ERROR_SUCCESS;
}

DWORD Bus::Read(const char* path, const char* interface, std::span<const Property> properties)
{
    Message reply;
    if (const DWORD error = Call(&reply, path, kProperties, "GetAll", "s", interface)) return error;
    return ReadProperties(reply.get(), properties) < 0 ? ERROR_GEN_FAILURE : ERROR_SUCCESS;
}

namespace {

// Reads a variant's content, which is of the form `found`: 1, or 0 for another form than the target's.
struct Reader
{
    sd_bus_message* message;
    std::string_view found;

    int operator()(std::int32_t* target) const { return Value("i", target); }
    int operator()(std::uint32_t* target) const { return Value("u", target); }
    int operator()(std::uint64_t* target) const { return Value("t", target); }
    int operator()(bool* target) const
    {
        int value = 0;
        const int result = Value("b", &value);
        if (result > 0) *target = value != 0;
        return result;
    }
    int operator()(std::string* target) const
    {
        const char* text = nullptr;
        const int result = Value("s", &text);
        if (result > 0) *target = text;
        return result;
    }
    int operator()(JobRef* target) const
    {
        const char* path = nullptr;
        const int result = Value("(uo)", &target->id, &path);
        if (result > 0) target->path = path;
        return result;
    }
    int operator()(std::vector<std::string>* target) const
    {
        if (found != "as") return 0;
        int result = sd_bus_message_enter_container(message, 'v', "as");
        if (result >= 0) result = sd_bus_message_enter_container(message, 'a', "s");
        if (result < 0) return result;
        target->clear();
        const char* text = nullptr;
        while ((result = sd_bus_message_read_basic(message, 's', &text)) > 0)
            target->emplace_back(text);
        if (result >= 0) result = sd_bus_message_exit_container(message);
        if (result >= 0) result = sd_bus_message_exit_container(message);
        return result < 0 ? result : 1;
    }

private:
    template <class... Target>
    int Value(const char* form, Target*... targets) const
    {
        if (found != form) return 0;
        const int result = sd_bus_message_read(message, "v", form, targets...);
        return result < 0 ? result : 1;
    }
};

int ReadOne(sd_bus_message* message, std::span<const Property> properties)
{
    const char *name = nullptr, *found = nullptr;
    int result = sd_bus_message_read_basic(message, 's', &name);
    if (result > 0) result = sd_bus_message_peek_type(message, nullptr, &found);
    if (result <= 0) return result < 0 ? result : -EBADMSG;
    const auto wanted = std::find_if(properties.begin(), properties.end(),
                                     [&](const Property& property) { return property.name == name; });
    result = wanted == properties.end() ? 0 : std::visit(Reader{message, found ? found : ""}, wanted->target);
    return result == 0 ? sd_bus_message_skip(message, "v") : result;
}

} // namespace

int ReadProperties(sd_bus_message* message, std::span<const Property> properties)
{
    int result = sd_bus_message_enter_container(message, 'a', "{sv}");
    if (result < 0) return result;
    while ((result = sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
        if ((result = ReadOne(message, properties)) < 0) return result;
        if ((result = sd_bus_message_exit_container(message)) < 0) return result;
    }
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

} // namespace kx::services::systemd
