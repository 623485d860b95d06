#include "tests/support/TempDir.h"

#include <cstdlib>
#include <gtest/gtest.h>

// The user's home, registry and zone stay out of every test.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const test::TempDir home;
    setenv("HOME", home.Path().c_str(), 1);
    setenv("XDG_CONFIG_HOME", home.Path().c_str(), 1);
    setenv("XDG_DATA_HOME", home.Path().c_str(), 1);
    setenv("TZ", "UTC0", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("KX_DEBUG");
    return RUN_ALL_TESTS();
}
