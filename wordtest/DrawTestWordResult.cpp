#include "KXEnglishWord.h"

#include "KXLanResManager.h"
#include "wordtest/DeviceState.h"
#include "wordtest/LetterRow.h"
#include "wordtest/PairGradient.h"

#include <cstdio>

using namespace kx::wordtest;

namespace {

constexpr int LABEL_WIDTH = 100;
// "Your spelling:" and "Right spelling:" in Chinese, in code page 936.
constexpr char szAnswerLabel[] = "\xC4\xFA\xB5\xC4\xC6\xB4\xD0\xB4\xA3\xBA";
constexpr char szRightLabel[] = "\xD5\xFD\xC8\xB7\xC6\xB4\xD0\xB4\xA3\xBA";

struct Rows
{
    CRect rcAnswer;
    CRect rcRight;
};

struct Colors
{
    COLORREF clrRight;
    COLORREF clrWrong;
};

void DrawText(CDC& dc, const CString& str, CRect rc)
{
    dc.DrawText(str, &rc, DRAW_FORMAT);
}

// Pairs by place: what the learner left out makes all behind it wrong.
void DrawPairs(CDC& dc, const CString& strRight, const CString& strAnswer, const Rows& rows, CFont* pFont,
               const Colors& colors)
{
    Lettering lettering(dc, pFont);
    lettering.LetGroundShow();
    LetterRow rightRow(dc, rows.rcRight, LABEL_WIDTH);
    LetterRow answerRow(dc, rows.rcAnswer, LABEL_WIDTH);
    for (int n = 0; n < strRight.GetLength(); ++n) {
        const bool bAnswered = n < strAnswer.GetLength();
        const bool bEqual = bAnswered && strAnswer[n] == strRight[n];
        const CRect right = rightRow.Next(strRight[n]);
        const CRect answer = bAnswered
                                 ? answerRow.Next(strAnswer[n])
                                 : CRect(right.left, rows.rcAnswer.top, right.right, rows.rcAnswer.bottom);
        lettering.SetColor(bEqual ? colors.clrRight : colors.clrWrong);
        if (!bEqual) PaintPairGradient(dc, answer, right);
        DrawLetter(dc, strRight[n], right);
        if (bAnswered) DrawLetter(dc, strAnswer[n], answer);
    }
}

void MakeLabelFont(CFont& font)
{
    const CString strKey = "IDS_DEF_FONT";
    auto* pLanguage = CKXLanResManager::GetSingletonPtr();
    const CString strFace = pLanguage ? pLanguage->GetString(strKey) : strKey;
    LOGFONTA log{};
    log.lfHeight = 12;
    log.lfWeight = FW_BOLD;
    std::snprintf(log.lfFaceName, sizeof(log.lfFaceName), "%s", strFace.GetString());
    font.CreateFontIndirectA(&log);
}

// In the device's own background mode.
void DrawLabels(CDC& dc, const Rows& rows)
{
    constexpr COLORREF clrGrey = RGB(128, 128, 128);
    CFont font;
    MakeLabelFont(font);
    const Lettering lettering(dc, &font, clrGrey);
    DrawText(dc, szAnswerLabel, rows.rcAnswer);
    DrawText(dc, szRightLabel, rows.rcRight);
}

} // namespace

void CKXEnglishWord::DrawTestWordResult(CDC* pDC, const CString& strRight, const CString& strAnswer,
                                        const CRect& rcAnswer, const CRect& rcRight, CFont* pFont,
                                        COLORREF clrAllRight, COLORREF, COLORREF clrLetterRight,
                                        COLORREF clrLetterWrong)
{
    if (!pDC) return;
    if (strAnswer == strRight) {
        Lettering lettering(*pDC, pFont, clrAllRight);
        lettering.LetGroundShow();
        DrawText(*pDC, strRight, rcAnswer);
        return;
    }
    const Rows rows{rcAnswer, rcRight};
    DrawPairs(*pDC, strRight, strAnswer, rows, pFont, {clrLetterRight, clrLetterWrong});
    DrawLabels(*pDC, rows);
}
