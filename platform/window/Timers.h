#pragma once

#include "platform/time/Clock.h"
#include "platform/window/Window.h"

#include <vector>

namespace kx::window {

// The timers of one thread's windows. Guarded by the queue.
class Timers
{
public:
    static constexpr UINT kLeastPeriod = 10;

    // In place of the window's timer of that id, if there is one.
    void Set(const Window& window, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn);
    bool Kill(const Window& window, UINT_PTR nId) noexcept;
    void KillAll(const Window& window) noexcept;

    // The message of the timer that has been due for longest, of those that `passes`; false for none. With
    // `bRemove` it is next due a period later, or as many as lie in the past.
    template <class Passes>
    bool Take(MSG& msg, time::Moment now, bool bRemove, Passes passes)
    {
        Timer* first = nullptr;
        for (Timer& timer : m_timers)
            if (timer.due <= now && (!first || timer.due < first->due) && passes(MessageOf(timer)))
                first = &timer;
        if (!first) return false;
        msg = MessageOf(*first);
        if (bRemove) first->due += first->period * ((now - first->due) / first->period + 1);
        return true;
    }
    // When the next of those that `passes` is due; kNever for none.
    template <class Passes>
    time::Moment NextDue(Passes passes) const
    {
        time::Moment next = time::kNever;
        for (const Timer& timer : m_timers)
            if (timer.due < next && passes(MessageOf(timer))) next = timer.due;
        return next;
    }

private:
    struct Timer
    {
        const Window* window;
        UINT_PTR id;
        time::Moment::duration period;
        time::Moment due;
        TIMERPROC pfn;
    };
    static MSG MessageOf(const Timer& timer) noexcept
    {
        return {timer.window->Handle(), WM_TIMER, timer.id, reinterpret_cast<LPARAM>(timer.pfn), 0};
    }

    std::vector<Timer> m_timers;
};

} // namespace kx::window
