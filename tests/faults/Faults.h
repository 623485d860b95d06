#pragma once

#include "tests/support/Standard.h"

namespace faults {

enum class Call
{
    Allocate,
    Open,
    Write,
    Sync,
    Rename,
};

// Chooses the calls of this process that fail, the C library's own users and the libraries below included.
struct Plan
{
    Call call = Call::Allocate;
    long nth = 1;         // the first that fails, from 1
    bool bAll = false;    // and all that follow
    int error = 0;        // errno
    bool bShort = false;  // a write writes half instead
    bool bBelow = false;  // also the allocations of fontconfig and the loader
    bool bThread = false; // only calls of the thread that arms
};

// From now on calls fail as the plan says.
void Arm(const Plan& plan) noexcept;
// Ends that: how many calls of the plan's kind there were.
long Disarm() noexcept;
// The place from which the first failed call came.
std::vector<void*> FirstFailure();

// Nothing fails in its scope: for what a work checks.
class Pause : test::Fixed
{
public:
    Pause() noexcept;
    ~Pause();

private:
    const bool m_bArmed;
};

// A path of the library's, without an allocation; it lasts for seven calls more.
const char* Join(const std::string& directory, const char* pszName) noexcept;

// A work may use this: a directory of its own, empty at first, and one with files to read.
struct Place
{
    std::string own, data;

    std::string Path(const char* pszName) const { return own + "/" + pszName; }
    const char* Own(const char* pszName) const noexcept { return Join(own, pszName); }
    const char* Data(const char* pszName) const noexcept { return Join(data, pszName); }
};

// Something that the library is used for. Each step runs in a process of its own.
struct Work
{
    const char* pszName;
    // Done before calls fail. May be null.
    void (*prepare)(const Place& place);
    // Whether it succeeded, all results checked. What it made it has ended, in any case.
    bool (*run)(const Place& place);
    // Whether the files are whole: the old state or the new one. May be null.
    bool (*intact)(const Place& place);
    bool bClock = false; // on a virtual clock
};

const std::vector<Work>& Works();
// Runs a work; "" for success, "-" for a failure that it tells, "!" for the memory exception, else what it
// should not have done.
std::string Try(const Work& work, const Place& place);
// Downloads come from here: a server that answers "downloaded".
void SetServer(const std::string& url);
// Makes the files to read.
void MakeData(const std::string& directory);

} // namespace faults
