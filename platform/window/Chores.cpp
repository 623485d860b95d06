#include "platform/window/Chores.h"

#include "include/platform/Clock.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"

namespace kx::window {

void PostChore(HWND hWnd, Chore chore, LPARAM lParam)
{
    if (const auto window = WindowTable::Instance().Find(hWnd))
        window->Owner().PostChore({hWnd, kChore, static_cast<WPARAM>(chore), lParam, GetTickCount()},
                                  *window);
}

void DoChore(Window& window, Chore chore, LPARAM lParam)
{
    switch (chore) {
    case Chore::Destroy:
        DestroyWindow(window.Handle());
        break;
    case Chore::GainFocus: // old once the thread has given the focus to another window meanwhile
        if (!Desktop::Instance().HasFocus(window.Handle())) break;
        if (window.enabled)
            TakeFocus(window.Handle());
        else if (const HWND hModal = window.Owner().input.modal)
            SetFocus(hModal);
        break;
    case Chore::LoseFocus:
        DropCapture(window.Handle());
        DropFocus(window.Handle());
        break;
    case Chore::Place:
        TellPlace(window, (lParam & kMoved) != 0, (lParam & kResized) != 0);
        break;
    case Chore::AskFocus:
        if (window.visible) SetFocus(window.Handle());
        break;
    case Chore::Hide:
        if (!window.visible) DropFocus(window.Handle());
        break;
    }
}

} // namespace kx::window
