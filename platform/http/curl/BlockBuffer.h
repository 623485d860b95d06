#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace kx::http::curl {

// A buffer of fixed size that is filled at its end and emptied from its front.
class BlockBuffer
{
public:
    explicit BlockBuffer(std::size_t nSize)
        : m_block(std::make_unique_for_overwrite<char[]>(nSize)), m_nSize(nSize)
    {
    }

    bool IsEmpty() const noexcept { return m_nBegin == m_nEnd; }
    void Clear() noexcept { m_nBegin = m_nEnd = 0; }

    // Takes all of it, or nothing if it doesn't fit.
    bool Put(std::string_view bytes) noexcept
    {
        if (IsEmpty()) Clear();
        if (bytes.size() > m_nSize - m_nEnd) return false;
        std::memcpy(m_block.get() + m_nEnd, bytes.data(), bytes.size());
        m_nEnd += bytes.size();
        return true;
    }

    // Moves up to `nCount` bytes out; how many.
    std::size_t Take(void* pBuf, std::size_t nCount) noexcept
    {
        const std::size_t n = std::min(nCount, m_nEnd - m_nBegin);
        std::memcpy(pBuf, m_block.get() + m_nBegin, n);
        m_nBegin += n;
        return n;
    }

private:
    std::unique_ptr<char[]> m_block;
    std::size_t m_nSize;
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
};

} // namespace kx::http::curl
