#include "include/platform/Host.h"
#include "platform/window/headless/HeadlessDesktop.h"

using kx::window::HeadlessDesktop;

std::vector<KXHost::MessageBoxRecord> KXHost::TakeMessageBoxes()
{
    return HeadlessDesktop::Instance().TakeMessageBoxes();
}

HWND KXHost::AddForeignWindow(DWORD dwProcessId, bool bVisible)
{
    if (dwProcessId == 0) return nullptr;
    // A process's first thread has the process's number.
    return HeadlessDesktop::Instance().AddForeign({dwProcessId, dwProcessId, bVisible});
}

std::vector<KXHost::SentMessage> KXHost::TakeForeignMessages(HWND hWnd)
{
    return HeadlessDesktop::Instance().TakeMessages(hWnd);
}

void KXHost::RemoveForeignWindow(HWND hWnd)
{
    HeadlessDesktop::Instance().RemoveForeign(hWnd);
}
