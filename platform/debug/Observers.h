#pragma once

#include <string_view>

namespace kx::debug {

enum class Kind
{
    Described, // a line that the library's classes are known to send: for every observer
    Diagnostic // for the observers that asked for diagnostics
};

// Whether an observer asked for diagnostics.
bool AnyWantsDiagnostics() noexcept;

// Gives a text to the host's observers of its kind, oldest first, on this thread. A few nanoseconds when
// there is none.
void TellObservers(std::string_view text, Kind kind);

} // namespace kx::debug
