#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kx::profile {

// An INI text, made ready for lookups. Unchanging once built, so any number of threads may share one.
//
// The names stand folded and in the order of their hashes; a lookup is two binary searches, and a text made
// to collide costs no more than some longer comparisons.
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
        std::uint32_t group; // the key's section, or kSections
        std::uint32_t hash;
        Span name;
        Span value;
    };
    static constexpr std::uint32_t kSections = UINT32_MAX;

    void ReadLines();
    void Order();
    Span Place(std::string_view part) const noexcept;
    std::string_view View(Span span) const noexcept { return {m_text.data() + span.begin, span.length}; }
    const Entry* Look(std::uint32_t group, std::string_view name) const;

    std::string m_text;
    std::vector<Entry> m_entries;
};

} // namespace kx::profile
