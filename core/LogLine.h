#pragma once

#include "platform/String.h"

#include <array>
#include <string_view>

namespace kx::core {

// The line of a message: "[stamp] level message" and a line end, stamped with the local time at which it is
// made.
class Line
{
public:
    Line(int nLevel, std::string_view message);
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    std::string_view View() const noexcept { return m_line; }

private:
    std::array<char, 256> m_fixed;
    CString m_long; // of a line that is longer
    std::string_view m_line;
};

} // namespace kx::core
