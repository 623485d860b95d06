#pragma once

#include "platform/gdiplus/Picture.h"

#include <vector>

namespace kx::gdiplus {

// The rows of a picture as an encoder takes them. A row is valid until the next one is asked for, and stays
// where it lies if nothing has to be changed in it.

// Laid over black; the high byte means nothing.
class RowsOverBlack
{
public:
    explicit RowsOverBlack(const PixelView& view);
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_view;
    std::vector<DWORD> m_row;
};

// Of straight alpha; the high byte of an opaque picture means nothing.
class StraightRows
{
public:
    explicit StraightRows(const PixelView& view);
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_view;
    std::vector<DWORD> m_row;
};

} // namespace kx::gdiplus
