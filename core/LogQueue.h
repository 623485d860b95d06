#pragma once

#include "core/LogRecord.h"

#include <string_view>

namespace kx::core {

// The queue of finished lines, in blocks that the record describes to the crash reporter. There is one, which
// is never destroyed, as a crash may come at any time. All operations but Next, ReadBytes and NeedsLineBreak,
// which are the writer's own, are called under the log's lock.
class Queue
{
public:
    static Queue& Get() noexcept;
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    const Record& GetRecord() const noexcept { return m_record; }

    // Appends a line; throws std::bad_alloc, with nothing changed.
    void Push(std::string_view line);
    // The numbers of lines pushed and handed over since the process began.
    std::uint64_t Pushed() const noexcept { return m_nPushed; }
    std::uint64_t HandedOver() const noexcept { return m_nHandedOver; }

    // Lets Next go as far as lines have been pushed; false if it has been there.
    bool Look() noexcept;
    // Takes the oldest line; false without one up to where the last Look came. The text stays until HandOver.
    bool Next(std::string_view& line) noexcept;
    // The size of the lines taken since HandOver.
    std::uint64_t ReadBytes() const noexcept { return m_nReadBytes; }

    // The part of the taken lines that lies within that length of the file: how many lines as a
    // whole, and whether the file ends within a line.
    struct Written
    {
        std::uint64_t lines = 0;
        bool bTorn = false;
    };
    Written WrittenIn(std::uint64_t nLength) const noexcept;
    // Whether a line end goes ahead of the first line behind HandOver.
    bool NeedsLineBreak() const noexcept { return m_record.positions[m_record.current].lineBreak != 0; }

    // Ends with the lines that were taken; the file has that length now. Returns blocks for Free, which needs
    // no lock.
    Block* HandOver(std::uint64_t nLength, bool bLineBreak) noexcept;
    static void Free(Block* pBlocks) noexcept;

    // Lets go of all lines, and of the file. Returns blocks as above.
    Block* Forget() noexcept;

    // Whether the crash reporter has read the queue, so that the process is about to end. Needs no lock.
    bool IsClosed() const noexcept;

    // Names the file that lines go to from now on, -1 for none, which is empty.
    void SetFile(std::uint64_t nProcess, std::int64_t nFile) noexcept;

private:
    struct Place
    {
        Block* pBlock = nullptr;
        std::uint64_t offset = 0;
    };

    Queue() noexcept;
    Block* NewBlock(std::uint64_t nSize);
    Block* Recycle(Block* pFirst, Block* pEnd) noexcept;
    void SetPosition(std::uint64_t nLength, bool bLineBreak) noexcept;

    Record m_record{};
    Block* m_pTail;
    Block* m_pSpare = nullptr;
    std::uint64_t m_nSpare = 0;
    std::uint64_t m_nPushed = 0;
    std::uint64_t m_nHandedOver = 0;
    std::uint64_t m_nRead = 0; // lines taken since HandOver
    std::uint64_t m_nReadBytes = 0;
    Place m_first; // where the record's position is
    Place m_next;  // the line that Next takes
    Place m_limit; // how far it goes
};

} // namespace kx::core
