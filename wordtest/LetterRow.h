#pragma once

#include "internal/Wrap.h"
#include "platform/Dc.h"

namespace kx::wordtest {

inline constexpr UINT DRAW_FORMAT = DT_SINGLELINE | DT_VCENTER;

// The places of a word's letters in a row: each starts where the one before ended, wherever the row's right
// side is.
class LetterRow
{
public:
    explicit LetterRow(CDC& dc, const CRect& rcRow, int nIndent = 0)
        : m_dc(dc), m_rcRow(rcRow), m_x(Plus(rcRow.left, nIndent))
    {
    }

    // Measures a letter in the device's font: its cell, as high as the row.
    CRect Next(char letter)
    {
        CRect cell(m_x, m_rcRow.top, m_rcRow.right, m_rcRow.bottom);
        m_dc.DrawText(&letter, 1, &cell, DT_CALCRECT | DRAW_FORMAT);
        cell.top = m_rcRow.top;
        cell.bottom = m_rcRow.bottom;
        m_x = cell.right;
        return cell;
    }

private:
    CDC& m_dc;
    CRect m_rcRow;
    int m_x;
};

inline void DrawLetter(CDC& dc, char letter, CRect cell)
{
    dc.DrawText(&letter, 1, &cell, DRAW_FORMAT);
}

} // namespace kx::wordtest
