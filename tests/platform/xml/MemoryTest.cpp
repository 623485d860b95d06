#include "tests/support/Test.h"

namespace {

// The child says on its output how it went.
TEST(XmlMemory, EachAllocationMayFail)
{
    const test::TempDir dir;
    EXPECT_EQ(test::Child("XmlMemoryChild", {dir.Path("x"), dir.Win("x").GetString()}).Wait(), 0);
}

} // namespace
