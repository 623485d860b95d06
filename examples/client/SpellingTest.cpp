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

bool client::SpellingTest::Type(char letter)
{
    const int nLength = m_strTyped.GetLength();
    if (m_bAnswered) return false;
    if (letter == '\b') {
        m_strTyped = m_strTyped.Left(nLength - 1);
        return nLength > 0;
    }
    if (letter < 'a' || letter > 'z' || nLength >= 14) return false;
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
