#pragma once

#include "../KXExport.h"
#include "Types.h"

#include <atomic>
#include <compare>
#include <cstdarg>
#include <cstddef>
#include <functional>
#include <string_view>

// An 8-bit string in the process's code page, with value semantics. Copies share one buffer until one of
// them changes, so passing by value is cheap. Positions and lengths are in bytes. Searches never match
// inside a character of two or four bytes, and case conversion never changes one. A null `const char*`
// counts as the empty string. Arguments out of range are pulled into range; nothing here fails but for lack
// of memory or a text of 2 GiB (CMemoryException*, Exception.h), and then the object is what it was.
//
// Threads: distinct objects may be used from distinct threads, also when they share a buffer; one object is
// used by one thread at a time.
class KX_API CString
{
public:
    // From a text, bytes, a character or another string; null is the empty text.
    CString() noexcept : m_pszData(s_empty.text) {}
    CString(const char* psz);
    CString(const char* pch, int nLength);
    explicit CString(char ch, int nRepeat = 1);
    explicit CString(std::string_view text);
    CString(const CString& str) noexcept : m_pszData(str.m_pszData) { AddRef(); }
    CString(CString&& str) noexcept : m_pszData(str.m_pszData) { str.m_pszData = s_empty.text; }
    ~CString() { Release(); }

    // Takes the text of the other; null is the empty text.
    CString& operator=(const CString& str) noexcept;
    CString& operator=(CString&& str) noexcept;
    CString& operator=(const char* psz);
    CString& operator=(std::string_view text);

    // Length in bytes, and whether it is 0; Empty lets go of the text.
    int GetLength() const noexcept { return GetRep()->length; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    void Empty() noexcept;
    // Cuts the text behind that many bytes and keeps the buffer for what is appended next.
    void Truncate(int nLength);

    // The text, ending in a NUL; valid until the object changes or ends.
    const char* GetString() const noexcept { return m_pszData; }
    // The text, as GetString gives it, or with its length.
    operator const char*() const noexcept { return m_pszData; }
    operator std::string_view() const noexcept { return View(); }
    std::string_view View() const noexcept { return {m_pszData, static_cast<std::size_t>(GetLength())}; }

    // The byte at a position; 0 for a position out of range.
    char GetAt(int nIndex) const noexcept;
    char operator[](int nIndex) const noexcept { return GetAt(nIndex); }
    // Replaces one byte; a position out of range changes nothing.
    void SetAt(int nIndex, char ch);

    // Append a text or a character; null is the empty text.
    CString& operator+=(const CString& str) { return Append(str.View()); }
    CString& operator+=(const char* psz);
    CString& operator+=(char ch) { return Append({&ch, 1}); }
    CString& operator+=(std::string_view text) { return Append(text); }
    CString& Append(std::string_view text);

    // printf-style. The result replaces (Format) or extends (AppendFormat) the text; the arguments may
    // refer to this very string. A format that can't be carried out leaves the text as it was.
    void Format(const char* pszFormat, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* pszFormat, va_list args) __attribute__((format(printf, 2, 0)));
    void AppendFormat(const char* pszFormat, ...) __attribute__((format(printf, 2, 3)));

    // The first, the last, or the bytes from a position on; counts and positions are cut to what there is.
    CString Left(int nCount) const;
    CString Right(int nCount) const;
    CString Mid(int nFirst) const;
    CString Mid(int nFirst, int nCount) const;

    // The first position at or behind `nStart`, where a character begins, of a byte or text; -1 without one
    // or for a start behind the end. An empty text is found at once.
    int Find(char ch, int nStart = 0) const noexcept;
    int Find(const char* pszSub, int nStart = 0) const noexcept;
    // The last position of a byte, -1 without one.
    int ReverseFind(char ch) const noexcept;

    // Replaces every occurrence, left to right without overlap; returns how many there were. An empty
    // `pszOld` replaces nothing.
    int Replace(const char* pszOld, const char* pszNew);
    int Replace(char chOld, char chNew);

    // Remove white space (space, tab, CR, LF, vertical tab, form feed) from both ends or one.
    CString& Trim();
    CString& TrimLeft();
    CString& TrimRight();

    // Fold the ASCII letters.
    CString& MakeLower();
    CString& MakeUpper();

    // Byte order: negative, 0 or positive. CompareNoCase folds the ASCII letters.
    int Compare(const char* psz) const noexcept;
    int CompareNoCase(const char* psz) const noexcept;

    // The next piece between any of the bytes in `pszDelims`, from `nStart` on, empty pieces passed over.
    // `nStart` is moved behind it; -1 and an empty result when there is none left.
    CString Tokenize(const char* pszDelims, int& nStart) const;

    // A writable buffer of at least `nMinLength` bytes and a terminator, until ReleaseBuffer, which sets the
    // length (-1: up to the first NUL).
    char* GetBuffer(int nMinLength = 0);
    void ReleaseBuffer(int nLength = -1);

    friend bool operator==(const CString& a, const CString& b) noexcept
    {
        return a.m_pszData == b.m_pszData || a.View() == b.View();
    }
    friend bool operator==(const CString& a, const char* b) noexcept { return a.Compare(b) == 0; }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept
    {
        return a.View() <=> b.View();
    }
    friend std::strong_ordering operator<=>(const CString& a, const char* b) noexcept
    {
        return a.Compare(b) <=> 0;
    }

    friend CString operator+(const CString& a, const CString& b) { return Join(a.View(), b.View()); }
    friend CString operator+(const CString& a, const char* b) { return Join(a.View(), ViewOf(b)); }
    friend CString operator+(const char* a, const CString& b) { return Join(ViewOf(a), b.View()); }
    friend CString operator+(const CString& a, char b) { return Join(a.View(), {&b, 1}); }

private:
    // One shared buffer: this header, then the text and its terminator. The empty string has one static
    // buffer whose count is negative and never changes.
    struct Rep
    {
        std::atomic<int> refs;
        int length;
        int capacity;
        char text[1];
    };

    static Rep s_empty;

    static std::string_view ViewOf(const char* psz) noexcept
    {
        return psz ? std::string_view(psz) : std::string_view();
    }
    static CString Join(std::string_view a, std::string_view b);
    static Rep* NewRep(std::size_t nCapacity);

    Rep* GetRep() const noexcept { return reinterpret_cast<Rep*>(m_pszData - offsetof(Rep, text)); }
    void AddRef() noexcept
    {
        if (m_pszData != s_empty.text) GetRep()->refs.fetch_add(1, std::memory_order_relaxed);
    }
    void Release() noexcept
    {
        if (m_pszData != s_empty.text) ReleaseRep();
    }
    void ReleaseRep() noexcept;
    bool IsWritable(int nCapacity) const noexcept;
    void MakeWritable(std::size_t nCapacity);
    void SetLength(std::size_t nLength) noexcept;
    void Assign(std::string_view text);
    void Cut(int nFirst, int nCount);

    char* m_pszData;
};

template <>
struct std::hash<CString>
{
    std::size_t operator()(const CString& str) const noexcept
    {
        return std::hash<std::string_view>()(str.View());
    }
};
