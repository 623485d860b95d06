#pragma once

#include "platform/CodePage.h"

#include <cstddef>
#include <string>

namespace kx::draw {

// A text of the process's code page as UTF-16, as the picture calls take paths and MIME types. A null text
// stays null.
class WideText
{
public:
    explicit WideText(const char* psz) : m_bNull(psz == nullptr)
    {
        const int nUnits = MultiByteToWideChar(CP_ACP, 0, psz, -1, nullptr, 0);
        m_text.resize(static_cast<std::size_t>(nUnits));
        MultiByteToWideChar(CP_ACP, 0, psz, -1, m_text.data(), nUnits);
    }
    operator const WCHAR*() const { return m_bNull ? nullptr : m_text.c_str(); }

private:
    std::u16string m_text;
    bool m_bNull;
};

} // namespace kx::draw
