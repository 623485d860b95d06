#include "files/WideText.h"

#include "platform/CodePage.h"

#include <algorithm>
#include <climits>
#include <new>

namespace kx::xml {

WideText::WideText(const char* pszText)
{
    if (!pszText) return;
    const std::string_view text(pszText);
    if (!Fill(text)) Allocate(text);
}

bool WideText::Fill(std::string_view text) noexcept
{
    if (text.size() >= kRoom) return false;
    unsigned char all = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        all |= static_cast<unsigned char>(text[i]);
        m_short.units[i] = static_cast<unsigned char>(text[i]);
    }
    if (all >= 0x80) return false;
    m_short.units[text.size()] = u'\0';
    m_short.nBytes = static_cast<BSTR_LENGTH>(text.size() * sizeof(WCHAR));
    m_text = m_short.units.data();
    return true;
}

void WideText::Allocate(std::string_view text)
try {
    if (text.size() > INT_MAX) AfxThrowMemoryException();
    const int nBytes = static_cast<int>(text.size());
    const int nUnits = MultiByteToWideChar(CP_ACP, 0, text.data(), nBytes, nullptr, 0);
    if (nUnits > 0) m_allocated = SysAllocStringLen(nullptr, static_cast<UINT>(nUnits));
    if (!m_allocated) AfxThrowMemoryException();
    MultiByteToWideChar(CP_ACP, 0, text.data(), nBytes, m_allocated, nUnits);
    m_text = m_allocated;
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

CString ToText(BSTR bstr)
{
    const int nUnits = static_cast<int>(SysStringLen(bstr));
    if (nUnits == 0) return {};
    WCHAR all = 0;
    for (int i = 0; i < nUnits; ++i)
        all |= bstr[i];
    const bool bAscii = all < 0x80;
    const int nBytes = bAscii ? nUnits : WideCharToMultiByte(CP_ACP, 0, bstr, nUnits, nullptr, 0);
    CString strText;
    char* const pszText = strText.GetBuffer(nBytes);
    if (bAscii)
        std::transform(bstr, bstr + nUnits, pszText, [](WCHAR unit) { return static_cast<char>(unit); });
    else
        WideCharToMultiByte(CP_ACP, 0, bstr, nUnits, pszText, nBytes);
    strText.ReleaseBuffer(nBytes);
    return strText;
}

} // namespace kx::xml
