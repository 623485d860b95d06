#pragma once

#include "platform/window/Window.h"

#include <memory>

namespace kx::window {

class Queue;

// A message on its way from a thread that waits in SendMessageA to a window of another. It is answered once
// at least: with the procedure's result, or with 0 when the window or its thread ends first or the procedure
// is left by an exception. Both threads share it, since either may end before the other is done with it.
class SentMessage
{
public:
    SentMessage(std::shared_ptr<Window> target, UINT nMsg, WPARAM wParam, LPARAM lParam,
                std::shared_ptr<Queue> sender);

    const Window& Target() const noexcept { return *m_target; }
    // Runs the procedure and answers. On the receiving thread.
    void Run();
    // Answers 0.
    void Release() noexcept { Answer(0); }

    // Guarded by the lock of the sender's queue.
    bool answered = false;
    LRESULT result = 0;

private:
    void Answer(LRESULT nResult) noexcept;

    const std::shared_ptr<Window> m_target;
    const UINT m_msg;
    const WPARAM m_wParam;
    const LPARAM m_lParam;
    const std::shared_ptr<Queue> m_sender;
};

} // namespace kx::window
