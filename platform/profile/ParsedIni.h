#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kx::profile {

class FoldedName;

// An INI text, made ready for lookups. Unchanging once built, so any number of threads may share one.
//
// The names stand folded and in the order of their hashes, with an index by the hash's upper bits: a lookup
// goes to the few entries of its part and searches them by halves, so that a text made to collide costs no
// more than some comparisons.
class ParsedIni
{
public:
    // The text must have less than 4 GiB; whoever reads files stops far below.
    explicit ParsedIni(std::string text);
    ParsedIni(const ParsedIni&) = delete;
    ParsedIni& operator=(const ParsedIni&) = delete;

    bool HasSection(std::string_view section) const;

    // The value without its quotes; nothing where the first section of that name lacks the key. Refers into
    // this object.
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;

    // The memory that it holds.
    std::size_t Bytes() const noexcept;

private:
    struct Span
    {
        std::uint32_t begin = 0;
        std::uint32_t length = 0;
    };
    // A section or a key. A section's number is where its name begins.
    struct Entry
    {
        std::uint32_t hash;  // of name and group
        std::uint32_t group; // the key's section, or kSections
        Span name;
        Span value;
    };
    static constexpr std::uint32_t kSections = UINT32_MAX;

    static std::uint32_t Hash(std::uint32_t name, std::uint32_t group) noexcept
    {
        return name ^ group * 0x9E3779B1;
    }

    void ReadLines();
    void Order();
    void Index();
    Span Place(std::string_view part) const noexcept;
    std::string_view View(Span span) const noexcept { return {m_text.data() + span.begin, span.length}; }
    const Entry* Look(std::uint32_t group, const FoldedName& name) const noexcept;

    std::string m_text;
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_parts; // where each part of the entries begins, and the end
    int m_shift = 0;                    // from a hash to its part
};

} // namespace kx::profile
