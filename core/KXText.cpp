#include "KXText.h"

#include "internal/Wide.h"
#include "platform/CodePage.h"
#include "platform/Exception.h"

#include <climits>
#include <new>

namespace {

// Every character takes at most three times as many bytes in one code page as in another.
constexpr std::size_t kMost = INT_MAX / 4;

std::u16string Wide(UINT nCodePage, std::string_view text)
{
    if (text.size() > kMost) AfxThrowMemoryException();
    return kx::Widen(nCodePage, text);
}

// The number of bytes, which are written only if there is room.
int Narrow(UINT nCodePage, const std::u16string& wide, char* pTarget, int nRoom)
{
    return WideCharToMultiByte(nCodePage, 0, wide.data(), static_cast<int>(wide.size()), pTarget, nRoom);
}

} // namespace

CString KXText::FromUtf8(std::string_view utf8)
try {
    const std::u16string wide = Wide(CP_UTF8, utf8);
    CString strText;
    const int nBytes = Narrow(CP_ACP, wide, nullptr, 0);
    if (nBytes == 0) return strText;
    Narrow(CP_ACP, wide, strText.GetBuffer(nBytes), nBytes);
    strText.ReleaseBuffer(nBytes);
    return strText;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

std::string KXText::ToUtf8(std::string_view text)
try {
    const std::u16string wide = Wide(CP_ACP, text);
    std::string utf8(static_cast<std::size_t>(Narrow(CP_UTF8, wide, nullptr, 0)), '\0');
    Narrow(CP_UTF8, wide, utf8.data(), static_cast<int>(utf8.size()));
    return utf8;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
