#include "tools/KXCrashReport/Registers.h"

#include <string>

namespace kx::report {

#if defined(__x86_64__)

Registers FromContext(const ucontext_t& context)
{
    const auto at = [&](int nRegister) {
        return static_cast<unsigned long long>(context.uc_mcontext.gregs[nRegister]);
    };
    Registers to{};
    to.r15 = at(REG_R15);
    to.r14 = at(REG_R14);
    to.r13 = at(REG_R13);
    to.r12 = at(REG_R12);
    to.rbp = at(REG_RBP);
    to.rbx = at(REG_RBX);
    to.r11 = at(REG_R11);
    to.r10 = at(REG_R10);
    to.r9 = at(REG_R9);
    to.r8 = at(REG_R8);
    to.rax = at(REG_RAX);
    to.rcx = at(REG_RCX);
    to.rdx = at(REG_RDX);
    to.rsi = at(REG_RSI);
    to.rdi = at(REG_RDI);
    to.orig_rax = ~0ULL; // in no system call
    to.rip = at(REG_RIP);
    to.eflags = at(REG_EFL);
    to.rsp = at(REG_RSP);
    to.cs = at(REG_CSGSFS) & 0xFFFF;
    to.gs = (at(REG_CSGSFS) >> 16) & 0xFFFF;
    to.fs = (at(REG_CSGSFS) >> 32) & 0xFFFF;
    to.ss = (at(REG_CSGSFS) >> 48) & 0xFFFF;
    return to;
}

std::uint64_t Instruction(const Registers& registers)
{
    return registers.rip;
}

std::uint64_t StackPointer(const Registers& registers)
{
    return registers.rsp;
}

Registers AfterReturn(const Registers& registers, std::uint64_t onStack)
{
    Registers back = registers;
    back.rip = onStack;
    back.rsp += 8;
    return back;
}

std::array<std::uint64_t, kUnwindRegisters> ForUnwinding(const Registers& r)
{
    return {r.rax, r.rdx, r.rcx, r.rbx, r.rsi, r.rdi, r.rbp, r.rsp, r.r8,
            r.r9,  r.r10, r.r11, r.r12, r.r13, r.r14, r.r15, r.rip};
}

std::array<NamedRegister, kUnwindRegisters + 1> Named(const Registers& r)
{
    return {{{"rip", r.rip},
             {"rsp", r.rsp},
             {"rbp", r.rbp},
             {"rax", r.rax},
             {"rbx", r.rbx},
             {"rcx", r.rcx},
             {"rdx", r.rdx},
             {"rsi", r.rsi},
             {"rdi", r.rdi},
             {"r8", r.r8},
             {"r9", r.r9},
             {"r10", r.r10},
             {"r11", r.r11},
             {"r12", r.r12},
             {"r13", r.r13},
             {"r14", r.r14},
             {"r15", r.r15},
             {"flags", r.eflags}}};
}

#elif defined(__aarch64__)

Registers FromContext(const ucontext_t& context)
{
    Registers to{};
    for (std::size_t n = 0; n < 31; ++n)
        to.regs[n] = context.uc_mcontext.regs[n];
    to.sp = context.uc_mcontext.sp;
    to.pc = context.uc_mcontext.pc;
    to.pstate = context.uc_mcontext.pstate;
    return to;
}

std::uint64_t Instruction(const Registers& registers)
{
    return registers.pc;
}

std::uint64_t StackPointer(const Registers& registers)
{
    return registers.sp;
}

Registers AfterReturn(const Registers& registers, std::uint64_t)
{
    Registers back = registers;
    back.pc = registers.regs[30];
    return back;
}

std::array<std::uint64_t, kUnwindRegisters> ForUnwinding(const Registers& registers)
{
    std::array<std::uint64_t, kUnwindRegisters> words{};
    for (std::size_t n = 0; n < 31; ++n)
        words[n] = registers.regs[n];
    words[31] = registers.sp;
    return words;
}

std::array<NamedRegister, kUnwindRegisters + 1> Named(const Registers& registers)
{
    static constexpr const char* kNames[] = {"x0",  "x1",  "x2",  "x3",  "x4",  "x5",  "x6",  "x7",
                                             "x8",  "x9",  "x10", "x11", "x12", "x13", "x14", "x15",
                                             "x16", "x17", "x18", "x19", "x20", "x21", "x22", "x23",
                                             "x24", "x25", "x26", "x27", "x28", "x29", "x30", "sp"};
    std::array<NamedRegister, kUnwindRegisters + 1> named{};
    const auto words = ForUnwinding(registers);
    for (std::size_t n = 0; n < words.size(); ++n)
        named[n] = {kNames[n], words[n]};
    named.back() = {"pc", registers.pc};
    return named;
}

#endif

} // namespace kx::report
