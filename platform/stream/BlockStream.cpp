#include "platform/Errno.h"
#include "platform/stream/Block.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace {

using kx::stream::Block;

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
    BlockStream(HGLOBAL hBlock, std::shared_ptr<Block> block, bool bDeleteOnRelease) noexcept
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
        if (m_bDeleteOnRelease && kx::stream::FindBlock(m_hBlock) == m_block) GlobalFree(m_hBlock);
    }

    std::atomic<ULONG> m_nRefs{1};
    const HGLOBAL m_hBlock;
    const std::shared_ptr<Block> m_block;
    const bool m_bDeleteOnRelease;
    std::uint64_t m_nPosition = 0;
    const kx::LiveHandle m_live;
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

HRESULT CreateStreamOnHGlobal(HGLOBAL hBlock, int bDeleteOnRelease, IStream** ppStream)
try {
    if (!ppStream) return E_POINTER;
    *ppStream = nullptr;
    const bool bOwn = !hBlock;
    if (bOwn) hBlock = GlobalAlloc(GMEM_MOVEABLE, 0);
    if (!hBlock) return E_OUTOFMEMORY;
    auto block = kx::stream::FindBlock(hBlock);
    if (!block) return E_INVALIDARG;
    *ppStream = new (std::nothrow) BlockStream(hBlock, std::move(block), bDeleteOnRelease != 0);
    if (*ppStream) return S_OK;
    if (bOwn) GlobalFree(hBlock);
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
