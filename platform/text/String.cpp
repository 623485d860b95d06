#include "include/platform/String.h"

#include "include/platform/Exception.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace text = kx::text;

// The text field is as long as the buffer needs; the static empty string's holds its terminator alone.
constinit CString::Rep CString::s_empty{-1, 0, 0, {'\0'}};

CString::Rep* CString::NewRep(std::size_t nCapacity)
{
    const bool bFits = nCapacity <= static_cast<std::size_t>(INT_MAX) - sizeof(Rep);
    void* memory = bFits ? ::operator new(sizeof(Rep) + nCapacity, std::nothrow) : nullptr;
    if (!memory) AfxThrowMemoryException();
    return new (memory) Rep{1, 0, static_cast<int>(nCapacity), {'\0'}};
}

void CString::ReleaseRep() noexcept
{
    Rep* rep = GetRep();
    if (rep->refs.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    rep->~Rep();
    ::operator delete(rep);
}

bool CString::IsWritable(int nCapacity) const noexcept
{
    const Rep* rep = GetRep();
    return rep->refs.load(std::memory_order_acquire) == 1 && rep->capacity >= nCapacity;
}

// Makes the buffer this object's own, with room for `nCapacity` bytes, and keeps the text.
void CString::MakeWritable(std::size_t nCapacity)
{
    if (nCapacity <= static_cast<std::size_t>(INT_MAX) && IsWritable(static_cast<int>(nCapacity))) return;
    const std::string_view old = View();
    constexpr auto nMost = static_cast<std::size_t>(INT_MAX) - sizeof(Rep);
    const std::size_t ahead = std::min(old.size() + old.size() / 2, nMost);
    const std::size_t grown = nCapacity > old.size() ? std::max(nCapacity, ahead) : old.size();
    Rep* rep = NewRep(grown);
    std::memcpy(rep->text, old.data(), old.size());
    rep->text[old.size()] = '\0';
    rep->length = static_cast<int>(old.size());
    Release();
    m_pszData = rep->text;
}

void CString::SetLength(std::size_t nLength) noexcept
{
    GetRep()->length = static_cast<int>(nLength);
    m_pszData[nLength] = '\0';
}

void CString::Assign(std::string_view str)
{
    if (str.empty()) {
        Empty();
        return;
    }
    if (str.size() <= static_cast<std::size_t>(INT_MAX) && IsWritable(static_cast<int>(str.size()))) {
        std::memmove(m_pszData, str.data(), str.size());
    } else {
        Rep* rep = NewRep(str.size());
        std::memcpy(rep->text, str.data(), str.size());
        Release();
        m_pszData = rep->text;
    }
    SetLength(str.size());
}

CString::CString(const char* psz) : CString(ViewOf(psz))
{
}

CString::CString(const char* pch, int nLength)
    : CString(pch && nLength > 0 ? std::string_view(pch, static_cast<std::size_t>(nLength))
                                 : std::string_view())
{
}

CString::CString(char ch, int nRepeat) : m_pszData(s_empty.text)
{
    if (nRepeat <= 0) return;
    const auto length = static_cast<std::size_t>(nRepeat);
    MakeWritable(length);
    std::memset(m_pszData, ch, length);
    SetLength(length);
}

CString::CString(std::string_view str) : m_pszData(s_empty.text)
{
    Assign(str);
}

CString& CString::operator=(const CString& str) noexcept
{
    CString copy(str);
    std::swap(m_pszData, copy.m_pszData);
    return *this;
}

CString& CString::operator=(CString&& str) noexcept
{
    std::swap(m_pszData, str.m_pszData);
    return *this;
}

CString& CString::operator=(const char* psz)
{
    Assign(ViewOf(psz));
    return *this;
}

CString& CString::operator=(std::string_view str)
{
    Assign(str);
    return *this;
}

void CString::Empty() noexcept
{
    Release();
    m_pszData = s_empty.text;
}

void CString::Truncate(int nLength)
{
    if (nLength >= GetLength()) return;
    const int length = std::max(nLength, 0);
    if (IsWritable(length))
        SetLength(static_cast<std::size_t>(length));
    else
        Assign(View().substr(0, static_cast<std::size_t>(length)));
}

char CString::GetAt(int nIndex) const noexcept
{
    return nIndex >= 0 && nIndex < GetLength() ? m_pszData[nIndex] : '\0';
}

void CString::SetAt(int nIndex, char ch)
{
    if (nIndex < 0 || nIndex >= GetLength()) return;
    MakeWritable(View().size());
    m_pszData[nIndex] = ch;
}

CString& CString::operator+=(const char* psz)
{
    return Append(ViewOf(psz));
}

CString& CString::Append(std::string_view str)
{
    if (str.empty()) return *this;
    const std::size_t old = View().size();
    CString keep; // a text that points into this very buffer needs it to live on
    if (str.data() >= m_pszData && str.data() <= m_pszData + old) keep = *this;
    MakeWritable(old + str.size());
    std::memcpy(m_pszData + old, str.data(), str.size());
    SetLength(old + str.size());
    return *this;
}

CString CString::Join(std::string_view a, std::string_view b)
{
    CString joined;
    if (a.empty() && b.empty()) return joined;
    joined.MakeWritable(a.size() + b.size());
    std::memcpy(joined.m_pszData, a.data(), a.size());
    std::memcpy(joined.m_pszData + a.size(), b.data(), b.size());
    joined.SetLength(a.size() + b.size());
    return joined;
}

void CString::FormatV(const char* pszFormat, va_list args)
{
    if (!pszFormat) return;
    char local[256];
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(local, sizeof(local), pszFormat, args);
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof(local)) {
        Assign({local, static_cast<std::size_t>(length)});
    } else if (length >= 0) {
        CString result;
        result.MakeWritable(static_cast<std::size_t>(length));
        std::vsnprintf(result.m_pszData, static_cast<std::size_t>(length) + 1, pszFormat, again);
        result.SetLength(static_cast<std::size_t>(length));
        std::swap(m_pszData, result.m_pszData);
    }
    va_end(again);
}

void CString::Format(const char* pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void CString::AppendFormat(const char* pszFormat, ...)
{
    CString tail;
    va_list args;
    va_start(args, pszFormat);
    tail.FormatV(pszFormat, args);
    va_end(args);
    Append(tail.View());
}

CString CString::Left(int nCount) const
{
    return Mid(0, nCount);
}

CString CString::Right(int nCount) const
{
    const int count = std::clamp(nCount, 0, GetLength());
    return Mid(GetLength() - count, count);
}

CString CString::Mid(int nFirst) const
{
    return Mid(nFirst, GetLength());
}

CString CString::Mid(int nFirst, int nCount) const
{
    const int first = std::clamp(nFirst, 0, GetLength());
    const int count = std::clamp(nCount, 0, GetLength() - first);
    return count == GetLength() ? *this : CString(m_pszData + first, count);
}

namespace {
int ToIndex(std::size_t pos)
{
    return pos == std::string_view::npos ? -1 : static_cast<int>(pos);
}

// The beginning of the first character at or behind a position.
std::size_t StartFrom(std::string_view str, int nStart) noexcept
{
    const auto start = static_cast<std::size_t>(std::max(nStart, 0));
    return text::CharStartFrom(str, start, text::IsDoubleByte());
}
} // namespace

int CString::Find(char ch, int nStart) const noexcept
{
    return nStart > GetLength() ? -1 : ToIndex(text::Find(View(), ch, StartFrom(View(), nStart)));
}

int CString::Find(const char* pszSub, int nStart) const noexcept
{
    if (nStart > GetLength()) return -1;
    return ToIndex(text::Find(View(), ViewOf(pszSub), StartFrom(View(), nStart)));
}

int CString::ReverseFind(char ch) const noexcept
{
    return ToIndex(text::FindLast(View(), ch));
}

int CString::Replace(const char* pszOld, const char* pszNew)
{
    const std::string_view old = ViewOf(pszOld);
    const std::string_view replacement = ViewOf(pszNew);
    const std::string_view str = View();
    if (old.empty()) return 0;
    CString result;
    int count = 0;
    std::size_t done = 0;
    for (auto pos = text::Find(str, old); pos != str.npos; pos = text::Find(str, old, done)) {
        result.Append(str.substr(done, pos - done)).Append(replacement);
        done = pos + old.size();
        ++count;
    }
    if (count > 0) *this = std::move(result.Append(str.substr(done)));
    return count;
}

int CString::Replace(char chOld, char chNew)
{
    const char from[] = {chOld, '\0'};
    const char to[] = {chNew, '\0'};
    return Replace(from, to);
}

void CString::Cut(int nFirst, int nCount)
{
    if (nCount == GetLength()) return;
    Assign({m_pszData + nFirst, static_cast<std::size_t>(nCount)});
}

CString& CString::Trim()
{
    const std::string_view inner = text::Trim(View());
    Cut(static_cast<int>(inner.data() - m_pszData), static_cast<int>(inner.size()));
    return *this;
}

CString& CString::TrimLeft()
{
    int first = 0;
    while (first < GetLength() && text::IsSpace(m_pszData[first]))
        ++first;
    Cut(first, GetLength() - first);
    return *this;
}

CString& CString::TrimRight()
{
    int count = GetLength();
    while (count > 0 && text::IsSpace(m_pszData[count - 1]))
        --count;
    Cut(0, count);
    return *this;
}

CString& CString::MakeLower()
{
    const std::size_t length = View().size();
    MakeWritable(length);
    text::LowerAscii(m_pszData, length);
    return *this;
}

CString& CString::MakeUpper()
{
    const std::size_t length = View().size();
    MakeWritable(length);
    const bool bDoubleByte = text::IsDoubleByte();
    for (std::size_t i = 0; i < length; i += text::CharLength(View(), i, bDoubleByte))
        if (m_pszData[i] >= 'a' && m_pszData[i] <= 'z')
            m_pszData[i] = static_cast<char>(m_pszData[i] - 'a' + 'A');
    return *this;
}

int CString::Compare(const char* psz) const noexcept
{
    return View().compare(ViewOf(psz));
}

int CString::CompareNoCase(const char* psz) const noexcept
{
    return text::CompareNoCase(View(), ViewOf(psz));
}

CString CString::Tokenize(const char* pszDelims, int& nStart) const
{
    const std::string_view str = View();
    const std::string_view delims = ViewOf(pszDelims);
    const bool bDoubleByte = text::IsDoubleByte();
    const auto isDelim = [&](std::size_t pos) {
        return text::CharLength(str, pos, bDoubleByte) == 1 && delims.find(str[pos]) != delims.npos;
    };
    std::size_t pos = nStart < 0 ? str.size() : static_cast<std::size_t>(nStart);
    while (pos < str.size() && isDelim(pos))
        ++pos;
    if (pos >= str.size()) {
        nStart = -1;
        return {};
    }
    const std::size_t first = pos;
    while (pos < str.size() && !isDelim(pos))
        pos += text::CharLength(str, pos, bDoubleByte);
    nStart = static_cast<int>(std::min(pos + 1, str.size()));
    return CString(str.substr(first, pos - first));
}

char* CString::GetBuffer(int nMinLength)
{
    MakeWritable(static_cast<std::size_t>(std::max({nMinLength, GetLength(), 1})));
    return m_pszData;
}

void CString::ReleaseBuffer(int nLength)
{
    if (m_pszData == s_empty.text) return;
    const auto capacity = static_cast<std::size_t>(GetRep()->capacity);
    SetLength(nLength < 0 ? strnlen(m_pszData, capacity)
                          : std::min(static_cast<std::size_t>(nLength), capacity));
}
