#include "KXNum.h"

#include "platform/Exception.h"

#include <cstdint>
#include <new>

int CKXNum::ApartNums(const char* pszText, std::vector<int>& vecOut)
try {
    std::uint32_t value = 0;
    bool bOpen = false;
    for (const char* p = pszText; p && *p; ++p) {
        if (*p >= '0' && *p <= '9') {
            value = value * 10 + static_cast<std::uint32_t>(*p - '0');
            bOpen = true;
            continue;
        }
        if (bOpen) vecOut.push_back(static_cast<int>(value));
        value = 0;
        bOpen = false;
    }
    if (bOpen) vecOut.push_back(static_cast<int>(value));
    return static_cast<int>(vecOut.size());
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXNum::CalcFactorial(int nHigh, int nLow)
{
    // A product that has wrapped to 0 stays there. It does so within some forty factors, so that no range
    // takes long.
    std::uint32_t product = 1;
    for (std::int64_t n = nLow; n <= nHigh && product != 0; ++n)
        product *= static_cast<std::uint32_t>(n);
    return static_cast<int>(product);
}

bool CKXNum::IntersectRect(const RECT& rc1, const RECT& rc2)
{
    return rc2.left <= rc1.right && rc2.top <= rc1.bottom && rc2.right >= rc1.left && rc2.bottom >= rc1.top;
}
