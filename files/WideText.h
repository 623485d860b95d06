#pragma once

#include "platform/Exception.h"
#include "platform/String.h"
#include "platform/Variant.h"

#include <array>
#include <string_view>

namespace kx::xml {

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
    // As the value of one call, which doesn't end it.
    VARIANT AsVariant() const noexcept;

private:
    static constexpr std::size_t kRoom = 40;

    bool Fill(std::string_view text) noexcept;
    void Allocate(std::string_view text);

    BSTR m_text = nullptr;
    BSTR m_allocated = nullptr;
    struct
    {
        BSTR_LENGTH nBytes;
        std::array<WCHAR, kRoom> units;
    } m_short; // for names, most of them
};

// What an interface gives out: freed with the scope, null before the call.
class WideResult
{
public:
    WideResult() = default;
    WideResult(const WideResult&) = delete;
    WideResult& operator=(const WideResult&) = delete;
    ~WideResult() { SysFreeString(m_text); }

    BSTR* Target() noexcept { return &m_text; }
    CString Text() const;

private:
    BSTR m_text = nullptr;
};

// The text of the process's code page.
CString ToText(BSTR bstr);

} // namespace kx::xml
