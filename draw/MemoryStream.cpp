#include "draw/MemoryStream.h"

#include <algorithm>
#include <limits>

namespace kx::draw {

namespace {

// A block's bytes for as long as it stays locked.
class Locked
{
public:
    explicit Locked(HGLOBAL hBlock) : m_hBlock(hBlock), m_pBytes(static_cast<BYTE*>(GlobalLock(hBlock))) {}
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked()
    {
        if (m_pBytes) GlobalUnlock(m_hBlock);
    }
    BYTE* Bytes() const { return m_pBytes; }

private:
    HGLOBAL m_hBlock;
    BYTE* m_pBytes;
};

StreamPtr StreamOver(HGLOBAL hBlock, int bDeleteOnRelease)
{
    IStream* pStream = nullptr;
    return StreamPtr(CreateStreamOnHGlobal(hBlock, bDeleteOnRelease, &pStream) == S_OK ? pStream : nullptr);
}

} // namespace

std::shared_ptr<void> AllocBlock(UINT nFlags, std::size_t nBytes)
{
    const HGLOBAL hBlock = GlobalAlloc(nFlags, nBytes);
    return hBlock ? std::shared_ptr<void>(hBlock, GlobalFree) : nullptr;
}

MemoryStream MemoryStream::CopyOf(const void* pData, std::size_t nBytes)
{
    if (!pData) return {};
    std::shared_ptr<void> pBlock = AllocBlock(GMEM_FIXED, nBytes);
    StreamPtr pStream = pBlock ? StreamOver(pBlock.get(), 0) : nullptr;
    if (!pStream) return {};
    if (const Locked block(pBlock.get()); block.Bytes())
        std::copy_n(static_cast<const BYTE*>(pData), nBytes, block.Bytes());
    return {std::move(pBlock), std::move(pStream)};
}

StreamPtr MakeGrowingStream()
{
    const HGLOBAL hBlock = GlobalAlloc(GMEM_MOVEABLE, 0);
    StreamPtr pStream = hBlock ? StreamOver(hBlock, 1) : nullptr;
    if (!pStream && hBlock) GlobalFree(hBlock);
    return pStream;
}

int CopyOut(IStream* pStream, BYTE** ppData, int& nSize)
{
    HGLOBAL hBlock = nullptr;
    if (GetHGlobalFromStream(pStream, &hBlock) != S_OK) return 0;
    const std::size_t nBytes = GlobalSize(hBlock);
    if (nBytes > static_cast<std::size_t>(std::numeric_limits<int>::max())) return 0;
    auto pData = std::make_unique_for_overwrite<BYTE[]>(nBytes);
    if (const Locked block(hBlock); block.Bytes()) std::copy_n(block.Bytes(), nBytes, pData.get());
    *ppData = pData.release();
    nSize = static_cast<int>(nBytes);
    return 1;
}

} // namespace kx::draw
