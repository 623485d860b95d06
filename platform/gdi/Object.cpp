#include "platform/gdi/Object.h"

#include "platform/Immortal.h"
#include "platform/LiveHandles.h"
#include "platform/gdi/text/TextLock.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <vector>

namespace kx::gdi {

// A handle is a slot's number and its generation, which Remove moves on, so that a slot comes round to the
// same handle after 2^31 objects. Finding takes no lock but the slot's own, for the copy of one pointer;
// slots stay where they are once made.
class ObjectTable
{
public:
    static ObjectTable& Instance()
    {
        static Immortal<ObjectTable> table;
        return table.Get();
    }

    HGDIOBJ Add(std::shared_ptr<Object> object, bool stock);
    std::shared_ptr<Object> Find(HGDIOBJ handle) noexcept;
    std::shared_ptr<Object> Remove(HGDIOBJ handle) noexcept;
    Object* FindHeldContext(HGDIOBJ handle) noexcept;
    bool IsStock(HGDIOBJ handle) noexcept;

private:
    struct Slot
    {
        std::atomic<std::uint32_t> state{2}; // the generation, from 1, above a bit that is set while locked
        bool stock = false;
        std::optional<LiveHandle> live;
        std::shared_ptr<Object> object;
        std::atomic<Object*> context{nullptr}; // the object if it is one; reset under the text lock
    };
    struct Name
    {
        explicit Name(HGDIOBJ handle) noexcept
            : index(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle)) - 1),
              generation(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle) >> 32))
        {
        }
        std::uint32_t index;
        std::uint32_t generation;
    };
    class Lock;
    static constexpr std::uint32_t kChunk = 1024;
    static constexpr std::uint32_t kChunks = 1024;
    using Chunk = std::array<Slot, kChunk>;

    Slot* At(std::uint32_t nIndex) noexcept
    {
        if (nIndex >= kChunk * kChunks) return nullptr;
        Chunk* chunk = m_chunks[nIndex / kChunk].load(std::memory_order_acquire);
        return chunk ? &(*chunk)[nIndex % kChunk] : nullptr;
    }
    std::optional<std::uint32_t> TakeFree();

    std::array<std::atomic<Chunk*>, kChunks> m_chunks{};
    std::mutex m_lock;
    std::vector<std::unique_ptr<Chunk>> m_made; // under the lock
    std::vector<std::uint32_t> m_free;          // under the lock; with room for every slot made
};

// Holds a slot while it is of the generation asked for.
class ObjectTable::Lock
{
public:
    Lock(Slot* slot, std::uint32_t nGeneration) noexcept : m_free(nGeneration << 1)
    {
        if (!slot || nGeneration > UINT32_MAX / 2) return;
        for (std::uint32_t state = m_free;
             !slot->state.compare_exchange_weak(state, m_free | 1, std::memory_order_acquire);
             state = m_free) {
            if (state >> 1 != nGeneration) return;
            if (state & 1) std::this_thread::yield();
        }
        m_slot = slot;
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock()
    {
        if (m_slot) m_slot->state.store(m_free, std::memory_order_release);
    }

    explicit operator bool() const noexcept { return m_slot; }
    Slot* operator->() const noexcept { return m_slot; }
    // The slot is let go under its next generation, so that its handle names nothing.
    void MoveOn() noexcept { m_free = m_free == UINT32_MAX - 1 ? 2 : m_free + 2; }

private:
    Slot* m_slot = nullptr;
    std::uint32_t m_free;
};

std::optional<std::uint32_t> ObjectTable::TakeFree()
{
    const std::lock_guard lock(m_lock);
    if (m_free.empty()) {
        const std::size_t nMade = m_made.size();
        if (nMade == kChunks) return std::nullopt;
        m_free.reserve((nMade + 1) * kChunk);
        m_made.push_back(std::make_unique<Chunk>());
        m_chunks[nMade].store(m_made.back().get(), std::memory_order_release);
        const auto nFirst = static_cast<std::uint32_t>(nMade) * kChunk;
        for (std::uint32_t n = kChunk; n-- > 0;)
            m_free.push_back(nFirst + n);
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
    const std::uint32_t nGeneration = slot->state.load(std::memory_order_relaxed) >> 1;
    const Lock held(slot, nGeneration);
    const auto handle = reinterpret_cast<HGDIOBJ>(std::uintptr_t{nGeneration} << 32 | (*nIndex + 1));
    object->m_handle = handle;
    held->stock = stock;
    if (!stock) held->live.emplace();
    if (object->kind == Kind::Context) held->context.store(object.get(), std::memory_order_release);
    held->object = std::move(object);
    return handle;
}

std::shared_ptr<Object> ObjectTable::Find(HGDIOBJ handle) noexcept
{
    const Name name(handle);
    const Lock held(At(name.index), name.generation);
    return held ? held->object : nullptr;
}

std::shared_ptr<Object> ObjectTable::Remove(HGDIOBJ handle) noexcept
{
    const Name name(handle);
    std::shared_ptr<Object> object = Find(handle);
    if (!object) return nullptr;
    {
        std::unique_lock<std::mutex> text;
        if (object->kind == Kind::Context) text = std::unique_lock(TextLock());
        Lock held(At(name.index), name.generation);
        if (!held) return nullptr; // somebody else was faster
        held->object.reset();
        held->context.store(nullptr, std::memory_order_relaxed);
        held->live.reset();
        held.MoveOn();
    }
    const std::lock_guard lock(m_lock);
    m_free.push_back(name.index);
    return object;
}

// Whatever is found is whole, for its handle was there before it.
Object* ObjectTable::FindHeldContext(HGDIOBJ handle) noexcept
{
    const Slot* const slot = At(Name(handle).index);
    Object* const context = slot ? slot->context.load(std::memory_order_acquire) : nullptr;
    return context && context->Handle() == handle ? context : nullptr;
}

bool ObjectTable::IsStock(HGDIOBJ handle) noexcept
{
    const Name name(handle);
    const Lock held(At(name.index), name.generation);
    return held && held->object && held->stock;
}

HGDIOBJ Add(std::shared_ptr<Object> object, bool stock)
try {
    return object ? ObjectTable::Instance().Add(std::move(object), stock) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

std::shared_ptr<Object> Find(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().Find(handle);
}

std::shared_ptr<Object> Remove(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().Remove(handle);
}

Object* FindHeldContext(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().FindHeldContext(handle);
}

bool IsStock(HGDIOBJ handle) noexcept
{
    return ObjectTable::Instance().IsStock(handle);
}

} // namespace kx::gdi
