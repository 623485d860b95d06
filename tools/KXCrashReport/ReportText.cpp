#include "tools/KXCrashReport/ReportText.h"

#include "tools/KXCrashReport/StackWalk.h"
#include "tools/KXCrashReport/Text.h"

#include <cstring>
#include <ctime>
#include <filesystem>
#include <sstream>

namespace kx::report {

namespace {

const char* NameOf(DWORD dwCode)
{
    switch (dwCode) {
    case EXCEPTION_ACCESS_VIOLATION:
        return "access violation";
    case EXCEPTION_STACK_OVERFLOW:
        return "stack overflow";
    case EXCEPTION_IN_PAGE_ERROR:
        return "memory that couldn't be loaded";
    case EXCEPTION_DATATYPE_MISALIGNMENT:
        return "misaligned access";
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
        return "division by zero";
    case EXCEPTION_INT_OVERFLOW:
        return "integer overflow";
    case EXCEPTION_FLT_INVALID_OPERATION:
        return "floating-point exception";
    case EXCEPTION_BREAKPOINT:
        return "breakpoint";
    case STATUS_FATAL_APP_EXIT:
        return "abort";
    default:
        return "illegal instruction";
    }
}

std::string Now()
{
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    char text[32] = "";
    if (localtime_r(&now, &fields)) std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S %z", &fields);
    return text;
}

void WriteCause(std::ostream& out, const CrashRecord& crash)
{
    const char* pszSignal = sigabbrev_np(crash.signal.si_signo);
    out << "signal       " << crash.signal.si_signo << " SIG" << (pszSignal ? pszSignal : "?") << ", code "
        << crash.signal.si_code << "\n";
    out << "exception    0x" << std::hex << crash.exception.ExceptionCode << std::dec << " "
        << NameOf(crash.exception.ExceptionCode) << "\n";
    out << "instruction  " << Hex(Instruction(crash.registers)) << "\n";
    if (crash.exception.NumberParameters >= 2)
        out << "address      " << Hex(crash.exception.ExceptionInformation[1])
            << (crash.exception.ExceptionInformation[0] ? " written" : " read") << "\n";
    out << "\nregisters\n";
    for (const NamedRegister& one : Named(crash.registers))
        out << "  " << one.name << std::string(6 - std::strlen(one.name), ' ') << Hex(one.value) << "\n";
}

void WriteFrame(std::ostream& out, std::size_t n, const Frame& frame)
{
    out << "  " << (n < 10 ? " " : "") << n << "  " << Hex(frame.address) << "  ";
    if (frame.function.empty())
        out << "?";
    else
        out << OneLine(frame.function) << "+0x" << std::hex << frame.offset << std::dec;
    if (!frame.module.empty())
        out << "  " << OneLine(std::filesystem::path(frame.module).filename().native());
    if (!frame.source.empty()) out << "  " << OneLine(frame.source);
    out << "\n";
}

void WriteThread(std::ostream& out, const std::string& name, const ThreadState& thread, bool bCrashed,
                 const Stack& stack)
{
    out << "\nthread " << thread.tid << " " << OneLine(name) << (bCrashed ? " (crashed)" : "") << "\n";
    std::size_t n = 0;
    for (const Frame& frame : stack.inner)
        WriteFrame(out, n++, frame);
    if (stack.skipped > 0) out << "      " << stack.skipped << " further ones\n";
    n += stack.skipped;
    for (const Frame& frame : stack.outer)
        WriteFrame(out, n++, frame);
}

std::string ThreadName(const Tracee& tracee, pid_t tid)
{
    std::string name = ReadFile(tracee.ProcFile("task/") + std::to_string(tid) + "/comm");
    name.resize(std::min(name.find('\n'), name.size()));
    return name;
}

} // namespace

std::string ReportText(const CommandLine& line, const Tracee& tracee, const std::optional<CrashRecord>& crash,
                       const std::vector<ThreadState>& threads, const std::string& lines)
{
    std::error_code error;
    const auto program = std::filesystem::read_symlink(tracee.ProcFile("exe"), error);
    std::ostringstream out;
    out << "application  " << OneLine(line.app) << "\n"
        << "contact      " << OneLine(line.contact) << "\n"
        << "written      " << Now() << "\n"
        << "process      " << line.pid << " " << OneLine(program.native()) << "\n"
        << "thread       " << line.tid << "\n";
    if (crash) WriteCause(out, *crash);
    if (threads.empty())
        out << "\nThe process can't be looked into: no registers, no stacks, no queued log lines.\n";
    StackWalk walk(tracee);
    for (const ThreadState& thread : threads)
        WriteThread(out, ThreadName(tracee, thread.tid), thread, thread.tid == line.tid, walk.Walk(thread));
    out << "\nmodules\n";
    for (const Module& module : walk.Modules())
        out << "  " << Hex(module.start) << "-" << Hex(module.end) << "  " << OneLine(module.file)
            << (module.build.empty() ? "" : "  build " + module.build) << "\n";
    if (!lines.empty()) out << "\nlog lines that were queued\n" << lines;
    return out.str();
}

} // namespace kx::report
