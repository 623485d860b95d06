// Says nothing if the desktop is the expected one, a forked child doesn't disturb its parent's, and the
// process ends with a window there, whose handle is harmless while static objects are destroyed.

#include "include/platform/Host.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Check.h"

using namespace test;

namespace {

struct AtExit
{
    HWND window = nullptr;
    ~AtExit()
    {
        ShowWindow(window, SW_HIDE);
        SetWindowTextA(window, "late");
        Check(!Make(), "a window was made");
    }
} g_atExit;

} // namespace

int main(int, char** argv)
{
    const bool memory = argv[1] == std::string("memory");
    Check(KXHost::IsMemoryDesktop() == memory, "another desktop");
    g_atExit.window = Make(nullptr, WS_POPUP | WS_VISIBLE);
    Check(g_atExit.window, "no window");
    const pid_t pid = fork();
    if (pid == 0) std::exit(0); // with its static objects
    int status = -1;
    waitpid(pid, &status, 0);
    Check(status == 0, "the child failed");
    Check(DestroyWindow(g_atExit.window), "the window is gone");
    g_atExit.window = Make(nullptr, WS_POPUP | WS_VISIBLE);
    Check(g_atExit.window, "no second window");
    const HDC desktop = GetDC(nullptr);
    Check((GetPixel(desktop, 5, 5) == DESKTOP_COLOR) == memory, "the server is lost");
    ReleaseDC(nullptr, desktop);
    return 0;
}
