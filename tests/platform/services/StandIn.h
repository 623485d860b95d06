#pragma once

#include "tests/support/Test.h"
#include "tests/support/XServer.h"

#include <ctime>
#include <sys/socket.h>
#include <systemd/sd-bus.h>

namespace test {

// A bus of its own, on which names can be had.
class PrivateBus
{
public:
    const std::string& Address() const { return m_address; }

private:
    TempDir m_dir;
    const std::string m_config =
        R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><listen>unix:dir=)" +
        m_dir.Path() + R"(</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";
    Pipe m_pipe; // the bus tells its address
    Program m_program{{"dbus-daemon", "--config-file=" + m_dir.Write("bus.conf", m_config),
                       "--print-address=" + std::to_string(m_pipe.ends[1]), "--nofork", "--nopidfile"}};
    std::string m_address = m_pipe.ReadLine();
};

struct Unit
{
    std::string load = "loaded";
    std::string active = "inactive";
    std::string sub = "dead";
    std::string jobType = "";     // empty: no job; "gone": one that has ended when it is asked for
    std::uint64_t secondsAgo = 0; // since the last change
    // Microseconds.
    std::uint64_t activeFor = 2'000'000;
    std::uint64_t limit = 90'000'000;
    std::string type = "exec";
    std::string result = "success";
    std::uint64_t started = 1;
    std::map<std::string, std::vector<std::string>> lists{}; // RequiredBy and the like
};

// Answers to systemd's name on a bus as the manager does, from the units that a test lists and those that
// a reload finds as files in a directory.
class StandIn : Fixed
{
public:
    StandIn(const PrivateBus& bus, std::string unitDir) : m_unitDir(std::move(unitDir))
    {
        sd_bus_new(&m_bus);
        sd_bus_set_address(m_bus, bus.Address().c_str());
        sd_bus_set_bus_client(m_bus, 1);
        sd_bus_start(m_bus);
        sd_bus_add_fallback(m_bus, nullptr, "/org/freedesktop/systemd1", Handle, this);
        if (sd_bus_request_name(m_bus, "org.freedesktop.systemd1", 0) < 0)
            throw std::runtime_error("no name");
        m_thread = std::thread([this] {
            for (int done = 0; done >= 0;)
                if ((done = sd_bus_process(m_bus, nullptr)) == 0) sd_bus_wait(m_bus, UINT64_MAX);
        });
    }
    ~StandIn()
    {
        shutdown(sd_bus_get_fd(m_bus), SHUT_RDWR); // ends the thread
        m_thread.join();
        sd_bus_close_unref(m_bus);
    }

    void Set(const std::string& name, Unit unit)
    {
        const std::lock_guard lock(m_lock);
        m_units[name] = std::move(unit);
    }
    // A unit's active state.
    std::string Active(const std::string& name)
    {
        const std::lock_guard lock(m_lock);
        return m_units[name].active;
    }
    // From now on that method fails with an error of this name; "": never answers; "=TYPE": answers with
    // nothing of that type.
    void Fail(const std::string& method, const std::string& error)
    {
        const std::lock_guard lock(m_lock);
        m_errors[method] = error;
    }
    // The methods called since the last time, with their arguments.
    std::string Calls()
    {
        const std::lock_guard lock(m_lock);
        return std::exchange(m_calls, {});
    }

private:
    static constexpr const char* kUnits = "/org/freedesktop/systemd1/unit";
    static constexpr const char* kJobs = "/org/freedesktop/systemd1/job";

    static std::string PathOf(const char* prefix, const std::string& name)
    {
        char* path = nullptr;
        sd_bus_path_encode(prefix, name.c_str(), &path);
        const std::unique_ptr<char, decltype(&std::free)> owned(path, std::free);
        return path;
    }
    static std::string NameOf(const char* prefix, const char* path)
    {
        char* name = nullptr;
        sd_bus_path_decode(path, prefix, &name);
        const std::unique_ptr<char, decltype(&std::free)> owned(name, std::free);
        return name ? name : "";
    }

    static int Handle(sd_bus_message* call, void* self, sd_bus_error*)
    {
        if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0) return 0;
        auto& standIn = *static_cast<StandIn*>(self);
        const std::lock_guard lock(standIn.m_lock);
        const std::string method = sd_bus_message_get_member(call);
        int result = 0;
        if (const auto found = standIn.m_errors.find(method); found == standIn.m_errors.end())
            result =
                method == "GetAll" ? standIn.AnswerProperties(call) : standIn.AnswerManager(call, method);
        else if (found->second.starts_with('='))
            result = sd_bus_reply_method_return(call, &found->second[1], 0);
        else if (!found->second.empty())
            sd_bus_reply_method_errorf(call, found->second.c_str(), "as asked");
        return result < 0 ? result : 1;
    }

    int AnswerManager(sd_bus_message* call, const std::string& method)
    {
        const char *name = "", *mode = "";
        int runtime = 0, force = 0;
        if (method == "Reload") {
            m_calls += "Reload;";
            Scan();
            return sd_bus_reply_method_return(call, "");
        }
        const bool bForce = method == "EnableUnitFiles" || method == "MaskUnitFiles";
        const bool bJob = method == "StartUnit" || method == "StopUnit";
        const int result =
            method.ends_with("Files")
                ? sd_bus_message_read(call, bForce ? "asbb" : "asb", 1, &name, &runtime, &force)
                : sd_bus_message_read(call, bJob ? "ss" : "s", &name, &mode);
        if (result < 0) return result;
        m_calls += method + " " + name + (*mode ? std::string(" ") + mode : "") +
                   (runtime || force ? " !" : "") + ";";
        if (method == "ResetFailedUnit") {
            if (!m_units.contains(name))
                return sd_bus_reply_method_errorf(call, "org.freedesktop.systemd1.NoSuchUnit", "not loaded");
            if (m_units[name].active == "failed") m_units[name].active = "inactive";
            return sd_bus_reply_method_return(call, "");
        }
        if (method == "StopUnit") m_units[name].active = "deactivating";
        if (method == "LoadUnit" || bJob)
            return sd_bus_reply_method_return(call, "o", PathOf(bJob ? kJobs : kUnits, name).c_str());
        if (method == "EnableUnitFiles")
            return sd_bus_reply_method_return(call, "ba(sss)", name[0] != '_', 0);
        return sd_bus_reply_method_return(call, "a(sss)", 0);
    }

    int AnswerProperties(sd_bus_message* call)
    {
        const char* interface = "";
        if (const int result = sd_bus_message_read(call, "s", &interface); result < 0) return result;
        const bool bJob = std::string_view(interface).ends_with(".Job");
        const std::string name = NameOf(bJob ? kJobs : kUnits, sd_bus_message_get_path(call));
        Unit unknown{.load = "not-found"};
        const auto found = m_units.find(name);
        Unit& unit = found == m_units.end() ? unknown : found->second;
        if (bJob && unit.jobType == "gone") {
            unit.jobType.clear();
            return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_OBJECT, "gone");
        }
        sd_bus_message* reply = nullptr;
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

    static void AppendUnit(sd_bus_message* reply, const std::string& name, const Unit& unit)
    {
        const std::pair<const char*, std::string> texts[] = {{"LoadState", unit.load},
                                                             {"ActiveState", unit.active},
                                                             {"SubState", unit.sub},
                                                             {"Type", unit.type},
                                                             {"Description", "T " + name.substr(0, 2)},
                                                             {"Result", unit.result}};
        timespec clock = {};
        clock_gettime(CLOCK_MONOTONIC, &clock);
        const auto now = static_cast<std::uint64_t>(clock.tv_sec * 1'000'000 + clock.tv_nsec / 1000);
        const std::pair<const char*, std::uint64_t> times[] = {
            {"StateChangeTimestampMonotonic", now - unit.secondsAgo * 1'000'000},
            {"ActiveEnterTimestampMonotonic", now - unit.activeFor},
            {"ExecMainStartTimestampMonotonic", unit.started},
            {"TimeoutStartUSec", unit.limit},
            {"TimeoutStopUSec", unit.limit}};
        const std::string job = unit.jobType.empty() ? "/" : PathOf(kJobs, name);
        sd_bus_message_append(reply, "{sv}", "Conditions", "a(sbbsi)", 0); // nobody wants it
        for (const auto& [property, text] : texts)
            sd_bus_message_append(reply, "{sv}", property, "s", text.c_str());
        for (const auto& [property, time] : times)
            sd_bus_message_append(reply, "{sv}", property, "t", time);
        sd_bus_message_append(reply, "{sv}", "CanStop", "b", 1);
        sd_bus_message_append(reply, "{sv}", "Job", "(uo)", unit.jobType.empty() ? 0u : 7u, job.c_str());
        sd_bus_message_append(reply, "{sv}", "MainPID", "u", 42u);
        sd_bus_message_append(reply, "{sv}", "ExecMainStatus", "i", 3);
        for (const auto& [kind, list] : unit.lists) {
            sd_bus_message_open_container(reply, 'e', "sv");
            sd_bus_message_append(reply, "s", kind.c_str());
            sd_bus_message_open_container(reply, 'v', "as");
            sd_bus_message_open_container(reply, 'a', "s");
            for (const auto& one : list)
                sd_bus_message_append(reply, "s", one.c_str());
            for (int n = 0; n < 3; ++n)
                sd_bus_message_close_container(reply);
        }
    }

    void Scan()
    {
        for (const auto& name : m_scanned) {
            m_units[name].load = "not-found";
            if (m_units[name].active == "inactive") m_units.erase(name);
        }
        m_scanned.clear();
        for (const auto& entry : std::filesystem::directory_iterator(m_unitDir)) {
            const std::string name = entry.path().filename();
            if (name.ends_with(".service")) m_units[*m_scanned.insert(name).first].load = "loaded";
        }
    }

    const std::string m_unitDir;
    sd_bus* m_bus = nullptr;
    std::mutex m_lock; // guards what follows
    std::map<std::string, Unit> m_units;
    std::map<std::string, std::string> m_errors;
    std::set<std::string> m_scanned;
    std::string m_calls;
    std::thread m_thread;
};

} // namespace test
