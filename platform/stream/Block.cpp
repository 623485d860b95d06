#include "platform/stream/Block.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kx::stream {

std::shared_ptr<Block> Block::Make(UINT nFlags, std::size_t nBytes)
{
    if (nBytes > MAX_BLOCK_BYTES) return nullptr;
    const std::size_t nRoom = std::max<std::size_t>(nBytes, 1); // an address even for no bytes
    void* const p = nFlags & GMEM_ZEROINIT ? std::calloc(nRoom, 1) : std::malloc(nRoom);
    if (!p) return nullptr;
    std::unique_ptr<BYTE, decltype(&std::free)> bytes(static_cast<BYTE*>(p), std::free);
    return std::make_shared<Block>((nFlags & GMEM_MOVEABLE) != 0, std::move(bytes), nBytes);
}

Block::Block(bool bMoveable, std::unique_ptr<BYTE, decltype(&std::free)> bytes, std::size_t nBytes) noexcept
    : m_bytes(std::move(bytes)),
      m_nSize(nBytes),
      m_nRoom(std::max<std::size_t>(nBytes, 1)),
      m_bMoveable(bMoveable)
{
}

bool Block::Grow(std::size_t nBytes) noexcept
{
    if (!m_bMoveable || !m_bytes || nBytes > MAX_BLOCK_BYTES) return false;
    if (nBytes > m_nRoom) {
        if (locks > 0) return false; // whoever locked it has its address
        const std::size_t nRoom = std::min(std::max(nBytes, m_nRoom + m_nRoom / 2), MAX_BLOCK_BYTES);
        void* const p = std::realloc(m_bytes.get(), nRoom);
        if (!p) return false;
        static_cast<void>(m_bytes.release());
        m_bytes.reset(static_cast<BYTE*>(p));
        m_nRoom = nRoom;
    }
    std::memset(m_bytes.get() + m_nSize, 0, nBytes - m_nSize);
    m_nSize = nBytes;
    return true;
}

void Block::End() noexcept
{
    m_bytes.reset();
    m_nSize = 0;
}

} // namespace kx::stream
