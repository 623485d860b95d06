#include "core/LogLine.h"

#include "platform/Exception.h"
#include "platform/Time.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

// The stamp of one second, kept for the other lines of that second. Small, as each thread of a client has
// one.
struct Stamp
{
    std::int64_t second = 0;
    std::array<char, 23> text{}; // 19 characters, up to the year 9999
    std::uint8_t length = 0;     // 0: there is none yet

    std::string_view At(CTime now)
    {
        if (now.GetTime() == second && length > 0) return {text.data(), length};
        std::tm fields{};
        length = 0;
        if (now.GetLocalTm(&fields))
            length = static_cast<std::uint8_t>(
                std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &fields));
        second = now.GetTime();
        if (length == 0) {
            constexpr std::string_view invalid = "Invalid DateTime";
            length = static_cast<std::uint8_t>(invalid.copy(text.data(), text.size()));
        }
        return {text.data(), length};
    }
};

char* Put(char* at, std::string_view text)
{
    std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

} // namespace

namespace kx::core {

Line::Line(int nLevel, std::string_view message)
{
    thread_local Stamp kept;
    const std::string_view stamp = kept.At(CTime::GetCurrentTime());
    std::array<char, 16> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), nLevel).ptr;
    const std::string_view level(digits.data(), static_cast<std::size_t>(end - digits.data()));

    const std::string_view parts[] = {"[", stamp, "] ", level, " ", message, "\n"};
    std::size_t length = 0;
    for (const std::string_view part : parts)
        length += part.size();
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) AfxThrowMemoryException();
    char* const line = length <= m_fixed.size() ? m_fixed.data() : m_long.GetBuffer(static_cast<int>(length));
    char* at = line;
    for (const std::string_view part : parts)
        at = Put(at, part);
    m_line = {line, length};
}

} // namespace kx::core
