// Ends with code 0 if windows and messages behave while static objects are destroyed: a thread that waits for
// the main thread's window is released, and nothing crashes or hangs afterwards.

#include "include/platform/Host.h"
#include "include/platform/MessageBox.h"
#include "tests/platform/window/Support.h"

#include <cstdio>
#include <unistd.h>

namespace {

struct AtExit
{
    HWND hMain = nullptr, hSender = nullptr;
    std::binary_semaphore ready{0};
    LRESULT lAnswer = -1;
    std::thread sender;

    ~AtExit()
    {
        const auto check = [](bool bGood, const char* pszWhat) {
            if (bGood) return;
            std::fprintf(stderr, "%s\n", pszWhat);
            _exit(1);
        };
        check(!IsWindow(hMain) && !PostMessage(hMain, WM_USER, 0, 0), "the main thread's window is left");
        check(SendMessageA(hSender, WM_NCCREATE, 0, 0) == 1, "no answer from a living thread");
        PostThreadMessageA(GetWindowThreadProcessId(hSender, nullptr), WM_QUIT, 0, 0);
        sender.join();
        check(lAnswer == 0, "the sender was not released");
        check(!test::Make() && !IsWindow(hSender), "a window is left");
        int visited = 0;
        const auto count = [](HWND, long lParam) { return ++*reinterpret_cast<int*>(lParam); };
        KXHost::AddForeignWindow(5, true);
        check(EnumDesktopWindows(nullptr, count, reinterpret_cast<long>(&visited)) && visited == 1,
              "no walk");
        check(AfxMessageBox("late") == IDOK && KXHost::TakeMessageBoxes().size() == 1, "no message box");
    }
};

AtExit g_atExit; // built before the library's first use, so destroyed after whatever that built

} // namespace

int main()
{
    g_atExit.hMain = test::Make();
    g_atExit.sender = std::thread([] {
        g_atExit.hSender = test::Make();
        g_atExit.ready.release();
        g_atExit.lAnswer = SendMessageA(g_atExit.hMain, WM_NCCREATE, 0, 0);
        MSG msg;
        while (GetMessageA(&msg, nullptr, 0, 0) != 0)
            DispatchMessageA(&msg);
    });
    g_atExit.ready.acquire();
    // Answered as soon as the thread waits for the main thread, which asks for no messages.
    std::thread([] { SendMessageA(g_atExit.hSender, WM_NULL, 0, 0); }).join();
    return 0;
}
