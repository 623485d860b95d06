#pragma once

#include "platform/gdiplus/Scale.h"

#include <optional>

namespace kx::gdiplus {

// The rows of a picture's block over a block of a target, as they are where none is stretched. The picture's
// pixels must stay while this lives.
class PictureRows
{
public:
    // `area`: the target's pixels that are wanted. Throws std::bad_alloc.
    PictureRows(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area);

    // The part of the area that the picture covers; may be empty.
    RECT Area() const noexcept { return m_area; }
    // A row of that part, which stays until the next call. Pixels mean what the picture's do.
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_from;
    RECT m_area;
    std::optional<Scaler> m_scaler; // none where the pixels are taken as they are
    std::vector<DWORD> m_row;       // scaled
    std::ptrdiff_t m_column = 0;    // of the picture at the area's left, if not scaled
    std::ptrdiff_t m_rowShift = 0;  // from the target's rows to the picture's
};

} // namespace kx::gdiplus
