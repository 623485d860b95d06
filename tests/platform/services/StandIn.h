#pragma once

#include "tests/support/Test.h"
#include "tests/support/XServer.h"

#include <systemd/sd-bus.h>

namespace test {

// A bus of its own, on which names can be had.
class PrivateBus
{
public:
    PrivateBus();

    const std::string& Address() const { return m_address; }

private:
    TempDir m_dir;
    Pipe m_pipe; // the bus tells its address
    Program m_program;
    std::string m_address;
};

struct Unit
{
    std::string load = "loaded";
    std::string active = "inactive";
    std::string sub = "dead";
    std::string jobType = "";            // empty: no job
    bool jobGone = false;                // the job has ended when it is asked for
    std::uint64_t secondsAgo = 0;        // since the last change
    std::uint64_t activeFor = 2'000'000; // microseconds
    std::string type = "exec";
    std::string description = "A unit";
    std::uint32_t pid = 0;
    std::string result = "success";
    std::int32_t exitStatus = 0;
    std::uint64_t started = 1;
    std::uint64_t startLimit = 90'000'000;
    std::uint64_t stopLimit = 90'000'000;
    std::map<std::string, std::vector<std::string>> lists{}; // RequiredBy and the like
    // Its state at each reading while it is moving, which it is once it was asked to start or stop.
    std::vector<std::pair<std::string, std::string>> steps{};
    bool moving = false;
};

// Answers to systemd's name on a bus as the manager does, from the units that a test lists and those that
// Reload finds as files in a directory.
class StandIn : Fixed
{
public:
    StandIn(const PrivateBus& bus, std::string unitDir);
    ~StandIn();

    void Set(const std::string& name, Unit unit);
    // A unit's active state.
    std::string Active(const std::string& name);
    // From now on that method fails with an error of this name; "": never answers; "=TYPE": answers with
    // nothing of that type.
    void Fail(const std::string& method, const std::string& error);
    // The methods called since the last time, with their arguments.
    std::string Calls();

private:
    static int Handle(sd_bus_message* message, void* self, sd_bus_error*);
    int Answer(sd_bus_message* call, const std::string& method);
    int AnswerManager(sd_bus_message* call, const std::string& method);
    int AnswerProperties(sd_bus_message* call);
    void Step(Unit& unit);
    void Scan();
    void Run();

    const std::string m_unitDir;
    sd_bus* m_bus = nullptr;
    int m_stop = -1;
    std::mutex m_lock; // guards what follows
    std::map<std::string, Unit> m_units;
    std::map<std::string, std::string> m_errors;
    std::set<std::string> m_scanned;
    std::string m_calls;
    std::thread m_thread;
};

} // namespace test
