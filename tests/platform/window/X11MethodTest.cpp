// Characters of an input method: fcitx5 with pinyin.

#include "tests/platform/window/X11Support.h"

namespace {

using namespace test;

struct X11MethodTest : X11Test
{
    void SetUp() override
    {
        if (!std::filesystem::exists("/usr/bin/fcitx5") ||
            !std::filesystem::exists("/usr/share/fcitx5/inputmethod/pinyin.conf"))
            GTEST_SKIP() << "fcitx5 with pinyin isn't installed";
        Begin();
        m_home.Write(".config/fcitx5/profile",
                     "[Groups/0]\nName=Default\nDefault Layout=us\nDefaultIM=pinyin\n"
                     "[Groups/0/Items/0]\nName=pinyin\n[GroupOrder]\n0=Default\n");
        m_home.Write(".config/fcitx5/config", "[Behavior]\nActiveByDefault=True\n");
        StartMethod();
        ASSERT_TRUE(KXHost::UseMemoryDesktop()); // the desktop's thread reads the environment
        setenv("XMODIFIERS", "@im=fcitx", 1);
        ASSERT_TRUE(KXHost::UseDisplay(server->Name().c_str()));
    }
    void TearDown() override
    {
        X11Test::TearDown();
        unsetenv("XMODIFIERS");
    }
    void StartMethod()
    {
        const std::string home = m_home.Path();
        const std::string bus = "unix:path=" + home + "/bus";
        std::vector<std::string> env{"HOME=" + home, "XDG_CONFIG_HOME=" + home + "/.config"};
        env.insert(env.end(), {"XDG_DATA_HOME=" + home, "XDG_RUNTIME_DIR=" + home});
        env.insert(env.end(), {"DBUS_SESSION_BUS_ADDRESS=" + bus, "DISPLAY=" + server->Name()});
        const std::vector<std::string> daemon{"dbus-daemon", "--session", "--nofork", "--address=" + bus};
        if (!m_bus) m_bus.emplace(daemon, env);
        ASSERT_TRUE(Soon([&] { return std::filesystem::exists(home + "/bus"); }));
        const std::string others = "wayland,waylandim,notifications,notificationitem,ibusfrontend";
        m_method.emplace(std::vector<std::string>{"fcitx5", "--disable", others}, env);
        ASSERT_TRUE(Soon([&] { return outside->HasOwner("@server=fcitx"); }));
    }
    // The method leaves events that came while it waited for an answer until the next comes: a change of the
    // screen's resources, on which nothing depends.
    template <class Ready>
    bool PumpBoth(Ready ready)
    {
        return Pump([&] {
            outside->SetResources("");
            return ready();
        });
    }
    void Type(const std::string& keys)
    {
        for (const char ch : keys)
            outside->TypeSymbol(static_cast<xcb_keysym_t>(ch));
    }

    // Waits until the method says of itself what holds those words. One that has a window with the focus says
    // that it is at work, and has told the window so before.
    void AwaitMethod(const std::string& question = "State", const std::string& words = "int32 2")
    {
        const std::string ask = "dbus-send --bus=unix:path=" + m_home.Path() +
                                "/bus --print-reply --dest=org.fcitx.Fcitx5 /controller "
                                "org.fcitx.Fcitx.Controller1." +
                                question + " 2>/dev/null | grep -q '" + words + "'";
        ASSERT_TRUE(PumpBoth([&] { return std::system(ask.c_str()) == 0; }));
    }
    // The characters that a window heard; whether the keys' releases reach it is the method's choice.
    static std::string Characters(const ColorWindow& window)
    {
        std::string characters, word;
        for (std::istringstream heard(window.heard); std::getline(heard, word, ';');)
            if (word.starts_with("char ")) characters += word + ';';
        return characters;
    }
    // Types letters and a space, which takes the first that they may mean.
    void ExpectOf(ColorWindow& window, const std::string& keys, const std::string& heard)
    {
        window.heard.clear();
        Type(keys);
        Type(" ");
        EXPECT_TRUE(PumpBoth([&] { return Characters(window).size() >= heard.size(); })) << window.heard;
        EXPECT_EQ(Characters(window), heard);
    }

    const TempDir m_home;
    std::optional<Program> m_bus;
    std::optional<Program> m_method;
};

TEST_F(X11MethodTest, LettersBecomeChineseAtTheCaretAndTheMethodMayGoAndComeBack)
{
    SeenWindow window(*this, kRed, {50, 60, 250, 160}, WS_POPUP, "window");
    AwaitMethod();
    EXPECT_TRUE(SetCaretPos(70, 30));
    const std::string hello = "char 196 1,0;char 227 1,0;char 186 1,0;char 195 1,0;";
    Type("nihao");
    const xcb_window_t candidates = outside->Find("Fcitx5 Input Window");
    const auto appear = [&](int x, int y) { // at a place, or within a few pixels below
        const auto isThere = [&] {
            const RECT at = outside->PlaceOf(candidates);
            return at.left >= x && at.left < x + 30 && at.top >= y && at.top < y + 30;
        };
        EXPECT_TRUE(PumpBoth(isThere));
    };
    appear(120, 90);
    ExpectOf(window, "", hello);
    ExpectOf(window, "nihao", hello);
    Move(window.handle, 90, 80, 200, 100);
    Type("ni");
    appear(160, 110);
    ExpectOf(window, "hao", hello);

    SeenWindow other(*this, kBlue, {300, 60, 500, 160}, WS_POPUP, "other");
    ASSERT_TRUE(Pump([&] { return GetFocus() == other.handle; }));
    SetCaretPos(10, 10);
    Type("ni");
    appear(310, 70);
    ExpectOf(other, "hao", hello);

    // The focus moves on while keys are still being answered, and the last window has the method as before.
    for (int n = 0; n <= 20; ++n) {
        Type("n");
        outside->Focus(outside->Find(n % 2 ? "other" : "window"));
    }
    ASSERT_TRUE(Pump([&] { return GetFocus() == window.handle; }));
    ExpectOf(window, "nihao", hello);

    m_method.reset();
    ASSERT_TRUE(Soon([&] { return !outside->HasOwner("@server=fcitx"); }));
    window.heard.clear();
    outside->Key(outside->KeyOf('n'), true);
    EXPECT_TRUE(Pump([&] { return window.Heard("key 78 1,0;char 110 1,0;"); })) << window.heard;
    outside->Key(outside->KeyOf('n'), false);
    EXPECT_TRUE(Pump([&] { return window.Heard("keyup 78 1,0;"); })) << window.heard;
    StartMethod();
    AwaitMethod();
    ExpectOf(window, "nihao", hello);

    // Without the focus a window under the mouse hears its keys as they are.
    AwaitMethod("DebugInfo", "focus:1");
    outside->MoveMouse(100, 100);
    outside->Focus(XCB_INPUT_FOCUS_POINTER_ROOT);
    AwaitMethod("DebugInfo", "focus:0");
    window.heard.clear();
    Type("n");
    EXPECT_TRUE(Pump([&] { return window.Heard("key 78 1,0;char 110 1,0;keyup 78 1,0;"); })) << window.heard;
}

} // namespace
