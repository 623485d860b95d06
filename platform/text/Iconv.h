#pragma once

#include "include/platform/Types.h"

#include <iconv.h>
#include <optional>
#include <string>
#include <string_view>

namespace kx::text {

// One conversion between a code page (936, 65001) and a Unicode form. Code page 936 is GB18030 here.
class Iconv
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
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    ~Iconv();

    // Nothing where the bytes are no text.
    std::optional<std::string> Convert(std::string_view bytes);
    // Each input byte (of 8-bit text) or unit (of UTF-16) that is no character becomes `replacement`.
    std::string ConvertLossy(std::string_view bytes, std::string_view replacement, std::size_t unit = 1);

private:
    bool Run(std::string_view& bytes, std::string& out);

    iconv_t m_cd;
};

} // namespace kx::text
