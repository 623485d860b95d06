#include "include/platform/Error.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/stream/Block.h"
#include "platform/sync/Mutex.h"

#include <new>
#include <unordered_map>

namespace kx::stream {

namespace {

// The blocks by their handles. That of a fixed block is its address, which is even; those of the others are
// odd numbers, none of which is used twice.
class BlockTable
{
public:
    HGLOBAL Add(std::shared_ptr<Block> block)
    {
        const sync::MutexLock lock(m_lock);
        const HGLOBAL hBlock = block->IsMoveable() ? reinterpret_cast<HGLOBAL>(m_nNext) : block->Bytes();
        m_blocks[hBlock] = std::move(block);
        m_nNext += 2;
        return hBlock;
    }
    std::shared_ptr<Block> Find(HGLOBAL hBlock) noexcept
    {
        const sync::MutexLock lock(m_lock);
        const auto found = m_blocks.find(hBlock);
        return found != m_blocks.end() ? found->second : nullptr;
    }
    // The address of a fixed block may be a new one's as soon as its bytes are freed: they end in here.
    bool End(HGLOBAL hBlock) noexcept
    {
        const sync::MutexLock lock(m_lock);
        const auto found = m_blocks.find(hBlock);
        if (found == m_blocks.end()) return false;
        const std::shared_ptr<Block> block = std::move(found->second);
        m_blocks.erase(found);
        block->End();
        return true;
    }

private:
    sync::Mutex m_lock;
    std::unordered_map<HGLOBAL, std::shared_ptr<Block>> m_blocks KX_GUARDED_BY(m_lock);
    std::uintptr_t m_nNext KX_GUARDED_BY(m_lock) = 1;
};

Immortal<BlockTable> g_blocks;

} // namespace

std::shared_ptr<Block> FindBlock(HGLOBAL hBlock) noexcept
{
    return g_blocks->Find(hBlock);
}

} // namespace kx::stream

using namespace kx::stream;

HGLOBAL GlobalAlloc(UINT nFlags, std::size_t nBytes)
try {
    auto block = Block::Make(nFlags, nBytes);
    return block ? g_blocks->Add(std::move(block)) : throw std::bad_alloc();
} catch (...) {
    return kx::NoMemory();
}

void* GlobalLock(HGLOBAL hBlock)
{
    const auto block = FindBlock(hBlock);
    if (!block) return nullptr;
    ++block->locks;
    return block->Bytes();
}

int GlobalUnlock(HGLOBAL hBlock)
{
    const auto block = FindBlock(hBlock);
    if (!block) return 0;
    int nLocks = block->locks;
    while (nLocks > 0 && !block->locks.compare_exchange_weak(nLocks, nLocks - 1)) {
    }
    return nLocks > 1;
}

std::size_t GlobalSize(HGLOBAL hBlock)
{
    const auto block = FindBlock(hBlock);
    return block ? block->Size() : 0;
}

HGLOBAL GlobalFree(HGLOBAL hBlock)
{
    return g_blocks->End(hBlock) ? nullptr : hBlock;
}
