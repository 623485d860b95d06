#pragma once

#include "KXEnglishWord.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

namespace test {

inline void MakeFont(CFont& font, const char* pszFace, int nHeight, int nWeight = FW_NORMAL)
{
    LOGFONTA log{};
    log.lfHeight = nHeight;
    log.lfWeight = nWeight;
    std::strncpy(log.lfFaceName, pszFace, sizeof(log.lfFaceName) - 1);
    font.CreateFontIndirectA(&log);
}

// A patterned sheet, on which all that is painted shows. Its device has a pen, brush, font, colours and mode
// of its own, and fails the test if it hasn't in the end.
class WordSheet : public CDC
{
public:
    static constexpr int WIDTH = 200;
    static constexpr int HEIGHT = 100;

    explicit WordSheet(unsigned nTint = 0, int nMode = OPAQUE) : m_nMode(nMode)
    {
        Attach(m_paper);
        for (int x = 0; x < WIDTH; ++x)
            for (int y = 0; y < HEIGHT; ++y)
                SetPixel(x, y, RGB(nTint, static_cast<BYTE>(x % 16 * 15), static_cast<BYTE>(y % 16 * 15)));
        MakeFont(m_font, "DejaVu Serif", 17);
        m_hFont = m_font;
        Swap();
        SetTextColor(RGB(1, 2, 3));
        SetBkMode(nMode);
    }
    ~WordSheet() override
    {
        EXPECT_EQ(GetTextColor(), RGB(1, 2, 3));
        EXPECT_EQ(GetBkMode(), m_nMode);
        Swap();
        EXPECT_EQ(m_hPen, m_pen.m_hObject);
        EXPECT_EQ(m_hBrush, m_brush.m_hObject);
        EXPECT_EQ(m_hFont, m_font.m_hObject);
        Detach();
    }

    // The first place where another sheet differs; "" for none.
    std::string DifferenceTo(const WordSheet& other) const
    {
        for (int at = 0; at < WIDTH * HEIGHT; ++at)
            if (GetPixel(at % WIDTH, at / WIDTH) != other.GetPixel(at % WIDTH, at / WIDTH))
                return std::to_string(at % WIDTH) + ", " + std::to_string(at / WIDTH);
        return "";
    }
    // How far the letters of a text go, each by itself.
    int WidthOf(const std::string& text, const CFont& font) const
    {
        int nWidth = 0;
        const HGDIOBJ hOld = ::SelectObject(m_hDC, font.GetSafeHandle());
        for (const char letter : text)
            nWidth += GetTextExtent(CString(letter)).cx;
        ::SelectObject(m_hDC, hOld);
        return nWidth;
    }
    // Draws, to compare with: the letters of a text that aren't "*", at the places of a word's, each in its
    // cell.
    void WriteLetters(int x, int y, const std::string& word, const std::string& shown, const CFont& font,
                      COLORREF clr)
    {
        const HGDIOBJ hOld = ::SelectObject(m_hDC, font.GetSafeHandle());
        const COLORREF clrOld = SetTextColor(clr);
        SetBkMode(TRANSPARENT);
        for (std::size_t n = 0; n < word.size(); ++n) {
            RECT cell{x, y, x + WidthOf(word.substr(n, 1), font), y + 20};
            if (shown[n] != '*') DrawText(&shown[n], 1, &cell, DT_SINGLELINE);
            x = cell.right;
        }
        SetBkMode(m_nMode);
        SetTextColor(clrOld);
        ::SelectObject(m_hDC, hOld);
    }

private:
    void Swap()
    {
        for (HGDIOBJ* phObject : {&m_hPen, &m_hBrush, &m_hFont})
            *phObject = ::SelectObject(m_hDC, *phObject);
    }

    Paper m_paper{WIDTH, HEIGHT};
    int m_nMode;
    CPen m_pen{PS_SOLID, 3, RGB(7, 7, 7)};
    CBrush m_brush{RGB(8, 8, 8)};
    CFont m_font;
    HGDIOBJ m_hPen = m_pen, m_hBrush = m_brush, m_hFont = nullptr; // what is to be selected next
};

// With letters of 20 pixels, of distinct widths.
struct Words : testing::Test
{
    Words() { MakeFont(font, "DejaVu Sans", 20); }

    NoLeak noLeak;
    CFont font;
};

} // namespace test
