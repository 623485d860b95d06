#include "KXEnglishWord.h"

#include "wordtest/DeviceState.h"
#include "wordtest/LetterRow.h"

#include <algorithm>

using namespace kx::wordtest;

namespace {

// The place of the first letter of a text that the other hasn't there; the text's length if it has all.
int FirstNewLetter(const CString& str, const CString& strOther)
{
    const std::string_view text = str.View();
    const std::string_view other = strOther.View();
    return static_cast<int>(std::ranges::mismatch(text, other).in1 - text.begin());
}

// From the first letter that goes to the last of them all.
void Wipe(CDC& dc, CDC* pBackDC, const CString& strOld, int nFirst, const CRect& rcWord)
{
    if (nFirst == strOld.GetLength()) return;
    LetterRow row(dc, rcWord);
    CRect rcWipe;
    int n = 0;
    for (const char ch : strOld.View()) {
        const CRect cell = row.Next(ch);
        if (n++ == nFirst) rcWipe = cell;
        rcWipe.right = cell.right;
    }
    dc.BitBlt(rcWipe.left, rcWipe.top, rcWipe.Width(), rcWipe.Height(), pBackDC, rcWipe.left, 0, SRCCOPY);
}

void Draw(CDC& dc, const CString& strNew, int nFirst, const CRect& rcWord)
{
    LetterRow row(dc, rcWord);
    int n = 0;
    for (const char ch : strNew.View()) {
        const CRect cell = row.Next(ch);
        if (cell.right > rcWord.right) return;
        if (n++ >= nFirst) DrawLetter(dc, ch, cell);
    }
}

} // namespace

void CKXEnglishWord::RedrawWordInvalidPart(CDC* pDC, CDC* pBackDC, const CString& strOld,
                                           const CString& strNew, const CRect& rcWord, CFont* pFont,
                                           COLORREF clrText)
{
    if (!pDC) return;
    Lettering lettering(*pDC, pFont, clrText);
    lettering.LetGroundShow();
    Wipe(*pDC, pBackDC, strOld, FirstNewLetter(strOld, strNew), rcWord);
    Draw(*pDC, strNew, FirstNewLetter(strNew, strOld), rcWord);
}
