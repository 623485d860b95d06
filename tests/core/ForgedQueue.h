#pragma once

#include "core/LogRecord.h"
#include "internal/Debug.h"
#include "platform/FileSystem.h"
#include "platform/Host.h"
#include "tests/support/Standard.h"

namespace test {

// A queue made by hand, of which the file has the first line and a part of the second.
struct ForgedQueue
{
    static constexpr std::size_t nRoom = 200;

    struct Piece
    {
        kx::core::Block head{kx::core::kBlockMagic, 7, 0, nRoom, 0};
        char lines[nRoom] = "";
        void Add(const std::string& line)
        {
            const auto length = static_cast<std::uint32_t>(line.size());
            std::memcpy(lines + head.used, &length, sizeof(length));
            std::memcpy(lines + head.used + sizeof(length), line.data(), line.size());
            head.used += sizeof(length) + line.size();
        }
    };

    ForgedQueue()
    {
        using namespace kx::core;
        const int file = open((KXHost::ToSystemPath("C:\\app\\app.log")).c_str(), O_WRONLY | O_CREAT, 0600);
        if (write(file, "before\nfirst\nsec", 16) != 16) std::_Exit(1);
        pieces[0].Add("first\n");
        pieces[0].Add("second\n");
        pieces[1].Add("third\n");
        pieces[0].head.next = reinterpret_cast<std::uint64_t>(&pieces[1]);
        pieces[1].head.number = 8;
        const auto pid = static_cast<std::uint64_t>(getpid());
        record = {kRecordMagic, kRecordVersion, 1, 0, pid, file, CheckOf(pid, file), {}};
        record.positions[1] = {reinterpret_cast<std::uint64_t>(&pieces[0]), 0, 7, 0};
        kx::debug::SetLogRecord(&record);
    }

    std::array<Piece, 2> pieces;
    kx::core::Record record;
};

// A fault of a queue, and the lines that the reporter brings home.
struct QueueFault
{
    const char* pszName;
    void (*pfnMake)(ForgedQueue&);
    const char* pszSaved;
    bool bDamage; // which the log tells of
};

inline constexpr QueueFault kQueueFaults[] = {
    {"sound", [](auto&) {}, "ond\nthird\n", false},
    {"break",
     [](auto& queue) {
         queue.record.positions[1] = {reinterpret_cast<std::uint64_t>(&queue.pieces[0]),
                                      queue.pieces[0].head.used, 16, 1};
     },
     "\nthird\n", false},
    {"next", [](auto& queue) { queue.pieces[1].head.next = 0x1234; }, "ond\nthird\n", true},
    {"circle", [](auto& queue) { queue.pieces[1].head.next = queue.pieces[0].head.next; }, "ond\nthird\n",
     true},
    {"used", [](auto& queue) { queue.pieces[1].head.used = 1'000; }, "ond\n", true},
    {"number", [](auto& queue) { queue.pieces[1].head.number = 9; }, "ond\n", true},
    {"magic", [](auto& queue) { queue.pieces[1].head.magic = 0; }, "ond\n", true},
    {"length", [](auto& queue) { std::memset(queue.pieces[1].lines, 0xFF, 4); }, "ond\n", true},
    {"longer", [](auto& queue) { ++queue.pieces[1].lines[0]; }, "ond\n", true},
    {"first", [](auto& queue) { queue.record.positions[1].block = 16; }, "\n", true},
    {"file", [](auto& queue) { queue.record.file = 1; }, "", false},
    {"check", [](auto& queue) { ++queue.record.check; }, "", false},
    {"process", [](auto& queue) { queue.record.process += 1; }, "", false},
    {"version", [](auto& queue) { queue.record.version += 1; }, "", false},
    {"record", [](auto&) { kx::debug::SetLogRecord(reinterpret_cast<const void*>(16)); }, "", false},
};

} // namespace test
