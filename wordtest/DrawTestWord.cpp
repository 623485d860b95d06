#include "KXEnglishWord.h"

#include "wordtest/DeviceState.h"
#include "wordtest/LetterRow.h"

using kx::Plus;
using namespace kx::wordtest;

namespace {

void DrawBox(CDC& dc, const CRect& cell)
{
    dc.Rectangle(cell.left, Plus(cell.top, 1), Plus(cell.right, 1), Plus(cell.bottom, -1));
}

} // namespace

void CKXEnglishWord::DrawTestWord(CDC* pDC, const CString& strWord, const CString& strTestWord,
                                  const CRect& rcWord, CFont* pFont, COLORREF clrBox, COLORREF clrText,
                                  int bDrawBox)
{
    if (!pDC) return;
    const CPen pen(PS_SOLID, 1, clrBox);
    const Selected selectedPen(*pDC, pen.GetSafeHandle());
    const Selected noBrush(*pDC, GetStockObject(NULL_BRUSH));
    Lettering lettering(*pDC, pFont, clrText);
    lettering.LetGroundShow();
    LetterRow row(*pDC, rcWord);
    int n = 0;
    for (const char ch : strWord.View()) {
        const CRect cell = row.Next(ch);
        if (strTestWord[n++] != MASK)
            DrawLetter(*pDC, ch, cell);
        else if (bDrawBox)
            DrawBox(*pDC, cell);
    }
}
