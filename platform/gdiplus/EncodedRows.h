#pragma once

#include "platform/gdiplus/Picture.h"

#include <vector>

namespace kx::gdiplus {

// The rows of a picture laid over black; the high byte means nothing. A row is valid until the next one is
// asked for, and stays where it lies if nothing has to be changed in it.
class RowsOverBlack
{
public:
    explicit RowsOverBlack(const PixelView& view);
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_view;
    std::vector<DWORD> m_row;
};

} // namespace kx::gdiplus
