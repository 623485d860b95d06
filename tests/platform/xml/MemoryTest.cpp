#include "tests/support/Test.h"

namespace {

// The child says on its output how it went.
TEST(XmlMemory, EachAllocationMayFail)
{
    const test::TempDir dir;
    EXPECT_EQ(test::Child("XmlMemoryChild", {dir.Path("x"), dir.Win("x").GetString()}).Wait(), 0);
}

TEST(XmlMemory, AFileIsSavedWholeOrNotAtAll)
{
#if defined(KX_SANITIZED)
    GTEST_SKIP() << "a sanitizer takes address space of its own";
#endif
    const test::TempDir dir;
    EXPECT_EQ(test::Child("XmlMemoryChild", {dir.Path("x"), dir.Win("x").GetString(), "limit"}).Wait(), 0);
}

} // namespace
