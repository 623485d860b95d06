#pragma once

#include <cstdint>

// The layout of the log's queue in memory. The crash reporter reads it out of a process that died, from
// outside and at any instruction, so the layout is fixed: what changes it changes kRecordVersion. Addresses
// are those of the process that logs.

namespace kx::core {

inline constexpr std::uint64_t kRecordMagic = 0x315145554C584B11; // what no text and no address is
inline constexpr std::uint64_t kBlockMagic = 0x314B434F4C584B11;
inline constexpr std::uint32_t kRecordVersion = 1;

// A piece of the queue. Lines follow it, each behind its length in 32 bits; of a line that is still being
// copied `used` doesn't tell yet.
struct Block
{
    std::uint64_t magic;
    std::uint64_t number;   // one more than that of the block before
    std::uint64_t next;     // the block behind it, 0 for the last
    std::uint64_t capacity; // bytes of lines that it has room for
    std::uint64_t used;     // bytes of lines that it holds
};

// The start of the first line that isn't known to have reached the file, and its place in the file.
struct Position
{
    std::uint64_t block;
    std::uint64_t offset;    // within its lines
    std::uint64_t file;      // the file's length before that line
    std::uint64_t lineBreak; // 1: a line end goes ahead of it, as a full disk has cut the line before
};

struct Record
{
    std::uint64_t magic;
    std::uint32_t version;
    std::uint32_t current; // which of the positions holds; the other may be half written
    std::uint64_t closed;  // not 0 once the reporter has read the queue: what is pushed then is lost
    std::uint64_t process; // whose queue it is: a fork's copy isn't the fork's
    std::int64_t file;     // the descriptor of the log's file, -1 without one
    std::uint64_t check;   // CheckOf process and file, so that a torn record leads to no other file
    Position positions[2];
};

constexpr std::uint64_t CheckOf(std::uint64_t nProcess, std::int64_t nFile) noexcept
{
    return (kRecordMagic ^ nProcess) * 0x9E3779B97F4A7C15 + static_cast<std::uint64_t>(nFile);
}

static_assert(sizeof(Block) == 40 && sizeof(Position) == 32 && sizeof(Record) == 112);

} // namespace kx::core
