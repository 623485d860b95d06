#include "Short.h"

#include <cstdlib>

// A spelling test: letters hidden, the rest drawn, an answer marked.
int main()
{
    std::srand(2009); // the client's, so that tests differ from day to day
    const CString strWord = "harbour";
    CString strTest = strWord;
    CKXEnglishWord::MakeTestWord(strTest, 3, 1); // the first letter stays
    std::printf("%s -> %s\n", strWord.GetString(), strTest.GetString());

    CKXMemoryDC surface;
    surface.Create(300, 100);
    const CRect rcAll(0, 0, 300, 100);
    surface.GetDC().FillSolidRect(rcAll, RGB(255, 255, 255));
    CFont font;
    font.CreatePointFont(140, "DejaVu Sans");
    CKXEnglishWord::DrawTestWord(&surface.GetDC(), strWord, strTest, CRect(10, 10, 290, 50), &font,
                                 RGB(0, 0, 160), RGB(0, 0, 0), 1);
    int nInk = 0;
    for (int x = 10; x < 290; ++x)
        nInk += surface.GetDC().GetPixel(x, 30) != RGB(255, 255, 255);
    int nHidden = 0;
    for (int n = 0; n < strTest.GetLength(); ++n)
        nHidden += strTest[n] == CKXEnglishWord::MASK;
    return nHidden == 3 && strTest[0] == 'h' && nInk > 10 ? 0 : 1;
}
