#include "platform/module/FileVersion.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <elf.h>
#include <string_view>

using namespace std::string_view_literals;

namespace kx::module {

namespace {

constexpr std::string_view kOwner = "KXVersion\0"sv;
constexpr std::uint32_t kVersionNote = 1;
constexpr std::uint64_t kMaxEntries = 4096;    // of the program headers
constexpr std::uint64_t kMaxNotes = 64 * 1024; // bytes looked at in one place
constexpr int kMaxPlaces = 64;

std::optional<VS_FIXEDFILEINFO> FromNote(const Bytes& notes, std::uint64_t at)
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

// Notes in a row: the sizes of name and content, a type, then the two, each aligned.
std::optional<VS_FIXEDFILEINFO> InNotes(const ByteSource& source, std::uint64_t offset, std::uint64_t size,
                                        std::uint64_t align)
{
    const auto notes = source.Read(offset, std::min(size, kMaxNotes));
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

std::optional<VS_FIXEDFILEINFO> ReadElfVersion(const ByteSource& source)
{
    constexpr std::string_view kKind = "\177ELF\2\1"sv; // 64 bits, little-endian
    const auto header = source.Read(0, sizeof(Elf64_Ehdr));
    if (!header || std::memcmp(header->All().data(), kKind.data(), kKind.size()) != 0) return std::nullopt;
    const std::uint64_t start = header->U64(offsetof(Elf64_Ehdr, e_phoff)),
                        step = header->U16(offsetof(Elf64_Ehdr, e_phentsize)),
                        count = header->U16(offsetof(Elf64_Ehdr, e_phnum));
    if (step < sizeof(Elf64_Phdr) || start > source.Size()) return std::nullopt;
    int nPlaces = 0;
    for (std::uint64_t i = 0; i < std::min(count, kMaxEntries); ++i) {
        const auto entry = source.Read(start + i * step, sizeof(Elf64_Phdr));
        if (!entry) return std::nullopt;
        if (entry->U32(offsetof(Elf64_Phdr, p_type)) != PT_NOTE) continue;
        if (++nPlaces > kMaxPlaces) return std::nullopt;
        if (auto version = InNotes(source, entry->U64(offsetof(Elf64_Phdr, p_offset)),
                                   entry->U64(offsetof(Elf64_Phdr, p_filesz)),
                                   entry->U64(offsetof(Elf64_Phdr, p_align))))
            return version;
    }
    return std::nullopt;
}

} // namespace

std::optional<VS_FIXEDFILEINFO> ReadVersion(const ByteSource& source)
{
    auto version = ReadElfVersion(source);
    return version ? version : ReadPeVersion(source);
}

} // namespace kx::module
