// The queue of a crashed process's log, as the crash reporter reads it: the input is all the memory that
// there is, with a module at its beginning.
#include "tools/KXCrashReport/QueuedLines.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uint64_t kStart = 0x10000;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kx;
    const report::ReadMemory read = [&](std::uint64_t address, void* pTarget, std::size_t want) {
        if (address < kStart || address - kStart >= size) return std::size_t{0};
        const std::size_t got = std::min<std::uint64_t>(want, size - (address - kStart));
        std::memcpy(pTarget, data + (address - kStart), got);
        return got;
    };
    std::uint64_t bytes = 0;
    const report::TakePiece take = [&](std::string_view piece, bool) {
        bytes += piece.size();
        if (bytes > size) std::abort();
    };
    // A record at the very beginning, and one that a note leads to.
    core::Record record;
    if (size >= sizeof(record)) {
        std::memcpy(&record, data, sizeof(record));
        report::WalkLines(record.positions[0], size, read, take);
    }
    report::Mapping map;
    map.start = kStart;
    map.end = kStart + size;
    map.bRead = true;
    map.path = "/library";
    for (const report::FoundRecord& found : report::FindLogRecords({map}, read)) {
        bytes = 0;
        report::WalkLines(found.record.positions[found.record.current % 2], size, read, take);
    }
    return 0;
}
