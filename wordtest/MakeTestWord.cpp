#include "KXEnglishWord.h"

#include <algorithm>
#include <cstdlib>

namespace {

// The word of which letters are being hidden, from the first that may be.
class Hiding
{
public:
    Hiding(CString& strWord, int nFirst) : m_strWord(strWord), m_nFirst(nFirst) {}

    void HideAll()
    {
        for (int n = m_nFirst; n < m_strWord.GetLength(); ++n)
            m_strWord.SetAt(n, CKXEnglishWord::MASK);
    }
    void HideOne() { m_strWord.SetAt(PickPlace(), CKXEnglishWord::MASK); }

private:
    bool IsFree(int n) const { return n >= m_nFirst && m_strWord[n] != CKXEnglishWord::MASK; }
    // The lowest free place serves where chance has found none; behind the end if there is none at all.
    int PickPlace() const
    {
        constexpr int nDraws = 6;
        const int nLength = m_strWord.GetLength();
        for (int nDraw = 0; nDraw < nDraws; ++nDraw)
            if (const int n = std::rand() % nLength; IsFree(n)) return n;
        int n = m_nFirst;
        while (n < nLength && !IsFree(n))
            ++n;
        return n;
    }

    CString& m_strWord;
    const int m_nFirst;
};

} // namespace

void CKXEnglishWord::MakeTestWord(CString& strWord, int nHideCount, int bKeepFirst)
{
    const int nLength = strWord.GetLength();
    const int nCount = std::min(std::max(nHideCount, 1), nLength);
    Hiding hiding(strWord, bKeepFirst ? 1 : 0);
    if (nCount == nLength) {
        hiding.HideAll();
        return;
    }
    for (int n = 0; n < nCount; ++n)
        hiding.HideOne();
}
