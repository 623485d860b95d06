// Says nothing if the desktop is the expected one, a forked child doesn't disturb its parent's, and windows
// and messages behave while static objects are destroyed: the main thread's window is gone, a thread that
// waits for it is released, and nothing crashes or hangs afterwards.

#include "include/platform/Host.h"
#include "include/platform/MessageBox.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Check.h"

using namespace test;

namespace {

struct AtExit
{
    bool bMemory = false;
    HWND hMain = nullptr;
    std::unique_ptr<Sender> pSender;

    ~AtExit()
    {
        ShowWindow(hMain, SW_HIDE);
        SetWindowTextA(hMain, "late");
        Check(!Make(), "a window was made");
        if (!pSender) return; // in the forked process
        Check(!IsWindow(hMain) && !PostMessage(hMain, WM_USER, 0, 0), "the main thread's window is left");
        Check(pSender->Join() == 0, "the sender was not released");
        if (!bMemory) return;
        const WindowThread living;
        Check(SendMessageA(living.Window(), kPing, 0, 0) == 1, "no answer from a living thread");
        int nSeen = 0;
        Check(Walk([&](HWND) { return ++nSeen; }) && nSeen == 1, "no walk");
        Check(AfxMessageBox("late") == IDOK && KXHost::TakeMessageBoxes().size() == 1, "no message box");
    }
};

AtExit g_atExit; // built before the library's first use, so destroyed after whatever that built

} // namespace

int main(int, char** argv)
{
    const bool bMemory = argv[1] == std::string("memory");
    Check(KXHost::IsMemoryDesktop() == bMemory, "another desktop");
    g_atExit.bMemory = bMemory;
    g_atExit.hMain = Make(nullptr, WS_POPUP | WS_VISIBLE);
    Check(g_atExit.hMain, "no window");
    const pid_t pid = fork();
    if (pid == 0) std::exit(0); // with its static objects
    int status = -1;
    waitpid(pid, &status, 0);
    Check(status == 0, "the child failed");
    Check(DestroyWindow(g_atExit.hMain), "the window is gone");
    g_atExit.hMain = Make(nullptr, WS_POPUP | WS_VISIBLE);
    Check(g_atExit.hMain, "no second window");
    const HDC desktop = GetDC(nullptr);
    Check((GetPixel(desktop, 5, 5) == DESKTOP_COLOR) == bMemory, "the server is lost");
    ReleaseDC(nullptr, desktop);
    g_atExit.pSender = std::make_unique<Sender>(g_atExit.hMain, kPing);
    InThread([] { g_atExit.pSender->AwaitWaiting(); }); // not on this thread, which would serve it
    return 0;
}
