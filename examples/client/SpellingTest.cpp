#include "SpellingTest.h"

#include "SkinPainter.h"

#include <utility>

void client::SpellingTest::LoadTexts()
{
    m_entries.clear();
    for (int n = 1; n <= 6; ++n) {
        CString strKey;
        strKey.Format("IDS_WORD%d", n);
        const std::vector<CString> fields = TextsOf(strKey);
        if (fields.size() >= 2) m_entries.push_back({fields[0], fields[1]});
    }
    if (m_entries.empty()) m_entries.push_back({"word", ""});
    if (m_nCurrent >= m_entries.size()) Restart();
}

void client::SpellingTest::Restart()
{
    m_nCurrent = 0;
    m_nRight = 0;
    Ask();
}

void client::SpellingTest::Ask()
{
    m_strShown = Word();
    CKXEnglishWord::MakeTestWord(m_strShown, m_strShown.GetLength() / 2, 1);
    m_strTyped.Empty();
    m_bAnswered = false;
}

namespace {

// The last character's beginning, and its end, which lies behind the text while it lacks a byte.
std::pair<int, int> LastCharacter(const CString& str)
{
    int nBegin = 0;
    int nEnd = 0;
    while (nEnd < str.GetLength()) {
        nBegin = nEnd;
        const bool bOfFour = nEnd + 1 < str.GetLength() && str[nEnd + 1] >= '0' && str[nEnd + 1] <= '9';
        nEnd += !IsDBCSLeadByte(static_cast<BYTE>(str[nEnd])) ? 1 : bOfFour ? 4 : 2;
    }
    return {nBegin, nEnd};
}

} // namespace

bool client::TypeByte(CString& str, char byte, bool bBegins, int nMost)
{
    const int nLength = str.GetLength();
    const auto [nBegin, nEnd] = LastCharacter(str);
    if (byte == '\b') {
        str = str.Left(nBegin);
        return nLength > 0;
    }
    bBegins = bBegins || IsDBCSLeadByte(static_cast<BYTE>(byte)) != 0;
    if (nEnd == nLength && (!bBegins || nLength >= nMost)) return false;
    str += byte;
    return LastCharacter(str).second == str.GetLength();
}

bool client::SpellingTest::Type(char letter)
{
    return !m_bAnswered && TypeByte(m_strTyped, letter, letter >= 'a' && letter <= 'z', 14);
}

void client::SpellingTest::Answer()
{
    if (m_bAnswered || m_strTyped.IsEmpty()) return;
    m_bAnswered = true;
    if (IsRight()) ++m_nRight;
}

void client::SpellingTest::Next()
{
    if (IsLast()) return Restart();
    ++m_nCurrent;
    Ask();
}
