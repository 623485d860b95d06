#pragma once

#include "include/KXExport.h"

#include <string_view>

// Diagnostics: one line to the debug channel for each quiet fallback that a person would want to know of,
// with what was looked for, where, and what was taken instead.
namespace kx::debug {

// Whether anybody listens to a family's diagnostics: the environment's KX_DEBUG was "1" or named the family
// as the library was loaded, or an observer of the host asked for diagnostics. Worth asking only before work
// that is done for a diagnostic alone; costs a few nanoseconds while nobody listens.
KX_API bool Wants(std::string_view family) noexcept;

// Sends "family: text\n", printf-style; nothing is formatted while nobody listens. The line is cut at 1,023
// bytes, and control characters in it become "?". Keeps `errno` and the last error. An observer is the host's
// code, so no lock may be held. Any thread.
KX_API void Tell(const char* pszFamily, const char* pszFormat, ...) noexcept
    __attribute__((format(printf, 2, 3)));

// Keeps this thread's diagnostics back, for work whose refusal is no fallback, such as a look whether a file
// is a picture at all.
class KX_API Quiet
{
public:
    Quiet() noexcept;
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
    ~Quiet();
};

// Names the file that the bytes of a stream come from, for what this thread's diagnostics say of the stream.
// Keeps the pointer.
class KX_API StreamName
{
public:
    explicit StreamName(const char* pszFile) noexcept;
    StreamName(const StreamName&) = delete;
    StreamName& operator=(const StreamName&) = delete;
    ~StreamName();
    static const char* Get() noexcept; // "a stream" where none has a name

private:
    const char* const m_pszBefore;
};

// Names the record of a queue of lines (core/LogRecord.h) which the crash reporter brings home; null for
// none. The record and all that it leads to stay in place to the end of the process. Any thread.
KX_API void SetLogRecord(const void* pRecord) noexcept;

} // namespace kx::debug
