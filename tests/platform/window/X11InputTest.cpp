// The mouse and the keys of an X server as messages.

#include "include/platform/Input.h"
#include "tests/platform/window/X11Support.h"
#include "tests/support/Host.h"

#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::HasSubstr;

class X11InputTest : public X11Test
{
protected:
    // Runs what happens outside, and gives what the window hears up to the word expected.
    std::string Hear(ColorWindow& window, const std::string& last, const std::function<void()>& act)
    {
        window.heard.clear();
        act();
        EXPECT_TRUE(Pump([&] { return window.Heard(last); })) << window.heard;
        return window.heard;
    }
};

TEST_F(X11InputTest, TheMouseIsHeardWithinTheWindow)
{
    ColorWindow window(kRed, {50, 60, 150, 160});
    outside->MoveMouse(400, 400);
    ShowSeen(window, kRed, 100, 100);
    EXPECT_EQ(Hear(window, "move", [&] { outside->MoveMouse(60, 75); }), "move 0 10,15;");
    EXPECT_EQ(Hear(window, "up",
                   [&] {
                       outside->Button(1, true);
                       outside->MoveMouse(40, 70);
                       outside->Button(1, false);
                   }),
              "down 1 10,15;move 1 -10,10;up 0 -10,10;");
    EXPECT_EQ(Hear(window, "keyup",
                   [&] {
                       outside->MoveMouse(149, 159);
                       for (const int n : {2, 4, 5}) { // the middle one, and the wheel's
                           outside->Click(n);
                       }
                       outside->Key(outside->KeyOf(0xFFE3), true); // Control
                       outside->Click(3);
                       outside->Key(outside->KeyOf(0xFFE3), false);
                   }),
              "move 0 99,99;mdown 16 99,99;mup 0 99,99;wheel 7864320 149,159;wheel 4287102976 149,159;key 17 "
              "1,0;rdown 10 99,99;rup 8 99,99;keyup 17 1,0;");
}

// However long a thread looks away, its queue holds one motion.
TEST_F(X11InputTest, MotionsThatNobodyTookAreOne)
{
    ColorWindow window(kRed, {0, 0, 400, 400});
    ShowSeen(window, kRed, 100, 100);
    const std::string heard = Hear(window, "up", [&] {
        for (int i = 0; i < 300; ++i)
            outside->MoveMouse(50 + i, 60);
        outside->Click();
        // All of it has come when the button has, and only then is a message taken.
        MSG msg;
        ASSERT_TRUE(Await(
            [&] { return PeekMessageA(&msg, window.handle, WM_LBUTTONUP, WM_LBUTTONUP, PM_NOREMOVE); }));
    });
    EXPECT_EQ(heard, "move 0 349,60;down 1 349,60;up 0 349,60;");
}

TEST_F(X11InputTest, KeysAreHeardByWhoHasTheFocus)
{
    ColorWindow window(kRed, {0, 0, 100, 100}, WS_POPUP, "window");
    ColorWindow other(kBlue, {200, 0, 300, 100}, WS_CAPTION);
    ShowSeen(window, kRed, 50, 50);
    ShowSeen(other, kBlue, 250, 50);
    EXPECT_EQ(GetFocus(), other.handle);
    Hear(window, "up", [&] {
        outside->MoveMouse(50, 50);
        outside->Click();
    });
    ASSERT_TRUE(Pump([&] { return outside->Focused() == outside->Find("window"); }));
    EXPECT_EQ(GetFocus(), window.handle);

    const xcb_keycode_t shift = outside->KeyOf(0xFFE1);
    EXPECT_EQ(Hear(window, "keyup", [&] { outside->Type(outside->KeyOf('a')); }),
              "key 65 1,0;char 97 1,0;keyup 65 1,0;");
    EXPECT_EQ(Hear(window, "keyup 16",
                   [&] {
                       outside->Key(shift, true);
                       outside->Type(outside->KeyOf('b'));
                       outside->Key(shift, false);
                   }),
              "key 16 1,0;key 66 1,0;char 66 1,0;keyup 66 1,0;keyup 16 1,0;");
    const auto last = [&](xcb_keysym_t symbol) {
        return Hear(window, "keyup", [&] { outside->Type(outside->KeyOf(symbol)); });
    };
    EXPECT_EQ(last('7'), "key 55 1,0;char 55 1,0;keyup 55 1,0;");
    EXPECT_EQ(last(0xFF0D), "key 13 1,0;char 13 1,0;keyup 13 1,0;");
    EXPECT_EQ(last(0xFF1B), "key 27 1,0;char 27 1,0;keyup 27 1,0;");
    EXPECT_EQ(last(0xFFFF), "key 46 1,0;keyup 46 1,0;");
    EXPECT_EQ(last(0xFF51), "key 37 1,0;keyup 37 1,0;");
    EXPECT_EQ(last(0xFF63), "key 45 1,0;keyup 45 1,0;"); // Insert
    EXPECT_EQ(last(';'), "key 186 1,0;char 59 1,0;keyup 186 1,0;");
    EXPECT_EQ(last('\''), "key 222 1,0;char 39 1,0;keyup 222 1,0;");
    EXPECT_EQ(last(0xFFE5), "key 20 1,0;keyup 20 1,0;"); // Caps Lock
    EXPECT_EQ(last('a'), "key 65 1,0;char 65 1,0;keyup 65 1,0;");
    EXPECT_EQ(GetKeyState(VK_CAPITAL) & 1, 1);
    EXPECT_EQ(last(0xFFE5), "key 20 1,0;keyup 20 1,0;");
    EXPECT_EQ(last(0xFF95), "key 36 1,0;keyup 36 1,0;");   // the number block's 7
    EXPECT_EQ(last(0xFF9C), "key 35 1,0;keyup 35 1,0;");   // its 1
    EXPECT_EQ(last(0xFF7F), "key 144 1,0;keyup 144 1,0;"); // Num Lock
    EXPECT_EQ(last(0xFF95), "key 103 1,0;char 55 1,0;keyup 103 1,0;");
    EXPECT_EQ(last(0xFF7F), "key 144 1,0;keyup 144 1,0;");
    EXPECT_EQ(last(0xFFAB), "key 107 1,0;char 43 1,0;keyup 107 1,0;");
    EXPECT_EQ(last(0xFFC2), "key 116 1,0;keyup 116 1,0;");
    EXPECT_THAT(other.heard, testing::Not(HasSubstr("key")));
}

TEST_F(X11InputTest, CharactersComeInTheCodePage)
{
    ColorWindow window(kRed, {0, 0, 100, 100});
    ShowSeen(window, kRed, 50, 50);
    const xcb_keycode_t key = outside->Assign(0x01000000 + 0x4E2D); // U+4E2D, which has no number as a key
    EXPECT_EQ(Hear(window, "208", [&] { outside->Type(key); }), "char 214 1,0;char 208 1,0;");
    const xcb_keycode_t dead = outside->Assign(0xFE51); // the acute accent
    EXPECT_EQ(Hear(window, "keyup 69",
                   [&] {
                       outside->Type(dead);
                       outside->Type(outside->KeyOf('e'));
                   }),
              "key 69 1,0;char 168 1,0;char 166 1,0;keyup 69 1,0;");
    const CodePage utf8(CP_UTF8);
    EXPECT_EQ(Hear(window, "173", [&] { outside->Type(key); }), "char 228 1,0;char 184 1,0;char 173 1,0;");
}

TEST_F(X11InputTest, AHeldKeyRepeats)
{
    ColorWindow window(kRed, {0, 0, 100, 100});
    ShowSeen(window, kRed, 50, 50);
    const xcb_keycode_t key = outside->KeyOf('a'), alt = outside->KeyOf(0xFFE9);
    const std::string heard = Hear(window, "again char 97 1,0;again key", [&] { outside->Key(key, true); });
    EXPECT_EQ(heard.substr(0, 27), "key 65 1,0;char 97 1,0;agai");
    outside->Key(key, false);
    Hear(window, "keyup", [] {});
    const std::string sys = Hear(window, "syskeyup 18", [&] {
        outside->Key(alt, true);
        outside->Type(key);
        outside->Key(alt, false);
    });
    EXPECT_EQ(sys, "syskey 18 1,0;syskey 65 1,0;syschar 97 1,0;syskeyup 65 1,0;syskeyup 18 1,0;");
}

TEST_F(X11InputTest, ComposeMakesOneCharacterOfThree)
{
    ColorWindow window(kRed, {0, 0, 100, 100});
    ShowSeen(window, kRed, 50, 50);
    const CodePage utf8(CP_UTF8);
    const xcb_keycode_t compose = outside->Assign(0xFF20);
    const std::string heard = Hear(window, "keyup 69", [&] {
        outside->Type(compose);
        outside->Type(outside->KeyOf('\''));
        outside->Type(outside->KeyOf('e'));
    });
    EXPECT_THAT(heard, HasSubstr("key 69 1,0;char 195 1,0;char 169 1,0;"));
    EXPECT_THAT(heard, testing::Not(HasSubstr("char 39")));
}

TEST_F(X11InputTest, TheMouseIsCapturedAndHeardToLeave)
{
    ColorWindow first(kRed, {0, 0, 100, 100}, WS_POPUP, "first"), second(kBlue, {200, 0, 300, 100});
    ShowSeen(first, kRed, 50, 50);
    ShowSeen(second, kBlue, 250, 50);
    outside->MoveMouse(50, 50);
    ASSERT_TRUE(Pump([&] { return first.Heard("move 0 50,50"); }));
    TRACKMOUSEEVENT track{.dwFlags = TME_LEAVE, .hwndTrack = first.handle};
    EXPECT_TRUE(TrackMouseEvent(&track));
    EXPECT_EQ(Hear(first, "leave", [&] { outside->MoveMouse(150, 50); }), "leave 0 0,0;");
    outside->MoveMouse(50, 50);
    // Only once.
    EXPECT_EQ(Hear(first, "move", [&] { outside->MoveMouse(60, 50); }).find("leave"), std::string::npos);

    SetCapture(second.handle);
    Hear(second, "move 0 -140,60", [&] { outside->MoveMouse(60, 60); });
    EXPECT_THAT(Hear(second, "lost", [&] { EnableWindow(second.handle, 0); }), HasSubstr("lost 0 0,0;"));
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(X11InputTest, TheFocusGoesWhereTheServerGivesIt)
{
    ColorWindow first(kRed, {0, 0, 100, 100}, WS_CAPTION, "first"), second(kBlue, {200, 0, 300, 100});
    ShowSeen(first, kRed, 50, 50);
    ShowSeen(second, kBlue, 250, 50);
    ASSERT_TRUE(Pump([&] { return GetFocus() == second.handle; }));
    // Both ask again and again, and the last one has it.
    for (int i = 0; i < 20; ++i)
        SetFocus(i % 2 ? first.handle : second.handle);
    ASSERT_TRUE(Pump([&] { return outside->Focused() == outside->Find("first"); }));
    EXPECT_THAT(Hear(first, "keyup", [&] { outside->Type(outside->KeyOf('a')); }), HasSubstr("key 65"));
    EXPECT_EQ(GetFocus(), first.handle);
    outside->Focus(0);
    EXPECT_TRUE(Pump([&] { return !GetFocus(); }));
    EXPECT_THAT(first.heard, HasSubstr("unfocus"));
}

} // namespace
