#include "tests/net/Journal.h"
#include "tests/platform/window/Support.h"
#include "tests/support/RawServer.h"

namespace {

// A window of the test's own thread.
struct NoticeWindow
{
    NoticeWindow() : hWnd(test::Make()) {}
    ~NoticeWindow() { DestroyWindow(hWnd); }
    const HWND hWnd;
};

// Windows hear of a download through their thread's queue, with what fits a message.
TEST(WindowNotices, ArriveInTheWindowsThread)
{
    const std::string body(5000, 'b');
    test::RawServer server(
        test::RawServer::Answering("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + body));
    const NoticeWindow window;
    ASSERT_TRUE(window.hWnd);
    test::Manager manager;
    const unsigned int id = manager.AddTask(server.Url().c_str(), "", window.hWnd);
    std::vector<MSG> messages;
    MSG msg;
    do {
        ASSERT_GT(GetMessageA(&msg, window.hWnd, 2029, 2032), 0);
        EXPECT_EQ(msg.hwnd, window.hWnd);
        EXPECT_EQ(msg.wParam, id);
        messages.push_back(msg);
    } while (msg.message != 2031);
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

// A window that is gone, or never was, is no failure.
TEST(WindowNotices, NeedNoWindow)
{
    test::RawServer server(test::RawServer::Answering("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nhi"));
    const NoticeWindow window;
    test::Manager manager;
    HWND gone = nullptr;
    {
        const NoticeWindow other;
        gone = other.hWnd;
    }
    manager.AddTask(server.Url().c_str(), "", gone);
    const unsigned int id = manager.AddTask(server.Url().c_str(), "", window.hWnd);
    MSG msg;
    do
        ASSERT_GT(GetMessageA(&msg, window.hWnd, 2029, 2032), 0);
    while (msg.message != 2031);
    EXPECT_EQ(msg.wParam, id);
}

} // namespace
