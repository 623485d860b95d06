#include "include/platform/Guid.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

GUID Filled()
{
    GUID guid;
    std::memset(&guid, 0x5A, sizeof(guid));
    return guid;
}

bool IsZero(const GUID& guid)
{
    const GUID zero{};
    return std::memcmp(&guid, &zero, sizeof(guid)) == 0;
}

TEST(Guid, AnyOtherTextGivesZero)
{
    for (const auto* text :
         {u"01234567-89AB-CDEF-FEDC-BA9876543210", u"{01234567-89AB-CDEF-FEDC-BA9876543210",
          u"01234567-89AB-CDEF-FEDC-BA9876543210}", u"{01234567-89AB-CDEF-FEDC-BA987654321}",
          u"{01234567-89AB-CDEF-FEDC-BA98765432100}", u"{01234567-89AB-CDEF-FEDC-BA9876543210} ",
          u" {01234567-89AB-CDEF-FEDC-BA9876543210}", u"{0123456789AB-CDEF-FEDC-BA9876543210---}",
          u"{01234567-89AB-CDEF-FEDC-BA987654321G}", u"{+1234567-89AB-CDEF-FEDC-BA9876543210}",
          u"{0x234567-89AB-CDEF-FEDC-BA9876543210}", u"{}", u"{", u"\uFF10"}) {
        GUID guid = Filled();
        EXPECT_EQ(CLSIDFromString(text, &guid), CO_E_CLASSSTRING);
        EXPECT_TRUE(IsZero(guid));
    }
    for (const WCHAR* text : {static_cast<const WCHAR*>(nullptr), u""}) {
        GUID guid = Filled();
        EXPECT_EQ(CLSIDFromString(text, &guid), S_OK);
        EXPECT_TRUE(IsZero(guid));
    }
    EXPECT_EQ(CLSIDFromString(u"{}", nullptr), E_INVALIDARG);
    EXPECT_EQ(CoCreateGuid(nullptr), E_INVALIDARG);
}

} // namespace
