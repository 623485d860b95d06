#include "files/WideText.h"

#include "platform/CodePage.h"
#include "platform/Unknown.h"

#include <algorithm>
#include <climits>
#include <new>

namespace kx::files {

namespace {

// ASCII, and not the end.
bool IsPlain(char ch) noexcept
{
    return static_cast<signed char>(ch) > 0;
}

WCHAR Widen(char ch) noexcept
{
    return static_cast<unsigned char>(ch);
}

// False for a text that is longer or not ASCII.
template <std::size_t nRoom>
bool NarrowAscii(BSTR bstr, UINT nUnits, std::array<char, nRoom>& text) noexcept
{
    if (nUnits > nRoom) return false;
    for (UINT i = 0; i < nUnits; ++i) {
        if (bstr[i] >= 0x80) return false;
        text[i] = static_cast<char>(bstr[i]);
    }
    return true;
}

} // namespace

WideText::WideText(const char* pszText)
{
    if (!pszText) return;
    std::size_t n = 0; // one pass over a name, which is shorter than any setting out for more at a time
    while (n < kRoom && IsPlain(pszText[n])) {
        m_short.units[n] = Widen(pszText[n]);
        ++n;
    }
    if (n == kRoom || pszText[n] != '\0') {
        Allocate(pszText);
        return;
    }
    m_short.units[n] = u'\0';
    m_short.nBytes = static_cast<BSTR_LENGTH>(n * sizeof(WCHAR));
    m_text = m_short.units.data();
}

bool WideText::IsAscii(std::string_view text) noexcept
{
    unsigned char all = 0;
    for (const char ch : text)
        all |= static_cast<unsigned char>(ch);
    return all < 0x80;
}

void WideText::Allocate(std::string_view text)
try {
    if (text.size() > INT_MAX) AfxThrowMemoryException();
    const int nBytes = static_cast<int>(text.size());
    const bool bAscii = IsAscii(text);
    const int nUnits = bAscii ? nBytes : MultiByteToWideChar(CP_ACP, 0, text.data(), nBytes, nullptr, 0);
    if (nUnits > 0) m_allocated = SysAllocStringLen(nullptr, static_cast<UINT>(nUnits));
    if (!m_allocated) AfxThrowMemoryException();
    m_text = m_allocated;
    if (bAscii)
        std::transform(text.begin(), text.end(), m_text, Widen);
    else
        MultiByteToWideChar(CP_ACP, 0, text.data(), nBytes, m_text, nUnits);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

VARIANT WideText::AsVariant() const noexcept
{
    VARIANT value{};
    value.vt = VT_BSTR;
    value.bstrVal = m_text;
    return value;
}

CString WideResult::Text() const
{
    return ToText(m_text);
}

std::string_view WideResult::View()
{
    const UINT nUnits = SysStringLen(m_text);
    if (NarrowAscii(m_text, nUnits, m_short)) return {m_short.data(), nUnits};
    m_strLong = Text();
    return m_strLong.View();
}

CString ToText(BSTR bstr)
try {
    const UINT nUnits = SysStringLen(bstr);
    if (nUnits == 0) return {};
    std::array<char, 64> shortText; // spares most texts the way through a buffer
    if (NarrowAscii(bstr, nUnits, shortText)) return CString(shortText.data(), static_cast<int>(nUnits));
    const int nWide = static_cast<int>(nUnits);
    const int nBytes = WideCharToMultiByte(CP_ACP, 0, bstr, nWide, nullptr, 0);
    CString strText;
    char* const pText = strText.GetBuffer(nBytes);
    if (nBytes == 0 || WideCharToMultiByte(CP_ACP, 0, bstr, nWide, pText, nBytes) == 0)
        AfxThrowMemoryException();
    strText.ReleaseBuffer(nBytes);
    return strText;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

HRESULT Checked(HRESULT hr)
{
    if (hr == E_OUTOFMEMORY) AfxThrowMemoryException();
    return hr;
}

} // namespace kx::files
