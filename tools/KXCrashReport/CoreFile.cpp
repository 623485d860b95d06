#include "tools/KXCrashReport/CoreFile.h"

#include <algorithm>
#include <cstring>
#include <elf.h>
#include <unistd.h>

namespace kx::report {

namespace {

constexpr std::uint64_t kPage = 4096;
constexpr std::size_t kBlock = 1 << 18;

#if defined(__x86_64__)
constexpr Elf64_Half kMachine = EM_X86_64;
#elif defined(__aarch64__)
constexpr Elf64_Half kMachine = EM_AARCH64;
#endif

Elf64_Ehdr FileHead(std::size_t nSegments)
{
    Elf64_Ehdr head{};
    std::memcpy(head.e_ident, ELFMAG, SELFMAG);
    head.e_ident[EI_CLASS] = ELFCLASS64;
    head.e_ident[EI_DATA] = ELFDATA2LSB;
    head.e_ident[EI_VERSION] = EV_CURRENT;
    head.e_type = ET_CORE;
    head.e_machine = kMachine;
    head.e_version = EV_CURRENT;
    head.e_phoff = sizeof(head);
    head.e_ehsize = sizeof(head);
    head.e_phentsize = sizeof(Elf64_Phdr);
    head.e_phnum = static_cast<Elf64_Half>(nSegments);
    return head;
}

Elf64_Phdr NoteSegment(std::size_t nSegments, std::size_t size)
{
    Elf64_Phdr segment{};
    segment.p_type = PT_NOTE;
    segment.p_offset = sizeof(Elf64_Ehdr) + nSegments * sizeof(Elf64_Phdr);
    segment.p_filesz = size;
    segment.p_align = 4;
    return segment;
}

Elf64_Phdr MemorySegment(const Piece& piece, std::uint64_t offset)
{
    const auto flag = [](bool bSet, unsigned nFlag) { return bSet ? nFlag : 0U; };
    Elf64_Phdr segment{};
    segment.p_type = PT_LOAD;
    segment.p_flags =
        flag(piece.map.bRead, PF_R) | flag(piece.map.bWrite, PF_W) | flag(piece.map.bExecute, PF_X);
    segment.p_offset = offset;
    segment.p_vaddr = piece.map.start;
    segment.p_filesz = piece.kept;
    segment.p_memsz = piece.map.Size();
    segment.p_align = kPage;
    return segment;
}

bool WriteAt(int fd, std::string_view bytes, std::uint64_t offset)
{
    while (!bytes.empty()) {
        const ssize_t written = pwrite(fd, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
    return true;
}

// Memory that can't be read, or is all 0, stays a hole in the file.
bool CopyMemory(int fd, const Tracee& tracee, const Elf64_Phdr& segment)
{
    std::string block(kBlock, '\0');
    for (std::uint64_t done = 0; done < segment.p_filesz; done += kBlock) {
        const std::size_t want = std::min<std::uint64_t>(kBlock, segment.p_filesz - done);
        const std::size_t got = tracee.Read(segment.p_vaddr + done, block.data(), want);
        const std::string_view bytes(block.data(), got);
        if (bytes.find_first_not_of('\0') == bytes.npos) continue;
        if (!WriteAt(fd, bytes, segment.p_offset + done)) return false;
    }
    return true;
}

} // namespace

bool WriteCore(int fd, const Tracee& tracee, std::string_view notes, const std::vector<Piece>& pieces)
{
    const std::size_t count = pieces.size() + 1;
    std::vector<Elf64_Phdr> segments{NoteSegment(count, notes.size())};
    std::uint64_t end = (segments[0].p_offset + notes.size() + kPage - 1) / kPage * kPage;
    for (const Piece& piece : pieces) {
        segments.push_back(MemorySegment(piece, end));
        end += (piece.kept + kPage - 1) / kPage * kPage;
    }
    const Elf64_Ehdr head = FileHead(count);
    const auto bytesOf = [](const auto* pFirst, std::size_t size) {
        return std::string_view(reinterpret_cast<const char*>(pFirst), size);
    };
    return ftruncate(fd, static_cast<off_t>(end)) == 0 && WriteAt(fd, bytesOf(&head, sizeof(head)), 0) &&
           WriteAt(fd, bytesOf(segments.data(), segments.size() * sizeof(Elf64_Phdr)), sizeof(head)) &&
           WriteAt(fd, notes, segments[0].p_offset) &&
           std::all_of(segments.begin() + 1, segments.end(),
                       [&](const Elf64_Phdr& segment) { return CopyMemory(fd, tracee, segment); });
}

} // namespace kx::report
