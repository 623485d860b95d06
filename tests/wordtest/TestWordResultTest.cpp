#include "KXLanResManager.h"
#include "tests/support/AppDir.h"
#include "tests/support/GdiPlus.h"
#include "tests/wordtest/WordSheet.h"

using test::WordSheet;

namespace {

constexpr COLORREF clrAllRight = RGB(10, 120, 30);
constexpr COLORREF clrRight = RGB(60, 160, 50);
constexpr COLORREF clrWrong = RGB(150, 0, 90);
const CRect rcAnswer(10, 5, 190, 45);
const CRect rcRight(14, 50, 190, 90);

struct WordResult : test::Words
{
    void Draw(WordSheet& sheet, const char* pszRight, const char* pszAnswer, COLORREF clrFrame = 0,
              const CRect& rcLower = rcRight)
    {
        CKXEnglishWord::DrawTestWordResult(&sheet, pszRight, pszAnswer, rcAnswer, rcLower, &font, clrAllRight,
                                           clrFrame, clrRight, clrWrong);
    }
    // In the mode that the device has.
    void DrawLabels(WordSheet& sheet, const CRect& rcLower = rcRight)
    {
        CFont label;
        test::MakeFont(label, lans->GetString("IDS_DEF_FONT"), 12, FW_BOLD);
        const HGDIOBJ hOld = SelectObject(sheet, label.GetSafeHandle());
        const COLORREF clrOld = sheet.SetTextColor(RGB(128, 128, 128));
        CRect upper = rcAnswer, lower = rcLower;
        sheet.DrawText("\xC4\xFA\xB5\xC4\xC6\xB4\xD0\xB4\xA3\xBA", &upper, DT_SINGLELINE | DT_VCENTER);
        sheet.DrawText("\xD5\xFD\xC8\xB7\xC6\xB4\xD0\xB4\xA3\xBA", &lower, DT_SINGLELINE | DT_VCENTER);
        sheet.SetTextColor(clrOld);
        SelectObject(sheet, hOld);
    }
    // Both cells of a pair under one gradient, which begins where the rows meet.
    void DrawGround(WordSheet& sheet, const CRect& answer, const CRect& right)
    {
        const int nLeft = std::min(answer.left, right.left);
        const int nWidth = std::max(answer.right, right.right) - nLeft;
        Gdiplus::GraphicsPath path;
        path.AddRectangle(nLeft, 5, nWidth, 85);
        Gdiplus::PathGradientBrush brush(&path);
        brush.SetCenterPoint({nLeft + nWidth / 2, 50});
        brush.SetCenterColor(Gdiplus::Color(0xFF0000FF));
        Gdiplus::Graphics graphics(sheet);
        graphics.FillRectangle(&brush, right.left, 50, right.Width(), 40);
        graphics.FillRectangle(&brush, answer.left, 5, answer.Width(), 40);
    }

    CKXLanResManager* lans = (test::AppDir(), CKXLanResManager::GetSingletonPtr());
    std::optional<test::GdiPlus> gdiPlus{std::in_place};
};

TEST_F(WordResult, ARightAnswerIsShownAloneAndWhole)
{
    for (const char* pszWord : {"cat", "", "\xD6\xD0"}) { // a Chinese letter is one here
        WordSheet sheet, expected;
        Draw(sheet, pszWord, pszWord);
        CRect rc = rcAnswer;
        const HGDIOBJ hOld = SelectObject(expected, font);
        const COLORREF clrOld = expected.SetTextColor(clrAllRight);
        expected.SetBkMode(TRANSPARENT);
        expected.DrawText(pszWord, &rc, DT_SINGLELINE | DT_VCENTER);
        expected.SetBkMode(OPAQUE);
        expected.SetTextColor(clrOld);
        SelectObject(expected, hOld);
        EXPECT_EQ(sheet.DifferenceTo(expected), "") << pszWord;
    }
}

TEST_F(WordResult, PairsLettersByTheirPlaces)
{
    std::istringstream cases("cat - ---  cat catch +++  cat Cat -++  cat ct +--  mill lima -+--  - x +  "
                             "\xD6\xD0 \xD6\xD1 +-");
    for (std::string right, answer, same; cases >> right >> answer >> same;)
        for (const int nMode : {OPAQUE, TRANSPARENT}) {
            std::erase(right, '-');
            std::erase(answer, '-');
            WordSheet sheet(0, nMode), expected(0, nMode);
            Draw(sheet, right.c_str(), answer.c_str());
            CRect upper(110, 5, 110, 45), lower(114, 50, 114, 90);
            for (std::size_t n = 0; n < right.size(); ++n) {
                const std::string above = answer.substr(std::min(n, answer.size()), 1),
                                  below = right.substr(n, 1);
                lower = CRect(lower.right, 50, lower.right + sheet.WidthOf(below, font), 90);
                upper = CRect(upper.right, 5, upper.right + sheet.WidthOf(above, font), 45);
                if (same[n] == '-') DrawGround(expected, above.empty() ? lower : upper, lower);
                const COLORREF clr = same[n] == '-' ? clrWrong : clrRight;
                expected.WriteLetters(lower.left, 60, below, below, font, clr);
                expected.WriteLetters(upper.left, 15, above, above, font, clr);
            }
            DrawLabels(expected);
            EXPECT_EQ(sheet.DifferenceTo(expected), "") << right << answer << nMode;
            EXPECT_EQ(GetBValue(sheet.GetPixel(115, 50)) == 255, same[0] == '-'); // as the sheet has none
        }
}

// A name of 31 letters is the longest; blanks in it count for nothing.
TEST_F(WordResult, LabelsAreInTheFontThatTheLanguageNames)
{
    for (const std::string face :
         {"WenQuanYi Micro Hei", "DejaVu Sans Mono", "URW                      Gothic, cut", ""}) {
        test::AppDir().Write("words/E/Lan.ini", "[Language]\nLanguage=E\n");
        test::AppDir().Write("words/E/Data.txt", face.empty() ? face : "IDS_DEF_FONT = " + face);
        EXPECT_EQ(lans->Initialize("words"), 1);
        EXPECT_EQ(lans->SetCurrentLan("E", 0), 1);
        WordSheet sheet, expected;
        const CRect rcNear(14, 10, 190, 50); // so that the lower one lies over the upper
        Draw(sheet, "", "x", static_cast<COLORREF>(face.size()), rcNear); // the frame's colour is nothing
        DrawLabels(expected, rcNear);
        EXPECT_EQ(sheet.DifferenceTo(expected), "") << face;
        EXPECT_NE(sheet.DifferenceTo(WordSheet()), "");
    }
}

TEST_F(WordResult, EndsQuietlyForWhatIsNone)
{
    WordSheet sheet, expected;
    for (const CRect& rc :
         {CRect(INT_MAX, INT_MAX, INT_MAX, INT_MAX), CRect(INT_MIN, INT_MIN, INT_MIN, INT_MIN),
          CRect(INT_MAX - 150, INT_MIN, INT_MIN, INT_MAX)})
        for (CDC* pDC : {static_cast<CDC*>(&sheet), static_cast<CDC*>(nullptr)})
            CKXEnglishWord::DrawTestWordResult(pDC, "cat", "c&t", rc, CRect(600000000, 0, 0, 0), &font, 0, 0,
                                               0, 0);
    EXPECT_EQ(sheet.DifferenceTo(expected), "");
    // Without GDI+ the letters come all the same, on the bare ground.
    gdiPlus.reset();
    Draw(sheet, "l", "");
    expected.WriteLetters(114, 60, "l", "l", font, clrWrong);
    DrawLabels(expected);
    EXPECT_EQ(sheet.DifferenceTo(expected), "");
}

} // namespace
