#include "tests/net/Journal.h"
#include "tests/platform/window/Support.h"
#include "tests/support/RawServer.h"

namespace {

// Windows hear of a download through their thread's queue, with what fits a message. One that is gone is no
// failure.
TEST(WindowNotices, ArriveInTheWindowsThread)
{
    const std::string body(5000, 'b');
    test::RawServer server(
        test::RawServer::Answering("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + body));
    const HWND hWnd = test::Make(), hGone = test::Make();
    DestroyWindow(hGone);
    test::Manager manager;
    manager.AddTask(server.Url().c_str(), "", hGone);
    const unsigned int id = manager.AddTask(server.Url().c_str(), "", hWnd);
    std::vector<MSG> messages;
    MSG msg;
    do {
        ASSERT_GT(GetMessageA(&msg, hWnd, 2029, 2032), 0);
        EXPECT_EQ(msg.hwnd, hWnd);
        EXPECT_EQ(msg.wParam, id);
        messages.push_back(msg);
    } while (msg.message != 2031);
    DestroyWindow(hWnd);
    ASSERT_GE(messages.size(), 5u);
    EXPECT_EQ(messages.front().message, 2029u);
    EXPECT_EQ(messages.front().lParam, 5000);
    EXPECT_EQ(messages.back().lParam, 0);
    LPARAM received = 0;
    for (std::size_t n = 1; n + 1 < messages.size(); ++n) {
        EXPECT_EQ(messages[n].message, 2030u);
        EXPECT_GT(messages[n].lParam, received);
        received = messages[n].lParam;
    }
    EXPECT_EQ(received, 5000);
}

} // namespace
