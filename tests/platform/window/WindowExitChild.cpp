// Says nothing if windows and messages behave while static objects are destroyed: a thread that waits for
// the main thread's window is released, and nothing crashes or hangs afterwards.

#include "include/platform/Host.h"
#include "include/platform/MessageBox.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Check.h"

using namespace test;

namespace {

struct AtExit
{
    HWND hMain = nullptr;
    std::unique_ptr<Sender> pSender;

    ~AtExit()
    {
        Check(!IsWindow(hMain) && !PostMessage(hMain, WM_USER, 0, 0), "the main thread's window is left");
        Check(pSender->Join() == 0, "the sender was not released");
        const WindowThread living;
        Check(SendMessageA(living.Window(), kPing, 0, 0) == 1, "no answer from a living thread");
        Check(!Make(), "a window was made");
        int nSeen = 0;
        Check(Walk([&](HWND) { return ++nSeen; }) && nSeen == 1, "no walk");
        Check(AfxMessageBox("late") == IDOK && KXHost::TakeMessageBoxes().size() == 1, "no message box");
    }
};

AtExit g_atExit; // built before the library's first use, so destroyed after whatever that built

} // namespace

int main()
{
    g_atExit.hMain = Make();
    g_atExit.pSender = std::make_unique<Sender>(g_atExit.hMain, kPing);
    InThread([] { g_atExit.pSender->AwaitWaiting(); }); // not on this thread, which would serve it
    return 0;
}
