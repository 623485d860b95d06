#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kx::profile {

// An INI text, made ready for lookups. Unchanging once built, so any number of threads may share one.
class ParsedIni
{
public:
    explicit ParsedIni(std::string text);
    ParsedIni(const ParsedIni&) = delete;
    ParsedIni& operator=(const ParsedIni&) = delete;

    bool HasSection(std::string_view section) const;

    // The value without its quotes; nothing where the first section of that name lacks the key. Refers into
    // this object.
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;

    // The memory that it holds, about.
    std::size_t Bytes() const noexcept;

private:
    // Section and key, whose names are folded; the section itself has an empty key.
    using Name = std::pair<std::string_view, std::string_view>;

    std::string_view FoldInPlace(std::string_view part) noexcept;

    std::string m_text; // which all names and values refer to
    std::map<Name, std::string_view> m_values;
};

} // namespace kx::profile
