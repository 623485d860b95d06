#include "platform/gdiplus/GifCodes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace kx::gdiplus {

namespace {

constexpr unsigned kMaxCodeBits = 12;
constexpr unsigned kMaxRootBits = 8;

// Codes of any width out of blocks of up to 255 bytes, each behind its length.
class CodeReader
{
public:
    explicit CodeReader(gdi::FileBytes blocks) noexcept
        : m_at(blocks.data()), m_end(blocks.data() + blocks.size())
    {
    }

    // -1 at the end.
    int Next(unsigned nBits) noexcept
    {
        while (m_nHeld < nBits)
            if (!Fill()) return -1;
        const int nCode = static_cast<int>(m_held & ((1u << nBits) - 1));
        m_held >>= nBits;
        m_nHeld -= nBits;
        return nCode;
    }

private:
    bool Fill() noexcept
    {
        if (m_nBlock == 0) {
            if (m_at == m_end || *m_at == 0) return false;
            m_nBlock = *m_at++;
        }
        for (; m_nBlock > 0 && m_nHeld <= 56 && m_at < m_end; --m_nBlock, m_nHeld += 8)
            m_held |= std::uint64_t{*m_at++} << m_nHeld;
        return m_at < m_end || m_nBlock == 0;
    }

    const std::uint8_t* m_at;
    const std::uint8_t* const m_end;
    unsigned m_nBlock = 0; // bytes left of the block
    std::uint64_t m_held = 0;
    unsigned m_nHeld = 0; // bits
};

// What a code stands for: indices decoded before.
struct Run
{
    std::uint32_t at;
    std::uint32_t length;
};

// Copies eight at a time, writing up to seven too many, unless the run goes into itself.
void CopyRun(const BYTE* from, BYTE* to, std::size_t nLength) noexcept
{
    if (to - from >= 8)
        for (std::size_t i = 0; i < nLength; i += 8)
            std::memcpy(to + i, from + i, 8);
    else
        for (std::size_t i = 0; i < nLength; ++i)
            to[i] = from[i];
}

} // namespace

std::size_t GifIndices::Decode(gdi::FileBytes data, std::size_t nIndices) noexcept
{
    const unsigned nRootBits = data.empty() ? 0 : data[0];
    if (nRootBits == 0 || nRootBits > kMaxRootBits) return 0;
    const unsigned nClear = 1u << nRootBits, nEnd = nClear + 1;
    std::array<Run, std::size_t{1} << kMaxCodeBits> runs;
    CodeReader codes(data.subspan(1));
    unsigned nNext = nEnd + 1, nBits = nRootBits + 1;
    Run last{0, 0}; // none after a clearing
    BYTE* const out = m_bytes.data();
    std::size_t nDone = 0;
    while (nDone < nIndices) {
        const int nRead = codes.Next(nBits);
        const auto nCode = static_cast<unsigned>(nRead);
        if (nRead < 0 || nCode == nEnd) break;
        if (nCode == nClear) {
            nNext = nEnd + 1, nBits = nRootBits + 1;
            last.length = 0;
            continue;
        }
        // The next code stands for the last run and the index that comes behind it, which may be this one's.
        if (last.length > 0 && nNext < runs.size()) {
            runs[nNext++] = {last.at, last.length + 1};
            if (nNext == 1u << nBits && nBits < kMaxCodeBits) ++nBits;
        }
        Run run{static_cast<std::uint32_t>(nDone), 1};
        if (nCode < nClear) {
            out[nDone] = static_cast<BYTE>(nCode);
        } else {
            if (nCode >= nNext) break;
            run.length =
                static_cast<std::uint32_t>(std::min<std::size_t>(runs[nCode].length, nIndices - nDone));
            CopyRun(out + runs[nCode].at, out + nDone, run.length);
        }
        nDone += run.length;
        last = run;
    }
    return nDone;
}

} // namespace kx::gdiplus
