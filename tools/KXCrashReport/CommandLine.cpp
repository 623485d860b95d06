#include "tools/KXCrashReport/CommandLine.h"

#include "tools/KXCrashReport/Text.h"

#include <charconv>

namespace kx::report {

namespace {

class Reader
{
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    // Takes what stands before `mark`, and the mark.
    std::string_view Until(std::string_view mark)
    {
        const auto at = m_rest.find(mark);
        if (at == m_rest.npos) m_bGood = false;
        if (!m_bGood) return {};
        const auto value = m_rest.substr(0, at);
        m_rest.remove_prefix(at + mark.size());
        return value;
    }

    template <class Number>
    void Until(std::string_view mark, Number& number)
    {
        std::int64_t value = 0;
        const auto digits = Until(mark);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        m_bGood = m_bGood && error == std::errc() && end == digits.data() + digits.size();
        number = static_cast<Number>(value);
    }

    std::string_view Rest() const { return m_rest; }
    bool IsGood() const { return m_bGood; }

private:
    std::string_view m_rest;
    bool m_bGood = true;
};

bool TakeEnd(std::string_view& text, std::string_view end)
{
    if (!text.ends_with(end)) return false;
    text.remove_suffix(end.size());
    return true;
}

} // namespace

std::optional<CommandLine> ParseCommandLine(std::string_view text)
{
    CommandLine line;
    line.bRestart = TakeEnd(text, " -autorestart");
    line.bSend = TakeEnd(text, " -autosend");
    if (!TakeEnd(text, "]")) return std::nullopt;
    Reader reader(text);
    if (!reader.Until("-sd -app[").empty()) return std::nullopt;
    line.app = ToUtf8(reader.Until("] -run["));
    line.restart = ToUtf8(reader.Until("] -dmp["));
    line.dump = ToUtf8(reader.Until("] -pid["));
    reader.Until("] -tid[", line.pid);
    reader.Until("] -exp[", line.tid);
    reader.Until("] -inf[", line.exception);
    line.contact = ToUtf8(reader.Rest());
    if (!reader.IsGood() || line.pid <= 0) return std::nullopt;
    return line;
}

} // namespace kx::report
