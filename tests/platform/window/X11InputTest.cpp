// The mouse and the keys of an X server as messages.

#include "tests/platform/window/X11Support.h"

namespace {

using namespace test;
using testing::HasSubstr;

struct X11InputTest : X11Test
{
    // Runs what happens outside, and gives what the window hears up to the word expected.
    std::string Hear(ColorWindow& window, const std::string& last, const std::function<void()>& act)
    {
        window.heard.clear();
        act();
        EXPECT_TRUE(Pump([&] { return window.Heard(last); })) << window.heard;
        return window.heard;
    }
    void ExpectAccent(ColorWindow& window)
    {
        const xcb_keycode_t dead = outside->Assign({0xFE51}); // the acute accent
        const std::string accented = Hear(window, "keyup 69", [&] {
            outside->Type(dead);
            outside->TypeSymbol('e');
        });
        EXPECT_EQ(accented, "key 69 1,0;char 168 1,0;char 166 1,0;keyup 69 1,0;");
    }
};

TEST_F(X11InputTest, TheMouseIsHeardWithinTheWindow)
{
    outside->MoveMouse(400, 400);
    SeenWindow window(*this, kRed, {50, 60, 150, 160});
    EXPECT_EQ(Hear(window, "move", [&] { outside->MoveMouse(60, 75); }), "move 0 10,15;");
    const std::string dragged = Hear(window, "up", [&] {
        outside->Button(1, true);
        outside->MoveMouse(40, 70);
        outside->Button(1, false);
    });
    EXPECT_EQ(dragged, "down 1 10,15;move 1 -10,10;up 0 -10,10;");
    const std::string clicked = Hear(window, "keyup", [&] {
        outside->MoveMouse(149, 159);
        for (const int n : {2, 4, 5}) // the middle one, and the wheel's
            outside->Click(n);
        outside->Key(outside->KeyOf(0xFFE3), true); // Control
        outside->Click(3);
        outside->Key(outside->KeyOf(0xFFE3), false);
    });
    EXPECT_EQ(clicked,
              "move 0 99,99;mdown 16 99,99;mup 0 99,99;wheel 7864320 149,159;wheel 4287102976 149,159;"
              "key 17 1,0;rdown 10 99,99;rup 8 99,99;keyup 17 1,0;");
}

// However long a thread looks away, its queue holds one motion.
TEST_F(X11InputTest, MotionsThatNobodyTookAreOne)
{
    SeenWindow window(*this, kRed, {0, 0, 400, 400});
    const std::string heard = Hear(window, "up", [&] {
        for (int i = 0; i < 300; ++i)
            outside->MoveMouse(50 + i, 60);
        outside->Click();
        // All of it has come when the button has, and only then is a message taken.
        MSG msg;
        ASSERT_TRUE(
            Soon([&] { return PeekMessageA(&msg, window.handle, WM_LBUTTONUP, WM_LBUTTONUP, PM_NOREMOVE); }));
    });
    EXPECT_EQ(heard, "move 0 349,60;down 1 349,60;up 0 349,60;");
}

TEST_F(X11InputTest, KeysAreHeardByWhoHasTheFocus)
{
    SeenWindow window(*this, kRed, {0, 0, 100, 100}, WS_POPUP, "window");
    SeenWindow other(*this, kBlue, {200, 0, 300, 100}, WS_CAPTION);
    EXPECT_EQ(GetFocus(), other.handle);
    Hear(window, "up", [&] { outside->ClickAt(50, 50); });
    ASSERT_TRUE(Pump([&] { return outside->Focused() == outside->Find("window"); }));
    EXPECT_EQ(GetFocus(), window.handle);

    const xcb_keycode_t shift = outside->KeyOf(0xFFE1);
    const std::string shifted = Hear(window, "keyup 16", [&] {
        outside->Key(shift, true);
        outside->TypeSymbol('b');
        outside->Key(shift, false);
    });
    EXPECT_EQ(shifted, "key 16 1,0;key 66 1,0;char 66 1,0;keyup 66 1,0;keyup 16 1,0;");
    // The symbols of keys, their codes, and their characters, or 0.
    const auto expect = [&](std::initializer_list<std::tuple<xcb_keysym_t, int, int>> keys) {
        for (const auto& [symbol, code, character] : keys) {
            const std::string key = std::to_string(code) + " 1,0;";
            const std::string text = character ? "char " + std::to_string(character) + " 1,0;" : "";
            EXPECT_EQ(Hear(window, "keyup", [&, s = symbol] { outside->TypeSymbol(s); }),
                      "key " + key + text + "keyup " + key);
        }
    };
    // Return, Escape and Delete; Left and Insert; Caps Lock.
    expect({{'7', 55, 55}, {0xFF0D, 13, 13}, {0xFF1B, 27, 27}, {0xFFFF, 46, 0}});
    expect({{0xFF51, 37, 0}, {0xFF63, 45, 0}, {';', 186, 59}, {'\'', 222, 39}});
    expect({{0xFFE5, 20, 0}, {'a', 65, 65}});
    EXPECT_EQ(GetKeyState(VK_CAPITAL) & 1, 1);
    // Caps Lock again, and the number block's 7 and 1; with Num Lock its 7, 9, 0 and point, and without its
    // plus, and F5.
    expect({{0xFFE5, 20, 0}, {0xFF95, 36, 0}, {0xFF9C, 35, 0}, {0xFF7F, 144, 0}});
    expect({{0xFF95, 103, 55}, {0xFF9A, 105, 57}, {0xFF9E, 96, 48}, {0xFF9F, 110, 46}});
    expect({{0xFF7F, 144, 0}, {0xFFAB, 107, 43}, {0xFFC2, 116, 0}});
    EXPECT_THAT(other.heard, testing::Not(HasSubstr("key")));
}

TEST_F(X11InputTest, CharactersComeInTheCodePageAlsoOfSeveralKeys)
{
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
    const xcb_keycode_t key = outside->Assign({0x01000000 + 0x4E2D}); // U+4E2D, which has no number as a key
    EXPECT_EQ(Hear(window, "208", [&] { outside->Type(key); }), "char 214 1,0;char 208 1,0;");
    ExpectAccent(window);
    const xcb_keycode_t compose = outside->Assign({0xFF20});
    const CodePage utf8(CP_UTF8);
    EXPECT_EQ(Hear(window, "173", [&] { outside->Type(key); }), "char 228 1,0;char 184 1,0;char 173 1,0;");
    const std::string composed = Hear(window, "keyup 69", [&] {
        outside->Type(compose);
        outside->TypeSymbol('\'');
        outside->TypeSymbol('e');
    });
    EXPECT_THAT(composed, HasSubstr("key 69 1,0;char 195 1,0;char 169 1,0;"));
    EXPECT_THAT(composed, testing::Not(HasSubstr("char 39")));
    const xcb_keycode_t blank = outside->Assign({0}); // a key of nothing
    const std::string plain = Hear(window, "keyup 69", [&] {
        outside->Type(blank);
        outside->TypeSymbol('e');
    });
    EXPECT_EQ(plain, "key 69 1,0;char 101 1,0;keyup 69 1,0;");
}

TEST_F(X11InputTest, WithoutALocaleDeadKeysAreTheUsualOnes)
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        unsetenv(name);
    Begin();
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
    ExpectAccent(window);
}

TEST_F(X11InputTest, AKeyKeepsItsNumberInALayoutOfOtherLetters)
{
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
    const xcb_keycode_t letter = outside->Assign({'q', 'Q', 0x6CA, 0x6EA}); // in the second one U+0439
    const xcb_keycode_t next = outside->Assign({0xFE08});                   // the next layout
    const auto type = [&] { return Hear(window, "keyup", [&] { outside->Type(letter); }); };
    EXPECT_EQ(type(), "key 81 1,0;char 113 1,0;keyup 81 1,0;");
    outside->Type(next);
    EXPECT_EQ(type(), "key 81 1,0;char 167 1,0;char 219 1,0;keyup 81 1,0;");
    const xcb_keycode_t semicolon = outside->Assign({0x6D6}, 47); // U+0436: by its place alone
    EXPECT_EQ(Hear(window, "keyup", [&] { outside->Type(semicolon); }),
              "key 186 1,0;char 167 1,0;char 216 1,0;keyup 186 1,0;");
}

TEST_F(X11InputTest, AUsersOtherLayoutIsHeardOf)
{
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
    const xcb_keycode_t key = outside->KeyOf('y');
    EXPECT_THAT(Hear(window, "keyup", [&] { outside->Type(key); }), HasSubstr("key 89 1,0;char 121 1,0;"));
    ASSERT_EQ(std::system(("setxkbmap -display " + server->Name() + " de").c_str()), 0);
    EXPECT_THAT(Hear(window, "keyup", [&] { outside->Type(key); }), HasSubstr("key 90 1,0;char 122 1,0;"));
}

TEST_F(X11InputTest, AHeldKeyRepeats)
{
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
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

TEST_F(X11InputTest, TheMouseIsCapturedAndHeardToLeave)
{
    SeenWindow first(*this, kRed, {0, 0, 100, 100}, WS_POPUP, "first"),
        second(*this, kBlue, {200, 0, 300, 100});
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

// IDC_NO isn't asked for: its cross may be the screen's own cursor.
TEST_F(X11InputTest, EachCursorLooksDifferent)
{
    outside->MoveMouse(50, 50);
    std::set<std::string> seen{outside->Cursor()}; // the screen's own
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
    EXPECT_TRUE(Soon([&] { return !seen.contains(outside->Cursor()); })); // before the mouse has moved
    outside->MoveMouse(51, 50);
    ASSERT_TRUE(Pump([&] { return window.Heard("move"); }));
    for (const char* name : {IDC_ARROW, IDC_IBEAM, IDC_WAIT, IDC_CROSS, IDC_SIZENWSE, IDC_SIZENESW,
                             IDC_SIZEWE, IDC_SIZENS, IDC_SIZEALL, IDC_HAND}) {
        SetCursor(LoadCursorA(nullptr, name));
        EXPECT_TRUE(Soon([&] { return seen.insert(outside->Cursor()).second; })) << seen.size();
    }
}

TEST_F(X11InputTest, TheFocusGoesWhereTheServerGivesIt)
{
    SeenWindow first(*this, kRed, {0, 0, 100, 100}, WS_CAPTION, "first"),
        second(*this, kBlue, {200, 0, 300, 100});
    ASSERT_TRUE(Pump([&] { return GetFocus() == second.handle; }));
    // Both ask again and again, and the last one has it.
    for (int i = 0; i < 20; ++i)
        SetFocus(i % 2 ? first.handle : second.handle);
    ASSERT_TRUE(Pump([&] { return outside->Focused() == outside->Find("first"); }));
    EXPECT_THAT(Hear(first, "keyup", [&] { outside->TypeSymbol('a'); }), HasSubstr("key 65"));
    EXPECT_EQ(GetFocus(), first.handle);
    outside->Focus(0);
    EXPECT_TRUE(Pump([&] { return !GetFocus(); }));
    EXPECT_THAT(first.heard, HasSubstr("unfocus"));

    // Another program has it, and this thread hasn't heard of that yet.
    SetFocus(first.handle);
    ASSERT_TRUE(Pump([&] { return outside->Focused() == outside->Find("first"); }));
    const xcb_window_t others = outside->Cover(400, 0, 50, 50, kGreen);
    outside->Focus(others);
    outside->Place(outside->Find("first"), 0, 200, 100, 100);
    EXPECT_TRUE(Soon([&] { return PlaceOf(first.handle).top == 200; })) << "what was told before is known";
    SetFocus(nullptr);
    SeenAt(1, 1); // the server has answered
    EXPECT_EQ(outside->Focused(), others);
}

// A window that is hidden again before the server has shown it has no claim any more.
TEST_F(X11InputTest, TheFocusWaitsForItsWindowToBeShown)
{
    ColorWindow window(kRed, {0, 0, 100, 100}, WS_POPUP, "window");
    SetFocus(window.handle);
    ShowWindow(window.handle, SW_SHOWNA);
    const xcb_window_t id = outside->Find("window");
    EXPECT_TRUE(Pump([&] { return outside->Focused() == id; }));
    ShowWindow(window.handle, SW_HIDE);
    ASSERT_TRUE(Pump([&] { return outside->Focused() != id; }));
    {
        XClient busy(server->Name());
        busy.Grab();
        SetFocus(window.handle);
        ShowWindow(window.handle, SW_SHOWNA);
        ShowWindow(window.handle, SW_HIDE);
    }
    ShowWindow(window.handle, SW_SHOWNA);
    // All that the server told of the showing has been heard when the window is put there again.
    outside->Destroy(outside->Cover(0, 0, 100, 100, kGreen));
    EXPECT_TRUE(Shows(50, 50, kRed));
    EXPECT_NE(outside->Focused(), id);
}

} // namespace
