#include "tools/KXCrashReport/Crash.h"

#include <algorithm>
#include <elf.h>

namespace kx::report {

namespace {

template <class T>
std::optional<T> ReadAt(const Tracee& tracee, const void* pAddress)
{
    return tracee.Read<T>(reinterpret_cast<std::uintptr_t>(pAddress));
}

} // namespace

std::optional<CrashRecord> ReadCrash(const Tracee& tracee, std::uint64_t pointers)
{
    const auto top = tracee.Read<EXCEPTION_POINTERS>(pointers);
    if (!top) return std::nullopt;
    const auto exception = ReadAt<EXCEPTION_RECORD>(tracee, top->ExceptionRecord);
    const auto context = ReadAt<CONTEXT>(tracee, top->ContextRecord);
    if (!exception || !context) return std::nullopt;
    const auto signal = ReadAt<siginfo_t>(tracee, context->pSignalInfo);
    // The kernel writes the record up to these; what follows in its type may lie behind the end of the stack.
    ucontext_t machine{};
    const std::size_t size = offsetof(ucontext_t, uc_mcontext) + sizeof(machine.uc_mcontext);
    const auto address = reinterpret_cast<std::uintptr_t>(context->pUserContext);
    if (!signal || tracee.Read(address, &machine, size) != size) return std::nullopt;
    return CrashRecord{*exception, static_cast<pid_t>(context->dwThreadId), *signal, FromContext(machine)};
}

std::vector<ThreadState> ReadThreads(const Tracee& tracee, pid_t crashed,
                                     const std::optional<CrashRecord>& crash)
{
    std::vector<ThreadState> threads;
    for (const pid_t tid : tracee.Threads()) {
        ThreadState thread{tid, {}};
        if (crash && tid == crash->tid)
            thread.registers = crash->registers;
        else if (!tracee.ReadRegisters(tid, NT_PRSTATUS, &thread.registers, sizeof(thread.registers)))
            continue;
        threads.push_back(thread);
    }
    std::stable_partition(threads.begin(), threads.end(),
                          [&](const ThreadState& thread) { return thread.tid == crashed; });
    return threads;
}

} // namespace kx::report
