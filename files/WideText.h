#pragma once

#include "platform/Exception.h"
#include "platform/Guid.h"
#include "platform/String.h"
#include "platform/Variant.h"

#include <array>
#include <string_view>

namespace kx::files {

// A text of the process's code page as the wide text of one call; null stays null. A CMemoryException where
// that can't be made.
class WideText
{
public:
    explicit WideText(const char* pszText);
    WideText(const WideText&) = delete;
    WideText& operator=(const WideText&) = delete;
    ~WideText() { SysFreeString(m_allocated); }

    operator BSTR() const noexcept { return m_text; }
    // The value of one call, which doesn't end it.
    VARIANT AsVariant() const noexcept;

private:
    static constexpr std::size_t kRoom = 40;

    static bool IsAscii(std::string_view text) noexcept;
    void Allocate(std::string_view text);

    BSTR m_text = nullptr;
    BSTR m_allocated = nullptr;
    struct
    {
        BSTR_LENGTH nBytes;
        std::array<WCHAR, kRoom> units;
    } m_short; // for names, most of them
};

// An object that an interface gives out: freed with the scope, null before the call.
class WideResult
{
public:
    WideResult() = default;
    WideResult(const WideResult&) = delete;
    WideResult& operator=(const WideResult&) = delete;
    ~WideResult() { SysFreeString(m_text); }

    BSTR* Target() noexcept { return &m_text; }
    bool IsEmpty() const noexcept { return SysStringLen(m_text) == 0; }
    CString Text() const;
    // The text for as long as this lives, without a CString if it is short.
    std::string_view View();

private:
    BSTR m_text = nullptr;
    std::array<char, 64> m_short;
    CString m_strLong;
};

// The text of the process's code page.
CString ToText(BSTR bstr);

// The result of an interface's operation; throws a CMemoryException for a lack of memory.
HRESULT Checked(HRESULT hr);

} // namespace kx::files
