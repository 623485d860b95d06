#include "tests/platform/services/StandIn.h"

#include <ctime>
#include <poll.h>
#include <sys/eventfd.h>

namespace test {

namespace {

constexpr const char* kUnits = "/org/freedesktop/systemd1/unit";
constexpr const char* kJobs = "/org/freedesktop/systemd1/job";

std::string Config(const std::string& dir)
{
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:dir=)" +
           dir + R"(</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";
}

std::string PathOf(const char* prefix, const std::string& name)
{
    char* path = nullptr;
    sd_bus_path_encode(prefix, name.c_str(), &path);
    const std::unique_ptr<char, decltype(&std::free)> owned(path, std::free);
    return path;
}

std::string NameOf(const char* prefix, const char* path)
{
    char* name = nullptr;
    sd_bus_path_decode(path, prefix, &name);
    const std::unique_ptr<char, decltype(&std::free)> owned(name, std::free);
    return name ? name : "";
}

std::uint64_t Microseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 +
           static_cast<std::uint64_t>(now.tv_nsec) / 1000;
}

void AppendList(sd_bus_message* reply, const std::string& name, const std::vector<std::string>& list)
{
    sd_bus_message_open_container(reply, 'e', "sv");
    sd_bus_message_append(reply, "s", name.c_str());
    sd_bus_message_open_container(reply, 'v', "as");
    sd_bus_message_open_container(reply, 'a', "s");
    for (const auto& one : list)
        sd_bus_message_append(reply, "s", one.c_str());
    for (int n = 0; n < 3; ++n)
        sd_bus_message_close_container(reply);
}

void AppendUnit(sd_bus_message* reply, const std::string& name, const Unit& unit)
{
    const std::string job = unit.jobType.empty() ? "/" : PathOf(kJobs, name);
    sd_bus_message_append(reply, "{sv}", "Conditions", "a(sbbsi)", 0); // nobody wants it
    sd_bus_message_append(reply, "{sv}", "LoadState", "s", unit.load.c_str());
    sd_bus_message_append(reply, "{sv}", "ActiveState", "s", unit.active.c_str());
    sd_bus_message_append(reply, "{sv}", "SubState", "s", unit.sub.c_str());
    sd_bus_message_append(reply, "{sv}", "Description", "s", unit.description.c_str());
    sd_bus_message_append(reply, "{sv}", "CanStop", "b", 1);
    sd_bus_message_append(reply, "{sv}", "StateChangeTimestampMonotonic", "t",
                          Microseconds() - unit.secondsAgo * 1'000'000);
    sd_bus_message_append(reply, "{sv}", "ActiveEnterTimestampMonotonic", "t",
                          Microseconds() - unit.activeFor);
    sd_bus_message_append(reply, "{sv}", "Type", "s", unit.type.c_str());
    sd_bus_message_append(reply, "{sv}", "Job", "(uo)", unit.jobType.empty() ? 0u : 7u, job.c_str());
    sd_bus_message_append(reply, "{sv}", "MainPID", "u", unit.pid);
    sd_bus_message_append(reply, "{sv}", "Result", "s", unit.result.c_str());
    sd_bus_message_append(reply, "{sv}", "ExecMainStatus", "i", unit.exitStatus);
    sd_bus_message_append(reply, "{sv}", "ExecMainStartTimestampMonotonic", "t", unit.started);
    sd_bus_message_append(reply, "{sv}", "TimeoutStartUSec", "t", unit.startLimit);
    sd_bus_message_append(reply, "{sv}", "TimeoutStopUSec", "t", unit.stopLimit);
    for (const auto& [kind, list] : unit.lists)
        AppendList(reply, kind, list);
}

} // namespace

PrivateBus::PrivateBus()
    : m_program({"dbus-daemon", "--config-file=" + m_dir.Write("bus.conf", Config(m_dir.Path())),
                 "--print-address=" + std::to_string(m_pipe.ends[1]), "--nofork", "--nopidfile"}),
      m_address(m_pipe.ReadLine())
{
}

StandIn::StandIn(const PrivateBus& bus, std::string unitDir)
    : m_unitDir(std::move(unitDir)), m_stop(eventfd(0, EFD_CLOEXEC))
{
    sd_bus_new(&m_bus);
    sd_bus_set_address(m_bus, bus.Address().c_str());
    sd_bus_set_bus_client(m_bus, 1);
    sd_bus_start(m_bus);
    sd_bus_add_fallback(m_bus, nullptr, "/org/freedesktop/systemd1", Handle, this);
    if (sd_bus_request_name(m_bus, "org.freedesktop.systemd1", 0) < 0) throw std::runtime_error("no name");
    m_thread = std::thread([this] { Run(); });
}

StandIn::~StandIn()
{
    eventfd_write(m_stop, 1);
    m_thread.join();
    sd_bus_flush_close_unref(m_bus);
    close(m_stop);
}

void StandIn::Set(const std::string& name, Unit unit)
{
    const std::lock_guard lock(m_lock);
    m_units[name] = std::move(unit);
}

std::string StandIn::Active(const std::string& name)
{
    const std::lock_guard lock(m_lock);
    return m_units[name].active;
}

void StandIn::Fail(const std::string& method, const std::string& error)
{
    const std::lock_guard lock(m_lock);
    m_errors[method] = error;
}

std::string StandIn::Calls()
{
    const std::lock_guard lock(m_lock);
    return std::exchange(m_calls, {});
}

void StandIn::Run()
{
    std::array<pollfd, 2> fds{pollfd{m_stop, POLLIN, 0}, pollfd{sd_bus_get_fd(m_bus), 0, 0}};
    while (!(fds[0].revents & POLLIN)) {
        int done = 0;
        while ((done = sd_bus_process(m_bus, nullptr)) > 0) {
        }
        if (done < 0) return;
        fds[1].events = static_cast<short>(sd_bus_get_events(m_bus));
        poll(fds.data(), fds.size(), -1);
    }
}

int StandIn::Handle(sd_bus_message* message, void* self, sd_bus_error*)
{
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
    auto* standIn = static_cast<StandIn*>(self);
    const std::lock_guard lock(standIn->m_lock);
    return standIn->Answer(message, sd_bus_message_get_member(message));
}

int StandIn::Answer(sd_bus_message* call, const std::string& method)
{
    if (const auto found = m_errors.find(method); found != m_errors.end()) {
        if (found->second.empty()) return 1;
        if (found->second[0] == '=') return sd_bus_reply_method_return(call, &found->second[1], 0);
        sd_bus_reply_method_errorf(call, found->second.c_str(), "as asked");
        return 1;
    }
    const int result = method == "GetAll" ? AnswerProperties(call) : AnswerManager(call, method);
    return result < 0 ? result : 1;
}

int StandIn::AnswerManager(sd_bus_message* call, const std::string& method)
{
    const char *name = "", *mode = "";
    int runtime = 0, force = 0;
    if (method == "Reload") {
        m_calls += "Reload;";
        Scan();
        return sd_bus_reply_method_return(call, "");
    }
    const bool bFiles = method.ends_with("Files"),
               bForce = method == "EnableUnitFiles" || method == "MaskUnitFiles";
    const bool bJob = method == "StartUnit" || method == "StopUnit";
    const int result = !bFiles
                           ? sd_bus_message_read(call, bJob ? "ss" : "s", &name, &mode)
                           : sd_bus_message_read(call, bForce ? "asbb" : "asb", 1, &name, &runtime, &force);
    if (result < 0) return result;
    m_calls +=
        method + " " + name + (*mode ? std::string(" ") + mode : "") + (runtime || force ? " !" : "") + ";";
    if (method == "ResetFailedUnit") {
        if (!m_units.contains(name))
            return sd_bus_reply_method_errorf(call, "org.freedesktop.systemd1.NoSuchUnit", "not loaded");
        if (m_units[name].active == "failed") m_units[name].active = "inactive";
        return sd_bus_reply_method_return(call, "");
    }
    if (method == "LoadUnit") return sd_bus_reply_method_return(call, "o", PathOf(kUnits, name).c_str());
    if (bJob) {
        Unit& unit = m_units[name];
        unit.moving = true;
        Step(unit);
        return sd_bus_reply_method_return(call, "o", PathOf(kJobs, name).c_str());
    }
    if (method == "EnableUnitFiles") return sd_bus_reply_method_return(call, "ba(sss)", name[0] != '_', 0);
    return sd_bus_reply_method_return(call, "a(sss)", 0);
}

int StandIn::AnswerProperties(sd_bus_message* call)
{
    const char* interface = "";
    if (const int result = sd_bus_message_read(call, "s", &interface); result < 0) return result;
    const std::string path = sd_bus_message_get_path(call), kind = interface;
    const bool bJob = kind.ends_with(".Job");
    const std::string name = NameOf(bJob ? kJobs : kUnits, path.c_str());
    Unit unknown;
    unknown.load = "not-found";
    const auto found = m_units.find(name);
    Unit& unit = found == m_units.end() ? unknown : found->second;
    sd_bus_message* reply = nullptr;
    if (bJob && unit.jobGone) {
        unit.jobType.clear();
        return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_OBJECT, "gone");
    }
    if (kind.ends_with(".Unit") && unit.moving) Step(unit);
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_open_container(reply, 'a', "{sv}");
    if (bJob)
        sd_bus_message_append(reply, "{sv}", "JobType", "s", unit.jobType.c_str());
    else
        AppendUnit(reply, name, unit);
    sd_bus_message_close_container(reply);
    const int result = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return result;
}

void StandIn::Step(Unit& unit)
{
    if (unit.steps.empty()) return;
    std::tie(unit.active, unit.sub) = unit.steps.front();
    unit.steps.erase(unit.steps.begin());
}

void StandIn::Scan()
{
    for (const auto& name : m_scanned) {
        if (m_units[name].active == "inactive")
            m_units.erase(name);
        else
            m_units[name].load = "not-found";
    }
    m_scanned.clear();
    for (const auto& entry : std::filesystem::directory_iterator(m_unitDir)) {
        const std::string name = entry.path().filename();
        if (!name.ends_with(".service")) continue;
        m_scanned.insert(name);
        m_units[name].load = "loaded";
    }
}

} // namespace test
