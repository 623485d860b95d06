#pragma once

#include "platform/gdi/PixelRegion.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Alarm.h"
#include "platform/window/Input.h"
#include "platform/window/Window.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kx::window {

// The timers of one thread's windows. Guarded by the queue.
class Timers
{
public:
    static constexpr UINT kLeastPeriod = 10;

    // In place of the window's timer of that id, if there is one.
    void Set(const Window& window, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
    {
        const std::chrono::milliseconds period(std::max(nPeriod, kLeastPeriod));
        const auto it = std::ranges::find_if(
            m_timers, [&](const Timer& timer) { return timer.window == &window && timer.id == nId; });
        Timer& timer = it == m_timers.end() ? m_timers.emplace_back() : *it;
        timer = {&window, nId, period, time::Now() + period, pfn};
    }
    bool Kill(const Window& window, UINT_PTR nId) noexcept
    {
        return std::erase_if(m_timers, [&](const Timer& t) { return t.window == &window && t.id == nId; }) !=
               0;
    }
    void KillAll(const Window& window) noexcept
    {
        std::erase_if(m_timers, [&](const Timer& timer) { return timer.window == &window; });
    }

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

struct SentMessage;

// The part of a window that must be painted.
struct Update
{
    gdi::PixelRegion region;
    bool erase = false;
};

// Selects the posted messages that a thread asks for. WM_QUIT passes every filter.
struct Filter
{
    const Window* window = nullptr; // null: any, and those to the thread
    UINT min = 0;
    UINT max = 0; // both 0: any

    bool Passes(const MSG& msg) const noexcept;
};

// One thread's queue: messages posted to it or its windows, messages that other threads sent, what its
// windows have to paint, and their timers. No lock is held while a window procedure runs.
class Queue
{
public:
    static constexpr std::size_t kMaxPosted = 10'000;

    explicit Queue(DWORD dwThreadId) : m_threadId(dwThreadId) {}
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    DWORD ThreadId() const noexcept { return m_threadId; }

    // ---- Any thread. Those that post and send give an error number, ERROR_SUCCESS when done.

    // Appends a message, to a window of this thread or, with null, to the thread.
    DWORD Post(const MSG& msg, const Window* target);
    // The same for what a person does; with `bLatest` in place of the newest one if that is the same message
    // to the same window.
    DWORD PostInput(const MSG& msg, const Window& target, bool bLatest);
    DWORD Send(const std::shared_ptr<SentMessage>& message);
    // Posts a chore, merging it with a pending one of the same kind for that window (their LPARAMs are
    // OR-ed). Chores are never repeated, so the queue's bound doesn't count them.
    void PostChore(MSG chore, const Window& target);
    // Takes back what this queue was sent, if its procedure hasn't begun.
    void Withdraw(const SentMessage& message) noexcept;

    // Adds a rectangle to what one of this thread's windows has to paint; takes all of it, which may be
    // nothing.
    void Invalidate(const Window& window, const RECT& rect, bool bErase);
    Update TakeUpdate(const Window& window);
    bool HasUpdate(const Window& window);

    // ---- The queue's thread

    void SetTimer(const Window& window, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn);
    bool KillTimer(const Window& window, UINT_PTR nId) noexcept;
    // Serves what is sent here until the clock has come to the deadline.
    void ServeUntil(time::Moment deadline);
    // WM_QUIT comes after all that is posted; the queue's bound doesn't count it.
    void PostQuit(int nExitCode);
    // Waits for a message that passes: 0 for WM_QUIT, -1 when the filter's window has ended, else 1.
    int Get(MSG& msg, const Filter& filter);
    // Doesn't wait; false when there is none.
    bool Peek(MSG& msg, const Filter& filter, bool bRemove);
    // Whether the message that was taken or seen last is what a person did.
    bool WasInput() const noexcept { return m_wasInput; }
    Input input;
    // On the sender's thread: serves what is sent there until the message is answered; its result.
    static LRESULT WaitForAnswer(const SentMessage& message);
    // A window ends: releases its senders and drops what is posted to it.
    void Forget(Window& window) noexcept;
    // The thread ends, after its windows: nothing is posted to it any more.
    void Close() noexcept;

private:
    friend struct SentMessage;

    using Sent = std::list<std::shared_ptr<SentMessage>>;
    using WindowUpdate = std::pair<const Window*, Update>;
    enum class Kind
    {
        Message,
        Input,
        Chore,
    };
    struct Posted
    {
        MSG msg;
        Kind kind;
    };

    DWORD PostTo(const Posted& posted, const Window* target, bool bLatest);
    // Ends the sender's wait.
    static void Answer(SentMessage& message, LRESULT nResult) noexcept;
    void ServeSent() KX_REQUIRES(m_lock);
    auto FindUpdate(const Window& window) KX_REQUIRES(m_lock)
    {
        return std::ranges::find(m_updates, &window, &WindowUpdate::first);
    }
    bool Take(MSG& msg, const Filter& filter, bool bRemove) KX_REQUIRES(m_lock);
    bool TakeQuit(MSG& msg, bool bRemove) KX_REQUIRES(m_lock);
    bool TakePaint(MSG& msg, const Filter& filter) const KX_REQUIRES(m_lock);
    // Gives the lock up until a notice or the deadline, unless something was sent; may return for no reason.
    void Wait(time::Moment deadline = time::kNever) KX_REQUIRES(m_lock);
    // No system call while the thread doesn't wait. With the lock or without.
    void Notify() noexcept;

    const DWORD m_threadId;
    sync::Mutex m_lock;
    sync::Word m_changes{0}; // counts what the thread may wait for, as its Alarm wants it
    std::atomic<bool> m_bWaits{false};
    std::deque<Posted> m_posted KX_GUARDED_BY(m_lock);
    std::size_t m_chores KX_GUARDED_BY(m_lock) = 0; // of those
    std::optional<MSG> m_quit KX_GUARDED_BY(m_lock);
    std::vector<WindowUpdate> m_updates KX_GUARDED_BY(m_lock); // in the order in which they came up
    Timers m_timers KX_GUARDED_BY(m_lock);
    Sent m_sent KX_GUARDED_BY(m_lock); // not yet begun
    bool m_closed KX_GUARDED_BY(m_lock) = false;
    bool m_wasInput = false;
};

// A message on its way from a thread that waits in SendMessageA to a window of another. Both threads share
// it, since either may end before the other is done with it.
struct SentMessage
{
    const std::shared_ptr<Window> target;
    const UINT message;
    const WPARAM wParam;
    const LPARAM lParam;
    const std::shared_ptr<Queue> sender;
    // It is answered once at least: with the procedure's result, or with 0 when the window or its thread ends
    // first or the procedure is left by an exception.
    bool answered KX_GUARDED_BY(sender->m_lock) = false;
    LRESULT result KX_GUARDED_BY(sender->m_lock) = 0;
};

// ---- A thread gets its queue when it first needs one; the thread's end ends its windows and the queue.

// The calling thread's queue, made now if need be; null when the thread has come to its end.
std::shared_ptr<Queue> ThisThread();

// Whether the queue is the calling thread's. Doesn't make one.
bool IsThisThread(const Queue& queue) noexcept;

// A window of this process or of the calling thread, or null with the last error set.
std::shared_ptr<Window> FindAny(HWND hWnd) noexcept;
std::shared_ptr<Window> FindOwn(HWND hWnd) noexcept;

} // namespace kx::window
