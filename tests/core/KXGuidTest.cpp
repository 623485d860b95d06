#include "include/KXGuid.h"

#include <cstring>
#include <gmock/gmock.h>

namespace {

constexpr GUID kGuid{0x01234567, 0x89AB, 0xCDEF, {0xFE, 0x0C, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};

GUID Parsed(const char* pszText)
{
    GUID guid;
    std::memset(&guid, 0x5A, sizeof(guid));
    String2GUID(pszText, guid);
    return guid;
}

TEST(KXGuid, HasAFixedTextForm)
{
    CString text("old");
    GUID2String(kGuid, text);
    EXPECT_EQ(text, "01234567-89AB-CDEF-FE0C-BA9876543210");
    GUID2String(GUID{}, text);
    EXPECT_EQ(text, "00000000-0000-0000-0000-000000000000");
}

TEST(KXGuid, TextsWithAndWithoutBracesReadBack)
{
    for (const char* text : {"01234567-89AB-CDEF-FE0C-BA9876543210", "{01234567-89AB-CDEF-FE0C-BA9876543210}",
                             "01234567-89ab-cdef-fe0c-ba9876543210"})
        EXPECT_EQ(IsSameGUID(Parsed(text), kGuid), 1) << text;
}

TEST(KXGuid, BadTextsGiveZero)
{
    for (const char* text : {"", "{", "}", "{01234567-89AB-CDEF-FE0C-BA9876543210", "\xD6\xD0", "\xFF",
                             "01234567-89AB-CDEF-FE0C-BA9876543210}", "01234567-89AB-CDEF-FE0C-BA987654321",
                             "{{01234567-89AB-CDEF-FE0C-BA9876543210}}"})
        EXPECT_EQ(IsSameGUID(Parsed(text), GUID{}), 1) << text;
    EXPECT_EQ(IsSameGUID(Parsed(std::string(100'000, 'A').c_str()), GUID{}), 1);
}

TEST(KXGuid, NewOnesDifferAndReadBack)
{
    CString first, second, again;
    ASSERT_EQ(CreateGUIDString(first), 1);
    ASSERT_EQ(CreateGUIDString(second), 1);
    EXPECT_NE(first, second);
    EXPECT_THAT(first.GetString(), testing::MatchesRegex("[0-9A-F-]{36}"));
    GUID2String(Parsed(first), again);
    EXPECT_EQ(first, again);
}

TEST(KXGuid, SameMeansEveryByte)
{
    for (std::size_t i = 0; i < sizeof(GUID); ++i) {
        GUID other = kGuid;
        reinterpret_cast<unsigned char*>(&other)[i] ^= 1;
        EXPECT_EQ(IsSameGUID(kGuid, other), 0) << i;
    }
    EXPECT_EQ(IsSameGUID(kGuid, GUID(kGuid)), 1);
}

} // namespace
