#include "platform/module/FileVersion.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>

// A PE image: the DOS header, which names the PE header's place; the PE header, the optional header with its
// data directories, the section table. Resources are a tree of three levels: type, name, language.

namespace kx::module {

namespace {

constexpr std::uint64_t kSubdirectory = 0x80000000;
constexpr std::uint32_t kVersionType = 16;
constexpr std::uint32_t kMaxTypes = 4096;  // looked at; images have a score or two
constexpr std::uint32_t kMaxVersions = 16; // names, and languages of each, that are tried

class PeImage
{
public:
    static std::optional<PeImage> Open(const ByteSource& source);
    std::optional<VS_FIXEDFILEINFO> Version() const;

private:
    explicit PeImage(const ByteSource& source) : m_source(source) {}

    bool ReadHeaders(std::uint64_t peAt);
    std::optional<std::uint64_t> OffsetOf(std::uint64_t rva, std::uint64_t nCount) const;
    std::optional<Bytes> Entries(std::uint64_t directory, std::uint32_t max) const;
    template <class Visit>
    std::optional<VS_FIXEDFILEINFO> EachEntry(std::uint64_t directory, std::uint32_t max, Visit visit) const;
    std::optional<VS_FIXEDFILEINFO> Record(std::uint64_t dataEntry) const;

    const ByteSource& m_source;
    std::optional<Bytes> m_sections;
    std::uint64_t m_resources = 0; // the tree's place in the file
};

std::optional<PeImage> PeImage::Open(const ByteSource& source)
{
    const auto dos = source.Read(0, 64);
    if (!dos || dos->U16(0) != 0x5A4D) return std::nullopt;
    PeImage image(source);
    if (!image.ReadHeaders(dos->U32(60))) return std::nullopt;
    return image;
}

bool PeImage::ReadHeaders(std::uint64_t peAt)
{
    const auto pe = m_source.Read(peAt, 24);
    if (!pe || pe->U32(0) != 0x00004550) return false;
    const std::uint64_t nSections = pe->U16(6), nOptional = pe->U16(20);
    const auto optional = m_source.Read(peAt + 24, nOptional);
    if (!optional) return false;

    const std::uint32_t magic = optional->U16(0);
    if (magic != 0x10B && magic != 0x20B) return false;
    const std::uint64_t directories = magic == 0x10B ? 96 : 112;
    const std::uint64_t resource = directories + 2 * 8;
    if (nOptional < resource + 8 || optional->U32(directories - 4) < 3) return false;
    m_sections = m_source.Read(peAt + 24 + nOptional, nSections * 40);
    if (!m_sections) return false;
    const auto at = OffsetOf(optional->U32(resource), 16);
    m_resources = at.value_or(0);
    return at.has_value();
}

// The place in the file of the bytes at an address of the loaded image; nothing where no section holds them
// all.
std::optional<std::uint64_t> PeImage::OffsetOf(std::uint64_t rva, std::uint64_t nCount) const
{
    for (std::uint64_t at = 0; at < m_sections->Size(); at += 40) {
        const std::uint64_t start = m_sections->U32(at + 12), size = m_sections->U32(at + 16);
        if (rva >= start && rva - start <= size && nCount <= size - (rva - start))
            return m_sections->U32(at + 20) + (rva - start);
    }
    return std::nullopt;
}

// The entries of a directory of the tree, eight bytes each.
std::optional<Bytes> PeImage::Entries(std::uint64_t directory, std::uint32_t max) const
{
    const auto head = m_source.Read(m_resources + directory, 16);
    if (!head) return std::nullopt;
    const std::uint32_t count = head->U16(12) + std::uint32_t{head->U16(14)};
    return m_source.Read(m_resources + directory + 16, std::uint64_t{8} * std::min(count, max));
}

// Calls `visit(id, target)` with each entry of a directory until one gives a version.
template <class Visit>
std::optional<VS_FIXEDFILEINFO> PeImage::EachEntry(std::uint64_t directory, std::uint32_t max,
                                                   Visit visit) const
{
    const auto entries = Entries(directory, max);
    for (std::uint64_t at = 0; entries && at < entries->Size(); at += 8)
        if (auto version = visit(entries->U32(at), std::uint64_t{entries->U32(at + 4)})) return version;
    return std::nullopt;
}

std::optional<VS_FIXEDFILEINFO> PeImage::Version() const
{
    const std::optional<VS_FIXEDFILEINFO> none;
    const auto ofLanguage = [&](std::uint32_t, std::uint64_t target) {
        return target & kSubdirectory ? none : Record(target);
    };
    const auto ofName = [&](std::uint32_t, std::uint64_t target) {
        return target & kSubdirectory ? EachEntry(target ^ kSubdirectory, kMaxVersions, ofLanguage) : none;
    };
    const auto ofType = [&](std::uint32_t id, std::uint64_t target) {
        return id == kVersionType && target & kSubdirectory
                   ? EachEntry(target ^ kSubdirectory, kMaxVersions, ofName)
                   : none;
    };
    return EachEntry(0, kMaxTypes, ofType);
}

std::optional<VS_FIXEDFILEINFO> PeImage::Record(std::uint64_t dataEntry) const
{
    const auto entry = m_source.Read(m_resources + dataEntry, 16);
    if (!entry || entry->U32(4) < kVersionHeadSize) return std::nullopt;
    const auto at = OffsetOf(entry->U32(0), kVersionHeadSize);
    const auto head = at ? m_source.Read(*at, kVersionHeadSize) : std::nullopt;
    if (!head || head->U16(0) < kVersionHeadSize || head->U16(2) < sizeof(VS_FIXEDFILEINFO))
        return std::nullopt;
    for (std::size_t i = 0; i < std::size(kVersionKey); ++i)
        if (head->U16(6 + 2 * i) != kVersionKey[i]) return std::nullopt;

    std::array<DWORD, sizeof(VS_FIXEDFILEINFO) / sizeof(DWORD)> fields;
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i] = head->U32(kFixedRecordAt + 4 * i);
    const auto record = std::bit_cast<VS_FIXEDFILEINFO>(fields);
    if (record.dwSignature != kFixedSignature) return std::nullopt;
    return record;
}

} // namespace

std::optional<VS_FIXEDFILEINFO> ReadPeVersion(const ByteSource& source)
{
    const auto image = PeImage::Open(source);
    return image ? image->Version() : std::nullopt;
}

} // namespace kx::module
