#include "platform/crash/ExceptionRecord.h"

#include <ucontext.h>

namespace kx::crash {

namespace {

struct Place
{
    std::uintptr_t instruction = 0;
    std::uintptr_t stack = 0;
    bool bWrite = false; // of a bad access, where the processor tells
};

Place ReadPlace(const void* pUserContext) noexcept
{
    const mcontext_t& machine = static_cast<const ucontext_t*>(pUserContext)->uc_mcontext;
#if defined(__x86_64__)
    const auto at = [&](int nRegister) { return static_cast<std::uintptr_t>(machine.gregs[nRegister]); };
    return {at(REG_RIP), at(REG_RSP), (at(REG_ERR) & 2) != 0};
#elif defined(__aarch64__)
    return {machine.pc, machine.sp, false};
#else
    (void)machine;
    return {};
#endif
}

// A call or push that finds no room touches what lies just beside the stack's end.
bool IsBesideStack(std::uintptr_t address, std::uintptr_t stack) noexcept
{
    constexpr std::uintptr_t kNear = 64 * 1024;
    return stack != 0 && address + kNear > stack && address < stack + kNear;
}

DWORD ArithmeticCode(int nCode) noexcept
{
    switch (nCode) {
    case FPE_INTOVF:
        return EXCEPTION_INT_OVERFLOW;
    case FPE_FLTDIV:
        return EXCEPTION_FLT_DIVIDE_BY_ZERO;
    case FPE_FLTOVF:
    case FPE_FLTUND:
    case FPE_FLTRES:
    case FPE_FLTINV:
        return EXCEPTION_FLT_INVALID_OPERATION;
    default:
        return EXCEPTION_INT_DIVIDE_BY_ZERO;
    }
}

DWORD CodeOf(const siginfo_t& info, std::uintptr_t stack) noexcept
{
    const bool bKernel = info.si_code > 0; // a fault, no signal that somebody sent
    switch (info.si_signo) {
    case SIGSEGV:
        return bKernel && IsBesideStack(reinterpret_cast<std::uintptr_t>(info.si_addr), stack)
                   ? EXCEPTION_STACK_OVERFLOW
                   : EXCEPTION_ACCESS_VIOLATION;
    case SIGBUS:
        return info.si_code == BUS_ADRALN ? EXCEPTION_DATATYPE_MISALIGNMENT : EXCEPTION_IN_PAGE_ERROR;
    case SIGFPE:
        return ArithmeticCode(info.si_code);
    case SIGTRAP:
        return EXCEPTION_BREAKPOINT;
    case SIGABRT:
        return STATUS_FATAL_APP_EXIT;
    default:
        return EXCEPTION_ILLEGAL_INSTRUCTION;
    }
}

} // namespace

EXCEPTION_RECORD Describe(const siginfo_t& info, const void* pUserContext) noexcept
{
    const Place place = ReadPlace(pUserContext);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = CodeOf(info, place.stack);
    record.ExceptionFlags = info.si_signo == SIGABRT ? 1 : 0;
    record.ExceptionAddress = reinterpret_cast<void*>(place.instruction);
    if (info.si_code > 0 && (info.si_signo == SIGSEGV || info.si_signo == SIGBUS)) {
        record.NumberParameters = 2;
        record.ExceptionInformation[0] = place.bWrite ? 1 : 0;
        record.ExceptionInformation[1] = reinterpret_cast<std::uintptr_t>(info.si_addr);
    }
    return record;
}

} // namespace kx::crash
