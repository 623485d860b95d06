#pragma once

#include <KXCommonClass.h>
#include <vector>

namespace client {

// Types a byte into a text in the process's code page, of at most so many bytes: one of a longer character,
// one that begins a character by itself as `bBegins` says, or '\b', which takes the last character back.
// False if that changed nothing, or the character is not whole yet.
bool TypeByte(CString& str, char byte, bool bBegins, int nMost);

// A round of spelling: each word of the current language's list is asked once, with half of its letters
// hidden.
class SpellingTest
{
public:
    // Takes the words anew, in the current language, at the place where the test is.
    void LoadTexts();
    // The first word again, with nothing answered.
    void Restart();

    const CString& Word() const { return m_entries[m_nCurrent].strWord; }
    // The word's meaning, in the current language.
    const CString& Meaning() const { return m_entries[m_nCurrent].strMeaning; }
    // The word with its hidden letters.
    const CString& Shown() const { return m_strShown; }
    // The text that was typed so far.
    const CString& Typed() const { return m_strTyped; }
    // Nothing more is typed: the result is to be seen.
    bool IsAnswered() const { return m_bAnswered; }
    bool IsRight() const { return m_strTyped == Word(); }
    bool IsLast() const { return m_nCurrent + 1 == m_entries.size(); }
    int Count() const { return static_cast<int>(m_entries.size()); }
    int Done() const { return static_cast<int>(m_nCurrent) + (m_bAnswered ? 1 : 0); }
    int Right() const { return m_nRight; }

    // A letter, or with '\b' the last one taken back; false if that changed nothing.
    bool Type(char letter);
    void Answer();
    // The next word, or behind the last the first again.
    void Next();

private:
    struct Entry
    {
        CString strWord;
        CString strMeaning;
    };
    void Ask();

    std::vector<Entry> m_entries;
    std::size_t m_nCurrent = 0;
    CString m_strShown;
    CString m_strTyped;
    bool m_bAnswered = false;
    int m_nRight = 0;
};

} // namespace client
