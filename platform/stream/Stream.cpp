#include "include/platform/Stream.h"
#include "platform/Errno.h"
#include "platform/Handles.h"
#include "platform/Immortal.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kx::stream {

namespace {

// The bytes under a memory block's handle. A stream may hold them longer than the handle lives: they are gone
// then.
class MemoryBlock
{
public:
    // Throws std::bad_alloc for a size beyond the limit too.
    MemoryBlock(UINT nFlags, std::size_t nBytes) : m_bMoveable((nFlags & GMEM_MOVEABLE) != 0)
    {
        if (nBytes > MAX_BLOCK_BYTES) throw std::bad_alloc();
        m_bytes.reserve(std::max<std::size_t>(nBytes, 1)); // an address even for no bytes
        m_bytes.resize(nBytes);
    }

    BYTE* Bytes() noexcept { return m_bytes.data(); }
    std::size_t Size() const noexcept { return m_bytes.size(); }
    bool IsMoveable() const noexcept { return m_bMoveable; }

    // Makes it longer; what is new is zero. False for what can't be, the block then staying as it is.
    bool Grow(std::size_t nBytes) noexcept
    try {
        const bool bMoves = nBytes > m_bytes.capacity();
        if (!m_bMoveable || nBytes > MAX_BLOCK_BYTES || m_bytes.capacity() == 0) return false;
        if (bMoves && locks > 0) return false; // whoever locked it has its address
        m_bytes.resize(nBytes);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
    // Frees the bytes.
    void End() noexcept { std::vector<BYTE>().swap(m_bytes); }

    std::atomic<int> locks{0};

private:
    std::vector<BYTE> m_bytes;
    const bool m_bMoveable;
    const LiveHandle m_live;
};

// The blocks by their handles. That of a fixed block is its address, which is even; those of the others are
// odd numbers, none of which is used twice.
class BlockTable
{
public:
    HGLOBAL Add(std::shared_ptr<MemoryBlock> block)
    {
        const sync::MutexLock lock(m_lock);
        const HGLOBAL hBlock = block->IsMoveable() ? reinterpret_cast<HGLOBAL>(m_nNext) : block->Bytes();
        m_blocks[hBlock] = std::move(block);
        m_nNext += 2;
        return hBlock;
    }
    std::shared_ptr<MemoryBlock> Find(HGLOBAL hBlock) noexcept
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
        const std::shared_ptr<MemoryBlock> block = std::move(found->second);
        m_blocks.erase(found);
        block->End();
        return true;
    }

private:
    sync::Mutex m_lock;
    std::unordered_map<HGLOBAL, std::shared_ptr<MemoryBlock>> m_blocks KX_GUARDED_BY(m_lock);
    std::uintptr_t m_nNext KX_GUARDED_BY(m_lock) = 1;
};

// The block of a handle, or null. Any thread.
std::shared_ptr<MemoryBlock> FindBlock(HGLOBAL hBlock) noexcept
{
    return The<BlockTable>().Find(hBlock);
}

// Tells a stream of this file from a client's own.
constexpr GUID kOwnStream{0x6D1C8E52, 0x3F0B, 0x4E57, {0x9A, 0x41, 0x07, 0xB5, 0x2C, 0xE8, 0x90, 0x1D}};

template <class T>
void Tell(T* pTarget, T value) noexcept
{
    if (pTarget) *pTarget = value;
}

class BlockStream final : public IStream
{
public:
    BlockStream(HGLOBAL hBlock, std::shared_ptr<MemoryBlock> block, bool bDeleteOnRelease) noexcept
        : m_hBlock(hBlock), m_block(std::move(block)), m_bDeleteOnRelease(bDeleteOnRelease)
    {
    }
    HGLOBAL Handle() const noexcept { return m_hBlock; }

    HRESULT QueryInterface(const GUID& iid, void** ppObject) override
    {
        if (!ppObject) return E_POINTER;
        *ppObject = nullptr;
        if (iid == IID_IUnknown || iid == IID_IStream)
            *ppObject = static_cast<IStream*>(this);
        else if (iid == kOwnStream)
            *ppObject = this;
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_nRefs; }
    ULONG Release() override
    {
        const ULONG nRefs = --m_nRefs;
        if (nRefs == 0) delete this;
        return nRefs;
    }

    HRESULT Read(void* pBytes, ULONG nBytes, ULONG* pnRead) override;
    HRESULT Write(const void* pBytes, ULONG nBytes, ULONG* pnWritten) override;
    HRESULT Seek(LARGE_INTEGER nMove, DWORD nOrigin, ULARGE_INTEGER* pnPosition) override;

private:
    // The block may have been freed already, and its address be another's now.
    ~BlockStream()
    {
        if (m_bDeleteOnRelease && FindBlock(m_hBlock) == m_block) GlobalFree(m_hBlock);
    }

    std::atomic<ULONG> m_nRefs{1};
    const HGLOBAL m_hBlock;
    const std::shared_ptr<MemoryBlock> m_block;
    const bool m_bDeleteOnRelease;
    std::uint64_t m_nPosition = 0;
    const LiveHandle m_live;
};

HRESULT BlockStream::Read(void* pBytes, ULONG nBytes, ULONG* pnRead)
{
    Tell(pnRead, ULONG{0});
    if (!pBytes && nBytes > 0) return E_POINTER;
    const std::uint64_t nSize = m_block->Size();
    const std::uint64_t nThere = m_nPosition < nSize ? nSize - m_nPosition : 0;
    const auto nRead = static_cast<ULONG>(std::min<std::uint64_t>(nBytes, nThere));
    if (nRead > 0) std::memmove(pBytes, m_block->Bytes() + m_nPosition, nRead); // maybe within the block
    m_nPosition += nRead;
    Tell(pnRead, nRead);
    return nRead == nBytes ? S_OK : S_FALSE;
}

HRESULT BlockStream::Write(const void* pBytes, ULONG nBytes, ULONG* pnWritten)
{
    Tell(pnWritten, ULONG{0});
    if (nBytes == 0) return S_OK;
    if (!pBytes) return E_POINTER;
    if (m_nPosition > MAX_BLOCK_BYTES - nBytes) return STG_E_MEDIUMFULL;
    const std::uint64_t nEnd = m_nPosition + nBytes;
    if (nEnd > m_block->Size() && !m_block->Grow(nEnd)) return STG_E_MEDIUMFULL;
    std::memmove(m_block->Bytes() + m_nPosition, pBytes, nBytes);
    m_nPosition = nEnd;
    Tell(pnWritten, nBytes);
    return S_OK;
}

HRESULT BlockStream::Seek(LARGE_INTEGER nMove, DWORD nOrigin, ULARGE_INTEGER* pnPosition)
{
    std::uint64_t nFrom = 0;
    if (nOrigin == STREAM_SEEK_CUR)
        nFrom = m_nPosition;
    else if (nOrigin == STREAM_SEEK_END)
        nFrom = m_block->Size();
    else if (nOrigin != STREAM_SEEK_SET)
        return STG_E_INVALIDFUNCTION;
    std::int64_t nTo = 0; // positions stay within what a move can reach
    if (__builtin_add_overflow(static_cast<std::int64_t>(nFrom), nMove.QuadPart, &nTo) || nTo < 0)
        return STG_E_INVALIDFUNCTION;
    m_nPosition = static_cast<std::uint64_t>(nTo);
    Tell(pnPosition, ULARGE_INTEGER{m_nPosition});
    return S_OK;
}

} // namespace

} // namespace kx::stream

using namespace kx::stream;

HGLOBAL GlobalAlloc(UINT nFlags, std::size_t nBytes)
try {
    return kx::The<BlockTable>().Add(std::make_shared<MemoryBlock>(nFlags, nBytes));
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
    return kx::The<BlockTable>().End(hBlock) ? nullptr : hBlock;
}

HRESULT CreateStreamOnHGlobal(HGLOBAL hBlock, int bDeleteOnRelease, IStream** ppStream)
try {
    if (!ppStream) return E_POINTER;
    *ppStream = nullptr;
    const bool bOwn = !hBlock;
    if (bOwn) hBlock = GlobalAlloc(GMEM_MOVEABLE, 0);
    if (!hBlock) return E_OUTOFMEMORY;
    auto block = FindBlock(hBlock);
    if (!block) return E_INVALIDARG;
    *ppStream = new (std::nothrow) BlockStream(hBlock, std::move(block), bDeleteOnRelease != 0);
    if (*ppStream) return S_OK;
    if (bOwn) GlobalFree(hBlock);
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return E_OUTOFMEMORY;
} catch (...) {
    kx::NoMemory();
    return E_OUTOFMEMORY;
}

HRESULT GetHGlobalFromStream(IStream* pStream, HGLOBAL* phBlock)
{
    if (!phBlock) return E_POINTER;
    *phBlock = nullptr;
    void* pOwn = nullptr;
    if (!pStream || FAILED(pStream->QueryInterface(kOwnStream, &pOwn)) || !pOwn) return E_INVALIDARG;
    auto* const pBlockStream = static_cast<BlockStream*>(pOwn);
    *phBlock = pBlockStream->Handle();
    pBlockStream->Release();
    return S_OK;
}
