#include "platform/profile/ParsedIni.h"

#include "platform/profile/IniLines.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace kx::profile {

namespace {

void Fold(std::string_view name, char* folded) noexcept
{
    const bool bDoubleByte = text::IsDoubleByte();
    for (std::size_t i = 0; i < name.size(); ++i) {
        folded[i] = text::ToLower(name[i]);
        if (text::CharLength(name, i, bDoubleByte) == 2) {
            ++i;
            folded[i] = name[i];
        }
    }
}

// Eight bytes at a step, multiplied and shifted down.
std::uint32_t Hash(std::string_view folded) noexcept
{
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    std::uint64_t hash = folded.size();
    for (std::size_t i = 0; i < folded.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, folded.data() + i, std::min<std::size_t>(8, folded.size() - i));
        hash = (hash ^ word) * kFactor;
        hash ^= hash >> 32;
    }
    return static_cast<std::uint32_t>(hash);
}

// A name that is looked for: trimmed and folded, without memory of its own while it is of usual length.
class SoughtName
{
public:
    explicit SoughtName(std::string_view name)
    {
        name = text::Trim(name);
        char* folded = m_short.data();
        if (name.size() > m_short.size()) {
            m_long.resize(name.size());
            folded = m_long.data();
        }
        Fold(name, folded);
        m_view = {folded, name.size()};
        m_hash = Hash(m_view);
    }
    SoughtName(const SoughtName&) = delete;
    SoughtName& operator=(const SoughtName&) = delete;

    std::string_view View() const noexcept { return m_view; }
    std::uint32_t HashValue() const noexcept { return m_hash; }

private:
    std::array<char, 64> m_short; // set as far as it is used
    std::string m_long;
    std::string_view m_view;
    std::uint32_t m_hash = 0;
};

} // namespace

ParsedIni::ParsedIni(std::string text) : m_text(std::move(text))
{
    ReadLines();
    Order();
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
        m_entries.push_back({bSection ? kSections : section, Hash(View(name)), name, value});
    }
}

// Of equal names the first in the text comes first. Those behind it are never found, nor are the keys of
// such a section.
void ParsedIni::Order()
{
    std::sort(m_entries.begin(), m_entries.end(), [this](const Entry& a, const Entry& b) {
        if (a.group != b.group) return a.group < b.group;
        if (a.hash != b.hash) return a.hash < b.hash;
        const int order = View(a.name).compare(View(b.name));
        return order != 0 ? order < 0 : a.name.begin < b.name.begin;
    });
}

const ParsedIni::Entry* ParsedIni::Look(std::uint32_t group, std::string_view name) const
{
    const SoughtName sought(name);
    const auto found = std::lower_bound(m_entries.begin(), m_entries.end(), sought,
                                        [this, group](const Entry& entry, const SoughtName& other) {
                                            if (entry.group != group) return entry.group < group;
                                            if (entry.hash != other.HashValue())
                                                return entry.hash < other.HashValue();
                                            return View(entry.name) < other.View();
                                        });
    const bool bFound = found != m_entries.end() && found->group == group &&
                        found->hash == sought.HashValue() && View(found->name) == sought.View();
    return bFound ? &*found : nullptr;
}

bool ParsedIni::HasSection(std::string_view section) const
{
    return Look(kSections, section) != nullptr;
}

std::optional<std::string_view> ParsedIni::Find(std::string_view section, std::string_view key) const
{
    const Entry* header = Look(kSections, section);
    const Entry* found = header ? Look(header->name.begin, key) : nullptr;
    if (!found) return std::nullopt;
    return View(found->value);
}

std::size_t ParsedIni::Bytes() const noexcept
{
    return m_text.capacity() + m_entries.capacity() * sizeof(Entry);
}

} // namespace kx::profile
