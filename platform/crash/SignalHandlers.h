#pragma once

#include <csignal>

namespace kx::crash {

using SignalHandler = void (*)(int, siginfo_t*, void*);

// Handle the signals of a crash, all of them blocked meanwhile and on the thread's alternate stack, and
// handle them as before. By one thread at a time.
void InstallHandlers(SignalHandler pfnHandler) noexcept;
void RemoveHandlers() noexcept;

enum class Course
{
    End,      // the system's: the process ends
    AsBefore, // what handled the signal before InstallHandlers
};

// From within the handler, as its last deed: once it has returned, its signal comes again, where and as it
// came before, and takes this course. True if that ends the process for sure. Heap-free.
bool ComeAgain(Course course, const siginfo_t& info, void* pUserContext) noexcept;

} // namespace kx::crash
