#include "tests/support/TempDir.h"

#include <gtest/gtest.h>

// The user's home, registry, zone and network stay out of every test.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    // This program again, for a death test, has the home of the one that started it: it ends in the midst.
    constexpr const char* pszMark = "KX_TEST_HOME";
    std::optional<test::TempDir> home;
    if (!std::getenv(pszMark)) {
        home.emplace();
        for (const char* pszName : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", pszMark})
            setenv(pszName, home->Path().c_str(), 1);
    }
    setenv("TZ", "UTC0", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("KX_DEBUG");
    for (const char* pszName : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                                "no_proxy", "NO_PROXY", "CURL_CA_BUNDLE", "SSL_CERT_FILE", "SSL_CERT_DIR"})
        unsetenv(pszName);
    unsetenv("DISPLAY"); // windows appear in memory, not on the developer's screen
    return RUN_ALL_TESTS();
}
