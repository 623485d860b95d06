#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <sys/user.h>
#include <ucontext.h>

// The general registers of a thread: the one place that knows the processor.

namespace kx::report {

#if defined(__x86_64__)
using Registers = user_regs_struct;
inline constexpr std::size_t kUnwindRegisters = 17;
#elif defined(__aarch64__)
using Registers = user_regs_struct;
inline constexpr std::size_t kUnwindRegisters = 32;
#else
#error "no layout of the registers of this processor"
#endif

// The registers at a crash, as the system handed them to the handler.
Registers FromContext(const ucontext_t& context);

std::uint64_t Instruction(const Registers& registers);
std::uint64_t StackPointer(const Registers& registers);
// The registers once the function that was just called has returned; for a call of nothing.
Registers AfterReturn(const Registers& registers, std::uint64_t onStack);

// In the order of their numbers in unwinding tables.
std::array<std::uint64_t, kUnwindRegisters> ForUnwinding(const Registers& registers);

struct NamedRegister
{
    const char* name;
    std::uint64_t value;
};
std::array<NamedRegister, kUnwindRegisters + 1> Named(const Registers& registers);

} // namespace kx::report
