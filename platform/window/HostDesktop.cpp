#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "platform/files/WholeFile.h"
#include "platform/gdiplus/Encode.h"
#include "platform/gdiplus/Graphics.h"
#include "platform/screen/Screen.h"
#include "platform/window/Desktop.h"
#include "platform/window/HeadlessDesktop.h"
#include "platform/window/Input.h"

#include <chrono>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

using kx::window::Desktop;
using kx::window::HeadlessDesktop;

bool KXHost::UseMemoryDesktop(int nWidth, int nHeight)
try {
    constexpr int nMost = 16'384;
    if (nWidth < 1 || nHeight < 1 || nWidth > nMost || nHeight > nMost) return false;
    HeadlessDesktop& desktop = HeadlessDesktop::Instance();
    if (!Desktop::Use(desktop)) return false;
    desktop.SetSize({nWidth, nHeight});
    return true;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

bool KXHost::UseDisplay(const char* pszDisplay, DWORD dwLimit)
try {
    auto display = Desktop::Open(pszDisplay, std::chrono::milliseconds(dwLimit));
    if (!display || !Desktop::Use(*display)) return false;
    Desktop::Keep(std::move(display));
    return true;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

bool KXHost::IsMemoryDesktop()
{
    return &Desktop::Instance() == &HeadlessDesktop::Instance();
}

bool KXHost::SaveDesktop(const std::string& strPath)
try {
    const SIZE size = Desktop::Instance().Size();
    std::optional<kx::gdi::Surface> seen;
    {
        const kx::sync::MutexLock lock(kx::screen::pixelLock);
        const auto root = Desktop::Root(size);
        if (!root) return false;
        const RECT all{0, 0, size.cx, size.cy};
        seen = kx::gdi::Snapshot(Desktop::Instance().Look(all, root->surface), all);
    }
    kx::gdiplus::Bytes file; // made while others may paint
    const auto view = kx::gdiplus::ViewOf(*seen, kx::gdiplus::Alpha::Opaque);
    if (kx::gdiplus::EncodePng(view, file) != Gdiplus::Ok) return false;
    const std::string_view bytes(reinterpret_cast<const char*>(file.data()), file.size());
    return kx::files::ReplaceWholeFile(strPath, bytes, 0666) == ERROR_SUCCESS;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int KXHost::PostInput(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
try {
    return kx::window::PostInput(hWnd, nMsg, wParam, lParam);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

std::vector<KXHost::MessageBoxRecord> KXHost::TakeMessageBoxes()
try {
    return HeadlessDesktop::Instance().TakeMessageBoxes();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

HWND KXHost::AddForeignWindow(DWORD dwProcessId, bool bVisible)
try {
    if (dwProcessId == 0) return nullptr;
    // A process's first thread has the process's number.
    return HeadlessDesktop::Instance().AddForeign({dwProcessId, dwProcessId, bVisible});
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

std::vector<KXHost::SentMessage> KXHost::TakeForeignMessages(HWND hWnd)
try {
    return HeadlessDesktop::Instance().TakeMessages(hWnd);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void KXHost::RemoveForeignWindow(HWND hWnd)
{
    HeadlessDesktop::Instance().RemoveForeign(hWnd);
}
