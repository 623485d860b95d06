#pragma once

#include "KXExport.h"
#include "platform/Dc.h"

// A spelling exercise: hides letters of a word, draws what is left of it, the learner's text as it is typed,
// and the result.
//
// A letter is one byte. It is measured and drawn by itself, and starts where the one before ended. Letters
// are clipped to their cell; a word doesn't end at its rectangle's right side unless that is said.
// Coordinates are pixels of `pDC`, whose pen, brush, font, text colour and background mode are the same after
// each call; without a device nothing is drawn, without a font that of the device is used. For one thread at
// a time.
class KX_API CKXEnglishWord
{
public:
    // This stands for a hidden letter in a test word, which is as long as its word.
    static constexpr char MASK = '*';

    // Hides `nHideCount` letters of a word, at least 1 and at most all; with `bKeepFirst` never the first,
    // even if that leaves one too few. The places are drawn by the C runtime's `rand`, which the application
    // seeds (CKXRandom::Init); none are drawn where all letters are hidden.
    static void MakeTestWord(CString& strWord, int nHideCount, int bKeepFirst);

    // Draws the letters of a test word, vertically centred from the left side of `rcWord`, in the places that
    // those of `strWord` have. A hidden letter is a gap of its own width, with `bDrawBox` in a frame that
    // shares its sides with its neighbours' and stays a pixel away from top and bottom. Where `strTestWord`
    // is too short, the letters are shown.
    static void DrawTestWord(CDC* pDC, const CString& strWord, const CString& strTestWord,
                             const CRect& rcWord, CFont* pFont, COLORREF clrBox, COLORREF clrText,
                             int bDrawBox);

    // Repaints a field whose text was `strOld` and becomes `strNew`, from the first letter that differs:
    // wipes what the old letters from there on took and draws the new ones, up to the last that fits into
    // `rcWord`. All before them isn't touched. The empty field is copied from `pBackDC`, which has it at the
    // same horizontal place, its top at row 0.
    static void RedrawWordInvalidPart(CDC* pDC, CDC* pBackDC, const CString& strOld, const CString& strNew,
                                      const CRect& rcWord, CFont* pFont, COLORREF clrText);

    // Draws the result of a test. A right answer, equal to the letter, stands in `rcAnswer` in the colour
    // `clrAllRight`, and that is all. Otherwise each row begins with a label of 100 pixels, in grey and in
    // the font "IDS_DEF_FONT" of the language, whose background is painted if the device's mode is OPAQUE.
    // Behind it come the letters, paired by their places, up to the end of the right word, in
    // `clrLetterRight` or `clrLetterWrong`; behind a pair that differs, or lacks the learner's letter, lies a
    // gradient from blue to white. That takes Gdiplus::GdiplusStartup. `clrFrame` isn't used.
    static void DrawTestWordResult(CDC* pDC, const CString& strRight, const CString& strAnswer,
                                   const CRect& rcAnswer, const CRect& rcRight, CFont* pFont,
                                   COLORREF clrAllRight, COLORREF clrFrame, COLORREF clrLetterRight,
                                   COLORREF clrLetterWrong);
};
