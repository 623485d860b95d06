#pragma once

#include "platform/gdi/ImageFile.h"

#include <cstddef>
#include <vector>

namespace kx::gdiplus {

// Decodes the indices of a GIF's frame from its data: the size of codes, and blocks of LZW codes. At most as
// many as there is room for; fewer where the data end or go wrong. Gives their number.
//
// The GIF library takes three times as long, pixel by pixel; a run of codes here is a copy of what was
// decoded before.
class GifIndices
{
public:
    // Throws std::bad_alloc.
    explicit GifIndices(std::size_t nRoom) : m_bytes(nRoom + kSlack) {}

    std::size_t Decode(gdi::FileBytes data, std::size_t nIndices) noexcept;
    const BYTE* Bytes() const noexcept { return m_bytes.data(); }

private:
    static constexpr std::size_t kSlack = 8; // runs are copied so many at a time

    std::vector<BYTE> m_bytes;
};

} // namespace kx::gdiplus
