// Any bytes as an INI file, and changes of it: what is set is found, what is removed is gone, and neither
// touches another key. The input is lines of section, key and value, divided by NULs, and the file's text
// behind them.

#include "platform/profile/IniEdit.h"
#include "platform/profile/ParsedIni.h"
#include "platform/text/CharWalk.h"

#include "include/platform/CodePage.h"
#include "include/platform/Host.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace profile = kx::profile;
using Value = std::optional<std::string>;

namespace {

void Expect(bool bHolds)
{
    if (!bHolds) std::abort();
}

// Up to the next NUL.
std::string_view TakePart(std::string_view& input)
{
    const std::size_t end = std::min(input.find('\0'), input.size());
    const std::string_view part = input.substr(0, end);
    input.remove_prefix(std::min(end + 1, input.size()));
    return part;
}

Value Find(std::string_view text, std::string_view section, std::string_view key)
{
    const profile::ParsedIni ini{std::string(text)};
    const auto found = ini.Find(section, key);
    return found ? Value(*found) : std::nullopt;
}

bool Same(std::string_view a, std::string_view b)
{
    return kx::text::CompareNoCase(a, b) == 0;
}

// By going through the lines from the start.
Value FindPlainly(std::string_view text, std::string_view section, std::string_view key)
{
    profile::IniLines lines(text);
    bool bInside = false;
    for (profile::IniLine line; lines.Next(line);) {
        if (line.kind == profile::IniLine::Kind::Section) {
            if (bInside) return std::nullopt;
            bInside = Same(line.name, section);
        } else if (bInside && line.kind == profile::IniLine::Kind::Key && Same(line.name, key)) {
            return std::string(profile::Unquote(line.value));
        }
    }
    return std::nullopt;
}

struct Name
{
    std::string section;
    std::string key;
};

std::vector<Name> AllKeys(std::string_view text)
{
    constexpr std::size_t kMost = 50;
    std::vector<Name> names;
    profile::IniLines lines(text);
    std::optional<std::string> section;
    for (profile::IniLine line; lines.Next(line) && names.size() < kMost;) {
        if (line.kind == profile::IniLine::Kind::Section) section = line.name;
        if (line.kind == profile::IniLine::Kind::Key && section)
            names.push_back({*section, std::string(line.name)});
    }
    return names;
}

// Every key that isn't spared reads the same in both.
void ExpectSameBut(std::string_view before, std::string_view after, std::string_view section,
                   const std::string* key)
{
    const profile::ParsedIni old{std::string(before)};
    const profile::ParsedIni now{std::string(after)};
    for (const auto& name : AllKeys(before)) {
        if (Same(name.section, section) && (!key || Same(name.key, *key))) continue;
        Expect(old.Find(name.section, name.key) == now.Find(name.section, name.key));
    }
}

void TestEdits(std::string_view text, std::string_view section, const std::string& key,
               std::string_view value)
{
    for (const auto& name : AllKeys(text))
        Expect(Find(text, name.section, name.key) == FindPlainly(text, name.section, name.key));
    Expect(Find(text, section, key) == FindPlainly(text, section, key));
    if (!profile::IsSection(section) || !profile::IsKey(key) || !profile::IsValue(value)) return;

    const std::string set = profile::SetKey(text, section, key, value);
    Expect(Find(set, section, key) == std::string(profile::Unquote(kx::text::Trim(value))));
    Expect(profile::SetKey(set, section, key, value) == set);
    ExpectSameBut(text, set, section, &key);

    const std::string removed = profile::RemoveKey(set, section, key);
    Expect(!Find(removed, section, key));
    ExpectSameBut(set, removed, section, &key);

    const std::string without = profile::RemoveSection(set, section);
    Expect(!profile::ParsedIni(without).HasSection(section));
    ExpectSameBut(set, without, section, nullptr);

    const std::string with = profile::AddSection(without, section);
    Expect(profile::ParsedIni(with).HasSection(section));
    ExpectSameBut(without, with, section, nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view input(reinterpret_cast<const char*>(data), size);
    KXHost::SetCodePage(size % 2 == 0 ? CP_GBK : CP_UTF8);
    const std::string_view section = kx::text::Trim(TakePart(input));
    const std::string key(kx::text::Trim(TakePart(input)));
    const std::string_view value = TakePart(input);
    TestEdits(input, section, key, value);
    return 0;
}
