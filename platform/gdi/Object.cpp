#include "platform/gdi/Object.h"

#include "platform/Immortal.h"
#include "platform/LiveHandles.h"
#include "platform/gdi/text/TextLock.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <new>
#include <optional>
#include <sys/single_threaded.h>
#include <vector>

namespace kx::gdi {

// A handle is a slot's number and its generation, which Remove moves on, so that a slot comes round to the
// same handle after 2^32 objects. Slots stay where they are once made.
//
// A slot's state is its generation above the number of its pins, with a mark on an object that was removed
// while pinned: who takes the last pin off ends it. So finding takes one atomic step, letting go another, and
// neither ever waits.
class ObjectTable
{
public:
    static ObjectTable& Instance()
    {
        static Immortal<ObjectTable> table;
        return table.Get();
    }

    HGDIOBJ Add(std::shared_ptr<Object> object, bool stock);
    Pinned<Object> Find(HGDIOBJ handle) noexcept;
    bool Remove(HGDIOBJ handle) noexcept;
    Object* FindHeldContext(HGDIOBJ handle) noexcept;
    void EndRemoved(Pins& pins) noexcept;

private:
    struct Slot : Pins
    {
        Slot() noexcept : Pins{kGeneration} {}

        std::uint32_t index = 0;
        std::atomic<bool> taken{false};
        // Written before `taken` is set, and read by who has found it set.
        std::shared_ptr<Object> object;
        std::optional<LiveHandle> live;
        std::atomic<Object*> context{nullptr}; // the object if it is one; reset under the text lock
    };
    struct Name
    {
        explicit Name(HGDIOBJ handle) noexcept
            : index(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle)) - 1),
              generation(reinterpret_cast<std::uintptr_t>(handle) & ~std::uint64_t{UINT32_MAX})
        {
        }
        std::uint32_t index;
        std::uint64_t generation; // as it stands in a slot's state
    };
    static constexpr std::uint64_t kGeneration = std::uint64_t{1} << 32;
    static constexpr std::uint64_t kGenerations = ~(kGeneration - 1);
    static constexpr std::uint32_t kChunk = 1024;
    static constexpr std::uint32_t kChunks = 1024;
    using Chunk = std::array<Slot, kChunk>;

    Slot* At(std::uint32_t nIndex) noexcept
    {
        if (nIndex >= kChunk * kChunks) return nullptr;
        Chunk* chunk = m_chunks[nIndex / kChunk].load(std::memory_order_acquire);
        return chunk ? &(*chunk)[nIndex % kChunk] : nullptr;
    }
    static std::uint64_t NextGeneration(std::uint64_t state) noexcept
    {
        const std::uint64_t next = (state & kGenerations) + kGeneration;
        return next == 0 ? kGeneration : next;
    }
    Slot* Pin(HGDIOBJ handle) noexcept;
    std::optional<std::uint32_t> TakeFree();

    std::array<std::atomic<Chunk*>, kChunks> m_chunks{};
    sync::WordLock m_lock;
    std::vector<std::unique_ptr<Chunk>> m_made; // under the lock
    std::vector<std::uint32_t> m_free;          // under the lock; with room for every slot made
};

namespace {

constexpr std::uint64_t kRemoved = std::uint64_t{1} << 31;

// By an atomic step, but in a process that has had no second thread.
bool Replace(std::atomic<std::uint64_t>& state, std::uint64_t& seen, std::uint64_t next) noexcept
{
    if (!__libc_single_threaded)
        return state.compare_exchange_weak(seen, next, std::memory_order_acq_rel, std::memory_order_relaxed);
    state.store(next, std::memory_order_relaxed);
    return true;
}

} // namespace

std::optional<std::uint32_t> ObjectTable::TakeFree()
{
    const std::lock_guard lock(m_lock);
    if (m_free.empty()) {
        const std::size_t nMade = m_made.size();
        if (nMade == kChunks) return std::nullopt;
        m_free.reserve((nMade + 1) * kChunk);
        m_made.push_back(std::make_unique<Chunk>());
        const auto nFirst = static_cast<std::uint32_t>(nMade) * kChunk;
        for (std::uint32_t n = kChunk; n-- > 0;) {
            (*m_made.back())[n].index = nFirst + n;
            m_free.push_back(nFirst + n);
        }
        m_chunks[nMade].store(m_made.back().get(), std::memory_order_release);
    }
    const std::uint32_t nIndex = m_free.back();
    m_free.pop_back();
    return nIndex;
}

HGDIOBJ ObjectTable::Add(std::shared_ptr<Object> object, bool stock)
{
    const auto nIndex = TakeFree();
    if (!nIndex) return nullptr;
    Slot* slot = At(*nIndex);
    const std::uint64_t generation = slot->state.load(std::memory_order_relaxed) & kGenerations;
    const auto handle = reinterpret_cast<HGDIOBJ>(std::uintptr_t{generation} | (*nIndex + 1));
    object->m_handle = handle;
    object->m_stock = stock;
    if (!stock) slot->live.emplace();
    slot->object = std::move(object);
    if (slot->object->kind == Kind::Context)
        slot->context.store(slot->object.get(), std::memory_order_release);
    slot->taken.store(true, std::memory_order_release);
    return handle;
}

// Null for a handle that names nothing.
ObjectTable::Slot* ObjectTable::Pin(HGDIOBJ handle) noexcept
{
    const Name name(handle);
    Slot* const slot = At(name.index);
    if (!slot) return nullptr;
    std::uint64_t state = slot->state.load(std::memory_order_relaxed);
    do {
        if ((state & kGenerations) != name.generation || (state & kRemoved)) return nullptr;
    } while (!Replace(slot->state, state, state + 1));
    if (slot->taken.load(std::memory_order_acquire)) return slot;
    Unpin(*slot); // free: the handle is invented
    return nullptr;
}

Pinned<Object> ObjectTable::Find(HGDIOBJ handle) noexcept
{
    Slot* const slot = Pin(handle);
    if (!slot) return {};
    return {slot, slot->object.get()};
}

bool ObjectTable::Remove(HGDIOBJ handle) noexcept
{
    Slot* const slot = Pin(handle);
    if (!slot) return false;
    bool bRemoved = false;
    {
        std::unique_lock<sync::WordLock> text;
        if (slot->object->kind == Kind::Context) text = std::unique_lock(textLock);
        const std::uint64_t generation = Name(handle).generation;
        std::uint64_t state = slot->state.load(std::memory_order_relaxed);
        while (!bRemoved && (state & kGenerations) == generation)
            bRemoved = slot->state.compare_exchange_weak(
                state, NextGeneration(state) | kRemoved | (state & (kRemoved - 1)), std::memory_order_acq_rel,
                std::memory_order_relaxed);
        if (bRemoved) slot->context.store(nullptr, std::memory_order_relaxed);
    }
    Unpin(*slot);
    return bRemoved;
}

// By who took the last pin off.
void ObjectTable::EndRemoved(Pins& pins) noexcept
{
    Slot& slot = static_cast<Slot&>(pins);
    const std::shared_ptr<Object> object = std::move(slot.object); // which ends last, outside of the lock
    slot.object.reset();
    slot.live.reset();
    slot.taken.store(false, std::memory_order_relaxed);
    slot.state.fetch_and(~kRemoved, std::memory_order_release);
    const std::lock_guard lock(m_lock);
    m_free.push_back(slot.index);
}

// Whatever is found is whole, for its handle was there before it.
Object* ObjectTable::FindHeldContext(HGDIOBJ handle) noexcept
{
    const Slot* const slot = At(Name(handle).index);
    Object* const context = slot ? slot->context.load(std::memory_order_acquire) : nullptr;
    return context && context->Handle() == handle ? context : nullptr;
}

HGDIOBJ Add(std::shared_ptr<Object> object, bool stock)
try {
    return object ? ObjectTable::Instance().Add(std::move(object), stock) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

Pinned<Object> Find(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().Find(handle);
}

bool Remove(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().Remove(handle);
}

void Unpin(Pins& pins) noexcept
{
    std::uint64_t state = pins.state.load(std::memory_order_relaxed);
    while (!Replace(pins.state, state, state - 1)) {
    }
    if ((state & UINT32_MAX) == (kRemoved | 1)) ObjectTable::Instance().EndRemoved(pins);
}

Object* FindHeldContext(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().FindHeldContext(handle);
}

} // namespace kx::gdi
