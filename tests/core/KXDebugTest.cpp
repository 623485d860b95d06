#include "KXDebug.h"
#include "tests/support/Child.h"
#include "tests/support/Host.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Debug, PrintsFormattedAndCutsAtItsBuffer)
{
    const test::DebugText debug;
    EXPECT_EQ(KXPrintDebugStr("%s=%d\n", "n", 5), 4);
    EXPECT_EQ(KXPrintDebugStr("%s", ""), 0);
    EXPECT_EQ(debug.Text(), "n=5\n");
    EXPECT_EQ(KXPrintDebugStr("%s", std::string(5000, 'x').c_str()), 1023);
    EXPECT_EQ(debug.Text().size(), 4u + 1023);
}

// What goes first at the end has nothing that still needs what goes later.
TEST(Debug, SingletonsAnnounceThemselvesAndEndInOrder)
{
    test::Child child("UnloadChild", {}, {"KX_DEBUG=1", "DISPLAY="}, true);
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(child.ErrorText(), "loaded\n"
                                 "window: DISPLAY names no display; windows appear on a desktop in memory\n"
                                 "CKXFileSystem construction!\n" // the skins ask for it
                                 "CKXSkinResManager Construction!\n"
                                 "CKXLogSys Construction!\n"
                                 "CKXLanResManager Construction!\n"
                                 "end of main\n"
                                 "CKXSkinResManager Deconstruction!\n"
                                 "CKXLanResManager Deconstruction!\n"
                                 "CKXLogSys Deconstruction!\n"
                                 "CKXFileSystem destroy!\n");
}

} // namespace
