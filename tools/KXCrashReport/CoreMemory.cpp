#include "tools/KXCrashReport/CoreMemory.h"

#include <algorithm>

namespace kx::report {

namespace {

constexpr std::uint64_t kPage = 4096;
constexpr std::uint64_t kStack = 1 << 20;
constexpr std::uint64_t kStacks = 32 << 20; // of all threads together
constexpr std::uint64_t kBudget = 64 << 20;

// The limit of pieces, below what an ELF file can count, with places for modules and stacks, which often come
// last.
constexpr std::size_t kMostPieces = 60'000;
constexpr std::size_t kMostBeforeStacks = 50'000;
constexpr std::size_t kMostOfOthers = 30'000;

// The lowest address in use of a thread's stack. A stack pointer that overflowed points below it, by a frame.
std::uint64_t StackOf(const ThreadState& thread, const std::vector<Mapping>& maps)
{
    constexpr std::uint64_t kLargestFrame = 1 << 20;
    const std::uint64_t stack = StackPointer(thread.registers);
    for (const Mapping& map : maps)
        if (map.bWrite && map.end > stack)
            return map.start > stack && map.start - stack <= kLargestFrame ? map.start : stack;
    return stack;
}

// A function may use 128 bytes beyond the stack pointer.
std::uint64_t LowestUsed(std::uint64_t stack, const Mapping& map)
{
    return std::max(map.start, (stack - std::min<std::uint64_t>(stack, 128)) / kPage * kPage);
}

// Cuts a mapping in two where its stack begins to be used.
std::vector<Piece> Cut(const Mapping& map, const std::vector<std::uint64_t>& stacks)
{
    const std::uint64_t limit = std::min(kStack, kStacks / std::max<std::size_t>(stacks.size(), 1));
    std::uint64_t from = map.end;
    std::uint64_t to = map.start;
    for (const std::uint64_t stack : stacks) {
        if (!map.Holds(stack)) continue;
        from = std::min(from, LowestUsed(stack, map));
        to = std::max(to, std::min(map.end, LowestUsed(stack, map) + limit));
    }
    if (from >= to) return {{map, 0}};
    std::vector<Piece> pieces{{map, 0}, {map, to - from}};
    pieces[0].map.end = pieces[1].map.start = from;
    if (from == map.start) pieces.erase(pieces.begin());
    return pieces;
}

// A module's own data, or what of its file tells which build it is. What the loader has filled and then made
// read-only, its list of the modules among it, lies just before the writable data.
std::uint64_t OfModule(const Mapping& map, const Mapping* next)
{
    if (map.path == "[vdso]") return map.Size();
    if (!map.IsFile() || map.bShared) return 0;
    const bool bFilled = !map.bExecute && next && next->bWrite && next->path == map.path;
    if (map.bWrite || bFilled) return map.Size();
    return map.offset == 0 ? std::min(map.Size(), kPage) : 0;
}

// The limit of pieces before a mapping.
std::size_t MostBefore(const Mapping& map, const std::vector<std::uint64_t>& stacks)
{
    const auto holds = [&](std::uint64_t stack) { return map.Holds(stack); };
    if (std::any_of(stacks.begin(), stacks.end(), holds)) return kMostPieces;
    return map.IsFile() ? kMostBeforeStacks : kMostOfOthers;
}

class Budget
{
public:
    void Keep(Piece& piece, std::uint64_t size)
    {
        if (piece.kept > 0 || !piece.map.bRead || size > m_left) return;
        piece.kept = size;
        m_left -= size;
    }
    // For what is kept in any case, as far as there is room.
    void Charge(Piece& piece)
    {
        piece.kept = std::min(piece.kept, m_left);
        m_left -= piece.kept;
    }

private:
    std::uint64_t m_left = kBudget;
};

} // namespace

std::vector<Piece> ChooseMemory(const std::vector<Mapping>& maps, const std::vector<ThreadState>& threads)
{
    std::vector<std::uint64_t> stacks;
    for (const ThreadState& thread : threads)
        stacks.push_back(StackOf(thread, maps));
    std::vector<Piece> pieces;
    Budget budget;
    for (const Mapping& map : maps) {
        if (map.path == "[vsyscall]" || pieces.size() >= MostBefore(map, stacks)) continue;
        for (Piece& piece : Cut(map, stacks)) {
            budget.Charge(piece);
            pieces.push_back(std::move(piece));
        }
    }
    for (std::size_t n = 0; n < pieces.size(); ++n)
        budget.Keep(pieces[n], OfModule(pieces[n].map, n + 1 < pieces.size() ? &pieces[n + 1].map : nullptr));

    std::vector<Piece*> rest;
    for (Piece& piece : pieces)
        if (piece.map.bWrite && !piece.map.bShared && piece.kept == 0) rest.push_back(&piece);
    std::stable_sort(rest.begin(), rest.end(),
                     [](const Piece* a, const Piece* b) { return a->map.Size() < b->map.Size(); });
    for (Piece* piece : rest)
        budget.Keep(*piece, piece->map.Size());
    return pieces;
}

} // namespace kx::report
