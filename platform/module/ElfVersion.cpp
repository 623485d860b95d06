#include "platform/module/FileVersion.h"

#include <algorithm>
#include <cstring>
#include <string_view>

using namespace std::string_view_literals;

namespace kx::module {

namespace {

// Where the fields lie that are needed, in the two widths.
struct TableLayout
{
    std::uint64_t offset, entrySize, count;        // in the file's header
    std::uint64_t minEntry, type, at, size, align; // in an entry
    std::uint32_t noteType;
};
struct Layout
{
    std::uint64_t headerSize;
    bool b64;
    TableLayout tables[2]; // program headers, section headers
};
constexpr Layout k32{52, false, {{28, 42, 44, 32, 0, 4, 16, 28, 4}, {32, 46, 48, 40, 4, 16, 20, 32, 7}}};
constexpr Layout k64{64, true, {{32, 54, 56, 56, 0, 8, 32, 48, 4}, {40, 58, 60, 64, 4, 24, 32, 48, 7}}};

constexpr std::string_view kOwner = "KXVersion\0"sv;
constexpr std::uint32_t kVersionNote = 1;
constexpr std::uint64_t kMaxEntries = 4096;    // of a table
constexpr std::uint64_t kMaxNotes = 64 * 1024; // bytes looked at in one place
constexpr int kMaxPlaces = 64;

class ElfFile
{
public:
    ElfFile(const ByteSource& source, const Layout& layout, bool bBigEndian)
        : m_source(source), m_layout(layout), m_bBigEndian(bBigEndian)
    {
    }

    std::optional<VS_FIXEDFILEINFO> Version();

private:
    std::uint64_t Word(const Bytes& bytes, std::uint64_t at) const noexcept
    {
        return m_layout.b64 ? bytes.U64(at) : bytes.U32(at);
    }
    std::optional<VS_FIXEDFILEINFO> InTable(const Bytes& header, const TableLayout& table);
    std::optional<VS_FIXEDFILEINFO> InNotes(std::uint64_t offset, std::uint64_t size,
                                            std::uint64_t align) const;
    static std::optional<VS_FIXEDFILEINFO> FromNote(const Bytes& notes, std::uint64_t at);

    const ByteSource& m_source;
    const Layout& m_layout;
    bool m_bBigEndian;
    int m_places = 0;
};

std::optional<VS_FIXEDFILEINFO> ElfFile::Version()
{
    const auto header = m_source.Read(0, m_layout.headerSize, m_bBigEndian);
    if (!header) return std::nullopt;
    for (const auto& table : m_layout.tables)
        if (auto version = InTable(*header, table)) return version;
    return std::nullopt;
}

std::optional<VS_FIXEDFILEINFO> ElfFile::InTable(const Bytes& header, const TableLayout& table)
{
    const std::uint64_t start = Word(header, table.offset), step = header.U16(table.entrySize);
    const std::uint64_t count = std::min<std::uint64_t>(header.U16(table.count), kMaxEntries);
    if (step < table.minEntry || start > m_source.Size()) return std::nullopt;
    for (std::uint64_t i = 0; i < count; ++i) {
        const auto entry = m_source.Read(start + i * step, table.minEntry, m_bBigEndian);
        if (!entry) return std::nullopt;
        if (entry->U32(table.type) != table.noteType) continue;
        if (++m_places > kMaxPlaces) return std::nullopt;
        if (auto version =
                InNotes(Word(*entry, table.at), Word(*entry, table.size), Word(*entry, table.align)))
            return version;
    }
    return std::nullopt;
}

// Notes in a row: the sizes of name and content, a type, then the two, each aligned.
std::optional<VS_FIXEDFILEINFO> ElfFile::InNotes(std::uint64_t offset, std::uint64_t size,
                                                 std::uint64_t align) const
{
    const auto notes = m_source.Read(offset, std::min(size, kMaxNotes), m_bBigEndian);
    if (!notes) return std::nullopt;
    const std::uint64_t mask = align == 8 ? 7 : 3;
    for (std::uint64_t at = 0; at + 12 <= notes->Size();) {
        const std::uint64_t nameSize = notes->U32(at), contentSize = notes->U32(at + 4);
        const std::uint64_t content = (at + 12 + nameSize + mask) & ~mask;
        if (content > notes->Size() || contentSize > notes->Size() - content) return std::nullopt;
        const bool bOurs = nameSize == kOwner.size() && contentSize == 16 &&
                           notes->U32(at + 8) == kVersionNote &&
                           std::memcmp(notes->All().data() + at + 12, kOwner.data(), kOwner.size()) == 0;
        if (bOurs) return FromNote(*notes, content);
        at = (content + contentSize + mask) & ~mask;
    }
    return std::nullopt;
}

std::optional<VS_FIXEDFILEINFO> ElfFile::FromNote(const Bytes& notes, std::uint64_t at)
{
    DWORD numbers[4];
    for (std::size_t i = 0; i < 4; ++i) {
        numbers[i] = notes.U32(at + 4 * i);
        if (numbers[i] > 0xFFFF) return std::nullopt;
    }
    VS_FIXEDFILEINFO record{};
    record.dwSignature = kFixedSignature;
    record.dwStrucVersion = 0x00010000;
    record.dwFileVersionMS = record.dwProductVersionMS = numbers[0] << 16 | numbers[1];
    record.dwFileVersionLS = record.dwProductVersionLS = numbers[2] << 16 | numbers[3];
    return record;
}

} // namespace

std::optional<VS_FIXEDFILEINFO> ReadElfVersion(const ByteSource& source)
{
    const auto ident = source.Read(0, 16);
    if (!ident || std::memcmp(ident->All().data(), "\177ELF", 4) != 0) return std::nullopt;
    const int width = ident->All()[4], order = ident->All()[5];
    if ((width != 1 && width != 2) || (order != 1 && order != 2)) return std::nullopt;
    return ElfFile(source, width == 2 ? k64 : k32, order == 2).Version();
}

std::optional<VS_FIXEDFILEINFO> ReadVersion(const ByteSource& source)
{
    auto version = ReadElfVersion(source);
    return version ? version : ReadPeVersion(source);
}

} // namespace kx::module
