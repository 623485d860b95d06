#include "SpellingTest.h"

#include "SkinPainter.h"

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

// In the process's code page a byte from here on begins a character of two.
constexpr unsigned char kFirstOfTwo = 0x81;

// Gives the end of the last character, which may lie behind the text, and its beginning.
int CharacterEnd(const CString& str, int* pBegin = nullptr)
{
    int nEnd = 0;
    while (nEnd < str.GetLength()) {
        if (pBegin) *pBegin = nEnd;
        nEnd += static_cast<unsigned char>(str[nEnd]) >= kFirstOfTwo ? 2 : 1;
    }
    return nEnd;
}

} // namespace

bool client::SpellingTest::Type(char letter)
{
    const int nLength = m_strTyped.GetLength();
    if (m_bAnswered) return false;
    if (letter == '\b') {
        int nBegin = 0;
        CharacterEnd(m_strTyped, &nBegin);
        m_strTyped = m_strTyped.Left(nBegin);
        return nLength > 0;
    }
    const bool bInside = CharacterEnd(m_strTyped) > nLength; // the last one lacks its second byte
    const bool bLetter =
        (letter >= 'a' && letter <= 'z') || static_cast<unsigned char>(letter) >= kFirstOfTwo;
    if (!bInside && (!bLetter || nLength >= 14)) return false;
    m_strTyped += letter;
    return true;
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
