#include "include/platform/Guid.h"

#include "platform/Errno.h"

#include <cstring>
#include <string_view>
#include <sys/random.h>

namespace {

constexpr std::u16string_view kForm = u"{hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh}"; // h: a hexadecimal digit

int DigitOf(WCHAR ch)
{
    if (ch >= u'0' && ch <= u'9') return ch - u'0';
    if (ch >= u'A' && ch <= u'F') return ch - u'A' + 10;
    if (ch >= u'a' && ch <= u'f') return ch - u'a' + 10;
    return -1;
}

// The sixteen bytes in the order of the text; false if it isn't of the form.
bool Parse(std::u16string_view text, std::uint8_t (&bytes)[16])
{
    if (text.size() != kForm.size()) return false;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < kForm.size(); ++i) {
        if (kForm[i] != u'h') {
            if (text[i] != kForm[i]) return false;
            continue;
        }
        const int digit = DigitOf(text[i]);
        if (digit < 0) return false;
        auto& byte = bytes[digits++ / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | digit);
    }
    return true;
}

} // namespace

HRESULT CoCreateGuid(GUID* pGuid)
{
    if (!pGuid) return E_INVALIDARG;
    GUID guid;
    if (kx::RetryEintr([&] { return getrandom(&guid, sizeof(guid), 0); }) != sizeof(guid)) return E_FAIL;
    guid.Data3 = static_cast<std::uint16_t>((guid.Data3 & 0x0FFF) | 0x4000);  // version 4: random
    guid.Data4[0] = static_cast<std::uint8_t>((guid.Data4[0] & 0x3F) | 0x80); // the common variant
    *pGuid = guid;
    return S_OK;
}

HRESULT CLSIDFromString(const WCHAR* pszText, GUID* pGuid)
{
    if (!pGuid) return E_INVALIDARG;
    *pGuid = {};
    if (!pszText || !*pszText) return S_OK;
    // No further than one character behind the form, however long the text is.
    std::size_t length = 0;
    while (length <= kForm.size() && pszText[length] != u'\0')
        ++length;
    std::uint8_t b[16]{};
    if (!Parse({pszText, length}, b)) return CO_E_CLASSSTRING;
    pGuid->Data1 =
        static_cast<std::uint32_t>(b[0]) << 24 | static_cast<std::uint32_t>(b[1] << 16 | b[2] << 8 | b[3]);
    pGuid->Data2 = static_cast<std::uint16_t>(b[4] << 8 | b[5]);
    pGuid->Data3 = static_cast<std::uint16_t>(b[6] << 8 | b[7]);
    std::memcpy(pGuid->Data4, b + 8, 8);
    return S_OK;
}
