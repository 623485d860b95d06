#pragma once

#include "include/KXExport.h"
#include "include/platform/Types.h"

#include <iconv.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kx::text {

// One conversion between a code page (936, 65001) and a Unicode form. Code page 936 is GB18030 here, with
// byte 80 as the euro sign and a four-byte form for the few characters that the system's converter lacks.
class KX_API Iconv
{
public:
    enum class Direction
    {
        ToUtf8,
        FromUtf8,
        ToUtf16,
        FromUtf16,
        ToUtf32,
        FromUtf32,
    };

    // The calling thread's converter, kept for its next use. The code page is 936 or 65001.
    static Iconv& For(UINT nCodePage, Direction direction);

    Iconv(const char* pszTo, const char* pszFrom);
    Iconv(UINT nCodePage, Direction direction);
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    ~Iconv();

    // Whether there is such a conversion.
    explicit operator bool() const noexcept { return m_cd != reinterpret_cast<iconv_t>(-1); }
    // Nothing where the bytes are no text.
    std::optional<std::string> Convert(std::string_view bytes);
    // Each input byte (of 8-bit text) or unit (of UTF-16) that is no character becomes `replacement`.
    std::string ConvertLossy(std::string_view bytes, std::string_view replacement, std::size_t unit = 1);
    // Converts as far as it goes, and leaves the rest: true when all of it went.
    bool Append(std::string_view& bytes, std::string& out);

private:
    bool Run(std::string_view& bytes, std::string& out);
    bool TakeExtra(std::string_view& bytes, std::string& out) const;

    iconv_t m_cd;
    std::vector<std::pair<std::string, std::string>>
        m_extras; // what the system's converter lacks, from and to
};

} // namespace kx::text

// Conversions between the process's code page and Unicode. Any thread.

namespace kx::text {

KX_API bool IsAscii(std::string_view text) noexcept;

// Nothing where the text holds bytes that are no character.
KX_API std::optional<std::string> ToUtf8(std::string_view codePageText);
KX_API std::optional<std::string> FromUtf8(std::string_view utf8);

// Like FromUtf8, with "?" for what can't be converted.
KX_API std::string FromUtf8Lossy(std::string_view utf8);

// A UTF-8 text with its letters folded for comparing without case, by Unicode's simple mapping. Bytes that
// are no UTF-8 stay.
std::string FoldCase(std::string_view utf8);

} // namespace kx::text
