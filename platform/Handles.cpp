#include "platform/Handles.h"

#include "include/platform/Error.h"
#include "include/platform/Host.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <array>
#include <atomic>
#include <new>
#include <vector>

namespace kx {

namespace {

constinit std::atomic<int> g_live{0};

struct Name
{
    explicit Name(const void* handle) noexcept
        : index(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle))),
          generation(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle) >> 32))
    {
    }
    Name(std::uint32_t nIndex, std::uint32_t nGeneration) noexcept : index(nIndex), generation(nGeneration) {}
    HANDLE Handle() const noexcept
    {
        return reinterpret_cast<HANDLE>(std::uintptr_t{generation} << 32 | index);
    }

    std::uint32_t index;
    std::uint32_t generation; // 1 to kReservedGeneration
};

constexpr std::uint32_t kReservedGeneration = 0xFFFFFFFE; // no slot of the table reaches it

class Table
{
public:
    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

    HANDLE Add(HandleKind kind, std::shared_ptr<void> object, bool bCounted)
    {
        const sync::MutexLock lock(m_lock);
        if (m_free == kNone) {
            if (m_slots.size() == kNone) throw std::bad_alloc();
            m_slots.emplace_back();
            m_free = static_cast<std::uint32_t>(m_slots.size() - 1);
        }
        const std::uint32_t index = m_free;
        Slot& slot = m_slots[index];
        m_free = std::exchange(slot.nextFree, kNone);
        slot.object = std::move(object);
        slot.kind = kind;
        slot.bCounted = bCounted;
        if (bCounted) g_live.fetch_add(1, std::memory_order_relaxed);
        return Name(index, slot.generation).Handle();
    }

    std::shared_ptr<void> Find(HandleKind kind, Name name)
    {
        const sync::MutexLock lock(m_lock);
        const Slot* const slot = At(kind, name);
        return slot ? slot->object : nullptr;
    }

    std::shared_ptr<void> Remove(HandleKind kind, Name name)
    {
        const sync::MutexLock lock(m_lock);
        Slot* const slot = At(kind, name);
        if (!slot) return nullptr;
        if (slot->bCounted) g_live.fetch_sub(1, std::memory_order_relaxed);
        slot->kind = HandleKind::None;
        slot->generation = slot->generation + 1 == kReservedGeneration ? 1 : slot->generation + 1;
        slot->nextFree = std::exchange(m_free, name.index);
        return std::move(slot->object);
    }

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Slot
    {
        std::shared_ptr<void> object;
        std::uint32_t generation = 1;
        std::uint32_t nextFree = kNone;
        HandleKind kind = HandleKind::None;
        bool bCounted = false;
    };

    Slot* At(HandleKind kind, Name name) KX_REQUIRES(m_lock)
    {
        if (name.index >= m_slots.size()) return nullptr;
        Slot& slot = m_slots[name.index];
        return slot.kind == kind && slot.generation == name.generation ? &slot : nullptr;
    }

    sync::Mutex m_lock;
    std::vector<Slot> m_slots KX_GUARDED_BY(m_lock);
    std::uint32_t m_free KX_GUARDED_BY(m_lock) = kNone; // the head of a list through nextFree
};

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Handles, []() -> sync::Mutex& { return The<Table>().Lock(); });

struct Reserved
{
    std::shared_ptr<void> object;
    HandleKind kind = HandleKind::None;
    std::atomic<bool> bOpen{false};
};

using ReservedHandles = std::array<Reserved, kReservedHandles>;

Reserved* FindReserved(HandleKind kind, Name name) noexcept
{
    if (name.index >= kReservedHandles) return nullptr;
    Reserved& reserved = The<ReservedHandles>()[name.index];
    return reserved.bOpen.load(std::memory_order_acquire) && reserved.kind == kind ? &reserved : nullptr;
}

} // namespace

LiveHandle::LiveHandle() noexcept
{
    g_live.fetch_add(1, std::memory_order_relaxed);
}

LiveHandle::~LiveHandle()
{
    g_live.fetch_sub(1, std::memory_order_relaxed);
}

HANDLE AddHandle(HandleKind kind, std::shared_ptr<void> object, bool bCounted) noexcept
try {
    return object ? The<Table>().Add(kind, std::move(object), bCounted) : nullptr;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

std::shared_ptr<void> FindHandle(HandleKind kind, const void* handle) noexcept
{
    const Name name(handle);
    if (name.generation != kReservedGeneration) return The<Table>().Find(kind, name);
    const Reserved* const reserved = FindReserved(kind, name);
    return reserved ? reserved->object : nullptr;
}

std::shared_ptr<void> RemoveHandle(HandleKind kind, const void* handle) noexcept
{
    const Name name(handle);
    if (name.generation != kReservedGeneration) return The<Table>().Remove(kind, name);
    Reserved* const reserved = FindReserved(kind, name);
    return reserved && reserved->bOpen.exchange(false) ? reserved->object : nullptr;
}

void ReserveHandle(std::size_t nPlace, HandleKind kind, std::shared_ptr<void> object) noexcept
{
    Reserved& reserved = The<ReservedHandles>()[nPlace];
    reserved.object = std::move(object);
    reserved.kind = kind;
}

HANDLE OpenReservedHandle(std::size_t nPlace) noexcept
{
    The<ReservedHandles>()[nPlace].bOpen.store(true, std::memory_order_release);
    return Name(static_cast<std::uint32_t>(nPlace), kReservedGeneration).Handle();
}

} // namespace kx

int KXHost::LiveHandles()
{
    return kx::g_live.load(std::memory_order_relaxed);
}
