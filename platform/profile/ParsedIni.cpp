#include "platform/profile/ParsedIni.h"

#include "platform/profile/FoldedName.h"
#include "platform/profile/IniLines.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace kx::profile {

ParsedIni::ParsedIni(std::string text) : m_text(std::move(text))
{
    ReadLines();
    Order();
    Index();
}

ParsedIni::Span ParsedIni::Place(std::string_view part) const noexcept
{
    return {static_cast<std::uint32_t>(part.data() - m_text.data()), static_cast<std::uint32_t>(part.size())};
}

void ParsedIni::ReadLines()
{
    m_entries.reserve(static_cast<std::size_t>(std::count(m_text.begin(), m_text.end(), '\n')) + 1);
    IniLines lines(m_text);
    std::uint32_t section = kSections;
    for (IniLine line; lines.Next(line);) {
        if (line.kind == IniLine::Kind::Other) continue;
        const Span name = Place(line.name);
        const bool bSection = line.kind == IniLine::Kind::Section;
        if (bSection) section = name.begin;
        if (section == kSections) continue; // a key before the first section is in none
        Fold(line.name, m_text.data() + name.begin);
        const Span value = bSection ? Span{} : Place(Unquote(line.value));
        const std::uint32_t group = bSection ? kSections : section;
        m_entries.push_back({Hash(HashFolded(View(name)), group), group, name, value});
    }
}

// Of equal names the first in the text comes first. Those behind it are never found, nor are the keys of
// such a section.
void ParsedIni::Order()
{
    std::sort(m_entries.begin(), m_entries.end(), [this](const Entry& a, const Entry& b) {
        if (a.hash != b.hash) return a.hash < b.hash;
        if (a.group != b.group) return a.group < b.group;
        const int order = View(a.name).compare(View(b.name));
        return order != 0 ? order < 0 : a.name.begin < b.name.begin;
    });
}

// About as many parts as entries, at least two.
void ParsedIni::Index()
{
    const int bits = std::max(1, static_cast<int>(std::bit_width(m_entries.size())));
    m_shift = 32 - bits;
    m_parts.resize((std::size_t{1} << bits) + 1);
    std::size_t entry = 0;
    for (std::size_t part = 0; part < m_parts.size(); ++part) {
        while (entry < m_entries.size() && m_entries[entry].hash >> m_shift < part)
            ++entry;
        m_parts[part] = static_cast<std::uint32_t>(entry);
    }
}

// Mostly a part has an entry or two.
const ParsedIni::Entry* ParsedIni::Look(std::uint32_t group, const FoldedName& name) const noexcept
{
    constexpr std::ptrdiff_t kFew = 8;
    const std::uint32_t hash = Hash(name.Hash(), group);
    const auto before = [this, hash, group](const Entry& entry, const FoldedName& sought) {
        if (entry.hash != hash) return entry.hash < hash;
        if (entry.group != group) return entry.group < group;
        return View(entry.name) < sought.View();
    };
    const std::uint32_t* part = &m_parts[hash >> m_shift];
    const Entry* entry = m_entries.data() + part[0];
    const Entry* end = m_entries.data() + part[1];
    if (end - entry > kFew) entry = std::lower_bound(entry, end, name, before);
    while (entry != end && before(*entry, name))
        ++entry;
    const bool bFound =
        entry != end && entry->hash == hash && entry->group == group && View(entry->name) == name.View();
    return bFound ? entry : nullptr;
}

bool ParsedIni::HasSection(std::string_view section) const
{
    return Look(kSections, FoldedName(section)) != nullptr;
}

std::optional<std::string_view> ParsedIni::Find(std::string_view section, std::string_view key) const
{
    const Entry* header = Look(kSections, FoldedName(section));
    const Entry* found = header ? Look(header->name.begin, FoldedName(key)) : nullptr;
    if (!found) return std::nullopt;
    return View(found->value);
}

std::size_t ParsedIni::Bytes() const noexcept
{
    return m_text.capacity() + m_entries.capacity() * sizeof(Entry) +
           m_parts.capacity() * sizeof(std::uint32_t);
}

} // namespace kx::profile
