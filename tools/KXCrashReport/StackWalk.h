#pragma once

#include "tools/KXCrashReport/Crash.h"

#include <cstdint>
#include <elfutils/libdwfl.h>
#include <memory>
#include <string>
#include <vector>

namespace kx::report {

struct Frame
{
    std::uint64_t address = 0;
    std::string function; // empty where no symbol is known
    std::uint64_t offset = 0;
    std::string module; // its file
    std::string source; // `file:line`, where there is debug information
};

struct Stack
{
    std::vector<Frame> inner; // the innermost first
    std::size_t skipped = 0;  // how many lie between, as after an endless recursion
    std::vector<Frame> outer; // the last up to where the thread began
};

struct Module
{
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    std::string file;
    std::string build; // its build id
};

// Unwinds the threads of a stopped process and names what it finds.
class StackWalk
{
public:
    explicit StackWalk(const Tracee& tracee);

    // The 96 innermost and the 32 outermost frames, as far out as 100,000.
    Stack Walk(const ThreadState& thread);
    std::vector<Module> Modules() const;

private:
    struct Callbacks;
    struct Closer
    {
        void operator()(Dwfl* dwfl) const noexcept { dwfl_end(dwfl); }
    };

    struct Place
    {
        std::uint64_t address = 0;
        bool bExact = false; // else it is where a call will return to
    };

    void Unwind(const ThreadState& thread);
    Frame Describe(Place place) const;

    const Tracee& m_tracee;
    std::unique_ptr<Dwfl, Closer> m_dwfl;
    ThreadState m_thread; // the one in hand
    std::vector<Place> m_places;
};

} // namespace kx::report
