#include "tools/KXCrashReport/QueuedLines.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <elf.h>
#include <string>

namespace kx::report {

namespace {

constexpr std::size_t kPiece = 64 * 1024;

template <class T>
std::optional<T> Read(const ReadMemory& read, std::uint64_t address)
{
    T value;
    if (read(address, &value, sizeof(value)) != sizeof(value)) return std::nullopt;
    return value;
}

// The address that the log's note among a segment's notes leads to; 0 without one.
std::uint64_t FromNotes(const ReadMemory& read, std::uint64_t address, std::uint64_t size)
{
    constexpr std::string_view kName("KXLog\0\0\0", 8); // and what aligns the descriptor
    constexpr std::uint64_t kMost = 64 * 1024;
    const std::uint64_t end = address + std::min(size, kMost);
    const auto aligned = [](std::uint64_t n) { return (n + 3) / 4 * 4; };
    while (end - address >= sizeof(Elf64_Nhdr) && address < end) {
        const auto head = Read<Elf64_Nhdr>(read, address);
        if (!head) return 0;
        const std::uint64_t name = address + sizeof(*head);
        const std::uint64_t descriptor = name + aligned(head->n_namesz);
        const auto text = Read<std::array<char, kName.size()>>(read, name);
        if (head->n_type == 1 && head->n_namesz == 6 && head->n_descsz == 8 && text &&
            std::string_view(text->data(), text->size()) == kName) {
            const auto distance = Read<std::uint64_t>(read, descriptor);
            const auto record = distance ? Read<std::uint64_t>(read, descriptor + *distance) : std::nullopt;
            return record.value_or(0);
        }
        address = descriptor + aligned(head->n_descsz);
    }
    return 0;
}

// The record of the module whose file begins at an address; 0 where none does, or has a note.
std::uint64_t FromModule(const ReadMemory& read, std::uint64_t start)
{
    constexpr unsigned kMostHeaders = 64;
    const auto head = Read<Elf64_Ehdr>(read, start);
    if (!head || std::memcmp(head->e_ident, ELFMAG, SELFMAG) != 0 || head->e_ident[EI_CLASS] != ELFCLASS64 ||
        head->e_phentsize != sizeof(Elf64_Phdr))
        return 0;
    std::uint64_t base = start;
    for (unsigned n = 0; n < std::min<unsigned>(head->e_phnum, kMostHeaders); ++n) {
        const auto segment = Read<Elf64_Phdr>(read, start + head->e_phoff + n * sizeof(Elf64_Phdr));
        if (!segment) return 0;
        if (segment->p_type == PT_LOAD && segment->p_offset == 0) base = start - segment->p_vaddr;
        if (segment->p_type != PT_NOTE) continue;
        if (const std::uint64_t record = FromNotes(read, base + segment->p_vaddr, segment->p_memsz))
            return record;
    }
    return 0;
}

// One block, whose lines are given to `take` from an offset on.
class BlockWalk
{
public:
    BlockWalk(const ReadMemory& read, std::uint64_t& nLeft, const TakePiece& take)
        : m_read(read), m_nLeft(nLeft), m_take(take)
    {
    }

    bool Walk(std::uint64_t lines, std::uint64_t offset, std::uint64_t used)
    {
        while (offset < used) {
            const auto length = used - offset >= sizeof(std::uint32_t)
                                    ? Read<std::uint32_t>(m_read, lines + offset)
                                    : std::nullopt;
            offset += sizeof(std::uint32_t);
            if (!length || *length > used - offset || !Give(lines + offset, *length)) return false;
            offset += *length;
        }
        return true;
    }

private:
    bool Give(std::uint64_t address, std::uint64_t size)
    {
        do {
            const std::size_t part = std::min<std::uint64_t>(size, m_piece.size());
            if (part > m_nLeft || m_read(address, m_piece.data(), part) != part) return false;
            m_nLeft -= part;
            address += part;
            size -= part;
            m_take({m_piece.data(), part}, size == 0);
        } while (size > 0);
        return true;
    }

    const ReadMemory& m_read;
    std::uint64_t& m_nLeft;
    const TakePiece& m_take;
    std::string m_piece = std::string(kPiece, '\0');
};

} // namespace

std::vector<FoundRecord> FindLogRecords(const std::vector<Mapping>& maps, const ReadMemory& read)
{
    std::vector<FoundRecord> records;
    for (const Mapping& map : maps) {
        if (!map.IsFile() || !map.bRead || map.offset != 0) continue;
        const std::uint64_t address = FromModule(read, map.start);
        const auto record = address ? Read<core::Record>(read, address) : std::nullopt;
        if (record && record->magic == core::kRecordMagic && record->version == core::kRecordVersion)
            records.push_back({address, *record});
    }
    return records;
}

// Blocks are numbered, so no walk comes to one a second time, and `nMost` is for those that overlap.
bool WalkLines(const core::Position& from, std::uint64_t nMost, const ReadMemory& read, const TakePiece& take)
{
    BlockWalk walk(read, nMost, take);
    std::uint64_t address = from.block;
    std::uint64_t offset = from.offset;
    for (std::optional<std::uint64_t> number; address != 0; offset = 0) {
        const auto block = Read<core::Block>(read, address);
        if (!block || block->magic != core::kBlockMagic || block->used > block->capacity ||
            offset > block->used || (number && block->number != *number + 1))
            return false;
        number = block->number;
        if (!walk.Walk(address + sizeof(core::Block), offset, block->used)) return false;
        address = block->next;
    }
    return true;
}

} // namespace kx::report
