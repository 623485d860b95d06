#include "core/LogQueue.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace kx::core {

namespace {

// A block of 64 KiB holds some 700 lines; longer lines have blocks of their own size, which aren't kept.
// Eight spare ones let a writer that falls half a megabyte behind and catches up do without the heap.
constexpr std::uint64_t ROOM = 64 * 1024 - sizeof(Block);
constexpr std::uint64_t MOST_SPARE = 8;

using Length = std::uint32_t;

// The first block, which can't fail.
struct
{
    Block head;
    std::byte lines[ROOM];
} g_first;

Block* At(std::uint64_t nAddress) noexcept
{
    return reinterpret_cast<Block*>(nAddress);
}

std::uint64_t AddressOf(const Block* pBlock) noexcept
{
    return reinterpret_cast<std::uint64_t>(pBlock);
}

char* LinesOf(Block* pBlock) noexcept
{
    return reinterpret_cast<char*>(pBlock + 1);
}

std::string_view LineAt(Block* pBlock, std::uint64_t offset) noexcept
{
    Length length = 0;
    std::memcpy(&length, LinesOf(pBlock) + offset, sizeof(length));
    return {LinesOf(pBlock) + offset + sizeof(length), length};
}

// A crash may come between any two stores: what a store makes known is written before it.
template <class T>
void Publish(T& field, T value) noexcept
{
    std::atomic_ref(field).store(value, std::memory_order_release);
}

void AddLine(Block* pBlock, std::string_view line) noexcept
{
    const auto length = static_cast<Length>(line.size());
    char* const at = LinesOf(pBlock) + pBlock->used;
    std::memcpy(at, &length, sizeof(length));
    std::memcpy(at + sizeof(length), line.data(), line.size());
    Publish(pBlock->used, pBlock->used + sizeof(length) + line.size());
}

} // namespace

Queue& Queue::Get() noexcept
{
    alignas(Queue) static std::byte memory[sizeof(Queue)];
    static Queue& queue = *new (memory) Queue;
    return queue;
}

Queue::Queue() noexcept : m_pTail(&g_first.head), m_first{m_pTail}, m_next{m_pTail}, m_limit{m_pTail}
{
    g_first.head = {kBlockMagic, 0, 0, ROOM, 0};
    m_record.version = kRecordVersion;
    SetFile(0, -1);
    Publish(m_record.magic, kRecordMagic);
}

void Queue::Push(std::string_view line)
{
    const std::uint64_t size = sizeof(Length) + line.size();
    if (size <= m_pTail->capacity - m_pTail->used) {
        AddLine(m_pTail, line);
    } else {
        Block* const pBlock = NewBlock(size);
        pBlock->number = m_pTail->number + 1;
        AddLine(pBlock, line);
        Publish(m_pTail->next, AddressOf(pBlock));
        m_pTail = pBlock;
    }
    ++m_nPushed;
}

Block* Queue::NewBlock(std::uint64_t nSize)
{
    Block* pBlock = nSize <= ROOM ? m_pSpare : nullptr;
    if (pBlock) {
        m_pSpare = At(pBlock->next);
        --m_nSpare;
    } else {
        const std::uint64_t capacity = std::max(nSize, ROOM);
        pBlock = static_cast<Block*>(::operator new(sizeof(Block) + capacity));
        pBlock->capacity = capacity;
    }
    *pBlock = {kBlockMagic, 0, 0, pBlock->capacity, 0};
    return pBlock;
}

bool Queue::Look() noexcept
{
    m_limit = {m_pTail, m_pTail->used};
    return m_next.pBlock != m_limit.pBlock || m_next.offset < m_limit.offset;
}

bool Queue::Next(std::string_view& line) noexcept
{
    if (m_next.pBlock != m_limit.pBlock && m_next.offset == m_next.pBlock->used)
        m_next = {At(m_next.pBlock->next)};
    if (m_next.pBlock == m_limit.pBlock && m_next.offset == m_limit.offset) return false;
    line = LineAt(m_next.pBlock, m_next.offset);
    m_next.offset += sizeof(Length) + line.size();
    m_nReadBytes += line.size();
    ++m_nRead;
    return true;
}

Queue::Written Queue::WrittenIn(std::uint64_t nLength) const noexcept
{
    const Position& position = m_record.positions[m_record.current];
    const std::uint64_t before = position.file + position.lineBreak;
    std::uint64_t left = nLength > before ? nLength - before : 0;
    Written written;
    Place place = m_first;
    while (left > 0 && written.lines < m_nRead) {
        if (place.offset == place.pBlock->used) place = {At(place.pBlock->next)};
        const std::size_t size = LineAt(place.pBlock, place.offset).size();
        if (size > left) break;
        left -= size;
        place.offset += sizeof(Length) + size;
        ++written.lines;
    }
    written.bTorn = written.lines < m_nRead && (left > 0 || (position.lineBreak && nLength < before));
    return written;
}

Block* Queue::HandOver(std::uint64_t nLength, bool bLineBreak) noexcept
{
    Block* const pFirst = m_first.pBlock;
    m_first = m_next;
    SetPosition(nLength, bLineBreak);
    m_nHandedOver += std::exchange(m_nRead, 0);
    m_nReadBytes = 0;
    return Recycle(pFirst, m_first.pBlock);
}

// Keeps spare blocks of those from `pFirst` to before `pEnd`, and returns the others.
Block* Queue::Recycle(Block* pFirst, Block* pEnd) noexcept
{
    Block* pFreed = nullptr;
    while (pFirst != pEnd) {
        Block* const pNext = At(pFirst->next);
        const bool bKeep = pFirst == &g_first.head || (pFirst->capacity == ROOM && m_nSpare < MOST_SPARE);
        Block*& list = bKeep ? m_pSpare : pFreed;
        m_nSpare += bKeep;
        pFirst->next = AddressOf(list);
        list = std::exchange(pFirst, pNext);
    }
    return pFreed;
}

void Queue::Free(Block* pBlocks) noexcept
{
    while (pBlocks)
        ::operator delete(std::exchange(pBlocks, At(pBlocks->next)));
}

Block* Queue::Forget() noexcept
{
    Block* const pFirst = m_first.pBlock;
    m_first = m_next = m_limit = {m_pTail, m_pTail->used};
    m_nHandedOver = m_nPushed;
    m_nRead = m_nReadBytes = 0;
    SetFile(0, -1);
    return Recycle(pFirst, m_pTail);
}

bool Queue::IsClosed() const noexcept
{
    return std::atomic_ref(const_cast<std::uint64_t&>(m_record.closed)).load(std::memory_order_relaxed) != 0;
}

void Queue::SetFile(std::uint64_t nProcess, std::int64_t nFile) noexcept
{
    Publish(m_record.file, std::int64_t{-1});
    SetPosition(0, false);
    m_record.process = nProcess;
    m_record.check = CheckOf(nProcess, nFile);
    Publish(m_record.file, nFile);
}

// The position that holds is never written to: the other one is, and then holds.
void Queue::SetPosition(std::uint64_t nLength, bool bLineBreak) noexcept
{
    const std::uint32_t other = 1 - m_record.current;
    m_record.positions[other] = {AddressOf(m_first.pBlock), m_first.offset, nLength, bLineBreak};
    Publish(m_record.current, other);
}

} // namespace kx::core
