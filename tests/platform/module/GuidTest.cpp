#include "include/platform/Guid.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>

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

TEST(Guid, NewOnesDifferAndAreOfTheRandomKind)
{
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        GUID guid{};
        ASSERT_EQ(CoCreateGuid(&guid), S_OK);
        EXPECT_EQ(guid.Data3 >> 12, 4);
        EXPECT_EQ(guid.Data4[0] >> 6, 2);
        EXPECT_TRUE(seen.emplace(reinterpret_cast<const char*>(&guid), sizeof(guid)).second);
    }
    EXPECT_EQ(CoCreateGuid(nullptr), E_INVALIDARG);
}

TEST(Guid, ReadsTheBracedFormInEitherCase)
{
    const GUID expected{0x01234567, 0x89AB, 0xCDEF, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
    for (const auto* text :
         {u"{01234567-89AB-CDEF-FEDC-BA9876543210}", u"{01234567-89ab-cdef-fedc-ba9876543210}"}) {
        GUID guid = Filled();
        EXPECT_EQ(CLSIDFromString(text, &guid), S_OK);
        EXPECT_EQ(std::memcmp(&guid, &expected, sizeof(guid)), 0);
    }
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
}

} // namespace
