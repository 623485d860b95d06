// Characters of an input method: fcitx5 with pinyin, where it is installed.

#include "tests/platform/window/X11Support.h"
#include "tests/support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace {

using namespace test;

class X11MethodTest : public X11Test
{
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists("/usr/bin/fcitx5") ||
            !std::filesystem::exists("/usr/share/fcitx5/inputmethod/pinyin.conf"))
            GTEST_SKIP() << "fcitx5 with pinyin isn't installed";
        Begin();
        std::filesystem::create_directories(m_home.Path(".config/fcitx5"));
        std::ofstream(m_home.Path(".config/fcitx5/profile"))
            << "[Groups/0]\nName=Default\nDefault Layout=us\nDefaultIM=pinyin\n"
               "[Groups/0/Items/0]\nName=pinyin\n[GroupOrder]\n0=Default\n";
        std::ofstream(m_home.Path(".config/fcitx5/config")) << "[Behavior]\nActiveByDefault=True\n";
        StartMethod();
        setenv("XMODIFIERS", "@im=fcitx", 1);
        ASSERT_TRUE(KXHost::UseMemoryDesktop() && KXHost::UseDisplay(server->Name().c_str()));
    }
    void TearDown() override
    {
        unsetenv("XMODIFIERS");
        X11Test::TearDown();
    }
    void StartMethod()
    {
        const std::string home = m_home.Path();
        const std::vector<std::string> env{"HOME=" + home,
                                           "XDG_CONFIG_HOME=" + home + "/.config",
                                           "XDG_DATA_HOME=" + home,
                                           "XDG_RUNTIME_DIR=" + home,
                                           "DBUS_SESSION_BUS_ADDRESS=unix:path=" + home + "/bus",
                                           "DISPLAY=" + server->Name()};
        if (!m_bus)
            m_bus.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork",
                                                   "--address=unix:path=" + home + "/bus"},
                          env);
        ASSERT_TRUE(Await([&] { return std::filesystem::exists(home + "/bus"); }));
        m_method.emplace(
            std::vector<std::string>{"fcitx5", "--disable",
                                     "wayland,waylandim,notifications,notificationitem,ibusfrontend"},
            env);
        ASSERT_TRUE(Await([&] { return !outside->Property(outside->Root(), "XIM_SERVERS").empty(); }));
    }
    void Type(const std::string& keys)
    {
        for (const char ch : keys) {
            const xcb_keycode_t code = outside->KeyOf(static_cast<xcb_keysym_t>(ch));
            outside->Key(code, true);
            outside->Key(code, false);
        }
    }

    // Types "n" until the method takes it: until it has the window, letters are letters.
    void AwaitMethod(ColorWindow& window)
    {
        ASSERT_TRUE(Pump([&] {
            window.heard.clear();
            Type("n");
            const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
            while (window.heard.empty() && std::chrono::steady_clock::now() < end)
                for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);)
                    DispatchMessageA(&msg);
            return window.heard.find("char") == std::string::npos;
        }));
    }

    const TempDir m_home;
    std::optional<Program> m_bus;
    std::optional<Program> m_method;
};

TEST_F(X11MethodTest, AMethodMayGoAndComeBack)
{
    ColorWindow window(kRed, {50, 60, 250, 160}, WS_POPUP, "window");
    ShowSeen(window, kRed, 100, 100);
    AwaitMethod(window);
    m_method.reset();
    EXPECT_TRUE(Pump([&] {
        Type("n");
        return window.heard.find("char 110") != std::string::npos;
    })) << "the keys are the window's again";
    StartMethod();
    AwaitMethod(window);
}

} // namespace
