#include "platform/text/CharWalk.h"
#include "platform/time/DayCount.h"

#include <algorithm>
#include <charconv>

namespace kx::time {

namespace {

// Takes what it knows off the front of a text; what isn't there is left alone.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_rest(text) {}

    bool AtEnd() const noexcept { return m_rest.empty(); }
    bool Take(char ch) noexcept
    {
        if (!m_rest.starts_with(ch)) return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void TakeBlanks() noexcept
    {
        while (Take(' ') || Take('\t')) {
        }
    }
    // A number of so many digits, with no further one behind it.
    bool Take(int& n, std::size_t nFewest, std::size_t nMost) noexcept
    {
        const std::size_t nDigits = std::min(m_rest.find_first_not_of("0123456789"), m_rest.size());
        if (nDigits < nFewest || nDigits > nMost) return false;
        std::from_chars(m_rest.data(), m_rest.data() + nDigits, n);
        m_rest.remove_prefix(nDigits);
        return true;
    }
    // A word of ASCII letters in any case.
    bool TakeWord(std::string_view word) noexcept
    {
        if (text::CompareNoCase(m_rest.substr(0, word.size()), word) != 0) return false;
        m_rest.remove_prefix(word.size());
        return true;
    }

private:
    std::string_view m_rest;
};

// Year, month, day, or with a slash also month, day, year.
bool TakeDate(Scanner& scanner, DateFields& f)
{
    Scanner start = scanner;
    for (const char chBetween : {'-', '/'}) {
        scanner = start;
        if (scanner.Take(f.year, 3, 4) && scanner.Take(chBetween) && scanner.Take(f.month, 1, 2) &&
            scanner.Take(chBetween) && scanner.Take(f.day, 1, 2))
            return true;
    }
    scanner = start;
    if (scanner.Take(f.month, 1, 2) && scanner.Take('/') && scanner.Take(f.day, 1, 2) && scanner.Take('/') &&
        scanner.Take(f.year, 4, 4))
        return true;
    scanner = start;
    return false;
}

// Hour and minute, maybe a second, and half of the day for a clock of twelve hours.
bool TakeTime(Scanner& scanner, DateFields& f)
{
    if (!scanner.Take(f.hour, 1, 2) || !scanner.Take(':') || !scanner.Take(f.minute, 1, 2)) return false;
    if (scanner.Take(':') && !scanner.Take(f.second, 1, 2)) return false;
    scanner.TakeBlanks();
    const bool bMorning = scanner.TakeWord("am");
    if (!bMorning && !scanner.TakeWord("pm")) return true;
    if (f.hour < 1 || f.hour > 12) return false;
    f.hour = f.hour % 12 + (bMorning ? 0 : 12);
    return true;
}

} // namespace

std::optional<DateFields> ParseDateText(std::string_view text)
{
    Scanner scanner(text::Trim(text));
    DateFields fields{1899, 12, 30, 0, 0, 0};
    const bool bDate = TakeDate(scanner, fields);
    if (!bDate) fields = {1899, 12, 30, 0, 0, 0};
    const bool bBetween = bDate && (scanner.Take('T') || scanner.Take(' '));
    scanner.TakeBlanks();
    if (!bDate || bBetween) {
        if (!TakeTime(scanner, fields)) return std::nullopt;
        if (bDate) scanner.Take('Z');
    }
    return scanner.AtEnd() ? std::optional(fields) : std::nullopt;
}

} // namespace kx::time
