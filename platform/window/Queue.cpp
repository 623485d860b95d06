#include "platform/window/Queue.h"

#include "include/platform/Clock.h"

#include <algorithm>

namespace kx::window {

bool Filter::Passes(const MSG& msg) const noexcept
{
    if (msg.message == WM_QUIT) return true;
    if (window && window->Handle() != msg.hwnd) return false;
    return (min == 0 && max == 0) || (msg.message >= min && msg.message <= max);
}

DWORD Queue::Post(const MSG& msg, const Window* target)
{
    return PostTo({msg, Kind::Message}, target, false);
}

DWORD Queue::PostInput(const MSG& msg, const Window& target, bool bLatest)
{
    return PostTo({msg, Kind::Input}, &target, bLatest);
}

DWORD Queue::PostTo(const Posted& posted, const Window* target, bool bLatest)
{
    {
        const sync::MutexLock lock(m_lock);
        if (m_closed) return ERROR_INVALID_THREAD_ID;
        if (target && target->ended) return ERROR_INVALID_WINDOW_HANDLE;
        const auto isSame = [&](const Posted& other) {
            return other.kind == posted.kind && other.msg.hwnd == posted.msg.hwnd &&
                   other.msg.message == posted.msg.message;
        };
        if (bLatest && !m_posted.empty() && isSame(m_posted.back())) m_posted.pop_back();
        if (m_posted.size() - m_chores >= kMaxPosted) return ERROR_NOT_ENOUGH_QUOTA;
        m_posted.push_back(posted);
    }
    Notify();
    return ERROR_SUCCESS;
}

void Queue::PostChore(MSG chore, const Window& target)
{
    {
        const sync::MutexLock lock(m_lock);
        if (m_closed || target.ended) return;
        const auto older = std::ranges::find_if(m_posted, [&](const Posted& other) {
            return other.kind == Kind::Chore && other.msg.hwnd == chore.hwnd &&
                   other.msg.wParam == chore.wParam;
        });
        if (older != m_posted.end()) {
            chore.lParam |= older->msg.lParam;
            m_posted.erase(older);
            --m_chores;
        }
        m_posted.push_back({chore, Kind::Chore});
        ++m_chores;
    }
    Notify();
}

DWORD Queue::Send(const std::shared_ptr<SentMessage>& message)
{
    {
        const sync::MutexLock lock(m_lock);
        if (message->target->ended) return ERROR_INVALID_WINDOW_HANDLE;
        m_sent.push_back(message);
    }
    Notify();
    return ERROR_SUCCESS;
}

void Queue::Withdraw(const SentMessage& message) noexcept
{
    Sent gone; // ends when the lock is free again
    const sync::MutexLock lock(m_lock);
    const auto it = std::ranges::find_if(m_sent, [&](const auto& sent) { return sent.get() == &message; });
    if (it != m_sent.end()) gone.splice(gone.end(), m_sent, it);
}

void Queue::Answer(SentMessage& message, LRESULT nResult) noexcept
{
    {
        const sync::MutexLock lock(message.sender->m_lock);
        message.answered = true;
        message.result = nResult;
    }
    message.sender->Notify();
}

void Queue::PostQuit(int nExitCode)
{
    const sync::MutexLock lock(m_lock);
    m_quit = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(nExitCode), 0, GetTickCount()};
}

int Queue::Get(MSG& msg, const Filter& filter)
{
    const sync::MutexLock lock(m_lock);
    for (;;) {
        ServeSent();
        if (filter.window && filter.window->ended) return -1;
        if (Take(msg, filter, true)) return msg.message != WM_QUIT;
        Wait(m_timers.NextDue([&](const MSG& timer) { return filter.Passes(timer); }));
    }
}

bool Queue::Peek(MSG& msg, const Filter& filter, bool bRemove)
{
    const sync::MutexLock lock(m_lock);
    ServeSent();
    return Take(msg, filter, bRemove);
}

LRESULT Queue::WaitForAnswer(const SentMessage& message)
{
    const sync::MutexLock lock(message.sender->m_lock);
    for (;;) {
        if (message.answered) return message.result;
        message.sender->ServeSent();
        if (!message.answered) message.sender->Wait();
    }
}

// Runs what has been sent by now and no more, so that threads that send on and on don't hold up what is
// posted.
void Queue::ServeSent()
{
    for (std::size_t n = m_sent.size(); n > 0 && !m_sent.empty(); --n) {
        auto taken = std::move(m_sent.front());
        m_sent.pop_front();
        const sync::MutexUnlock unlock(m_lock);
        const auto message = std::move(taken); // it ends while the lock is free
        struct AnswerAtEnd
        {
            SentMessage& message;
            LRESULT result;
            ~AnswerAtEnd() { Answer(message, result); }
        } answer{*message, 0};
        answer.result = message->target->Call(message->message, message->wParam, message->lParam);
    }
}

bool Queue::Take(MSG& msg, const Filter& filter, bool bRemove)
{
    const auto passes = [&](const MSG& candidate) { return filter.Passes(candidate); };
    const auto it = std::ranges::find_if(m_posted, passes, &Posted::msg);
    m_wasInput = it != m_posted.end() && it->kind == Kind::Input;
    if (it == m_posted.end())
        return TakeQuit(msg, bRemove) || TakePaint(msg, filter) ||
               m_timers.Take(msg, time::Now(), bRemove, passes);
    msg = it->msg;
    if (!bRemove) return true;
    m_chores -= it->kind == Kind::Chore;
    m_posted.erase(it);
    return true;
}

bool Queue::TakeQuit(MSG& msg, bool bRemove)
{
    if (!m_quit) return false;
    msg = *m_quit;
    if (bRemove) m_quit.reset();
    return true;
}

// It stays until the window has painted.
bool Queue::TakePaint(MSG& msg, const Filter& filter) const
{
    for (const auto& [window, update] : m_updates) {
        const MSG paint{window->Handle(), WM_PAINT, 0, 0, 0};
        if (!filter.Passes(paint)) continue;
        msg = paint;
        return true;
    }
    return false;
}

// Both sides make their own mark before they look for the other's, so that one of them sees it.
void Queue::Notify() noexcept
{
    m_changes.fetch_add(time::Alarm::kRing);
    if (m_bWaits.load()) sync::FutexWake(m_changes);
}

// The one place where a thread waits for messages.
void Queue::Wait(time::Moment deadline)
{
    if (!m_sent.empty()) return;
    m_bWaits.store(true);
    const std::uint32_t seen = m_changes.load();
    {
        const sync::MutexUnlock unlock(m_lock);
        time::Alarm(m_changes, deadline).Wait(seen);
    }
    m_bWaits.store(false);
}

void Queue::ServeUntil(time::Moment deadline)
{
    const sync::MutexLock lock(m_lock);
    for (;;) {
        ServeSent();
        if (time::Now() >= deadline) return;
        Wait(deadline);
    }
}

void Queue::Invalidate(const Window& window, const RECT& rect, bool bErase)
{
    {
        const sync::MutexLock lock(m_lock);
        const gdi::PixelRegion region(rect);
        if (window.ended || region.Complexity() == NULLREGION) return;
        auto it = FindUpdate(window);
        if (it == m_updates.end()) it = m_updates.insert(it, {&window, {}});
        it->second.region.UniteWith(region);
        it->second.erase |= bErase;
    }
    Notify();
}

bool Queue::HasUpdate(const Window& window)
{
    const sync::MutexLock lock(m_lock);
    return FindUpdate(window) != m_updates.end();
}

Update Queue::TakeUpdate(const Window& window)
{
    const sync::MutexLock lock(m_lock);
    const auto it = FindUpdate(window);
    if (it == m_updates.end()) return {};
    Update update = std::move(it->second);
    m_updates.erase(it);
    return update;
}

void Queue::SetTimer(const Window& window, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
{
    const sync::MutexLock lock(m_lock);
    m_timers.Set(window, nId, nPeriod, pfn);
}

bool Queue::KillTimer(const Window& window, UINT_PTR nId) noexcept
{
    const sync::MutexLock lock(m_lock);
    return m_timers.Kill(window, nId);
}

void Queue::Forget(Window& window) noexcept
{
    Sent released;
    {
        const sync::MutexLock lock(m_lock);
        window.ended = true;
        const auto isIts = [&](const Posted& posted) { return posted.msg.hwnd == window.Handle(); };
        m_chores -= static_cast<std::size_t>(std::ranges::count_if(
            m_posted, [&](const Posted& posted) { return posted.kind == Kind::Chore && isIts(posted); }));
        std::erase_if(m_posted, isIts);
        std::erase_if(m_updates, [&](const WindowUpdate& update) { return update.first == &window; });
        m_timers.KillAll(window);
        for (auto it = m_sent.begin(); it != m_sent.end();) {
            const auto here = it++;
            if ((*here)->target.get() == &window) released.splice(released.end(), m_sent, here);
        }
    }
    for (const auto& message : released)
        Answer(*message, 0);
}

void Queue::Close() noexcept
{
    const sync::MutexLock lock(m_lock);
    m_closed = true;
    m_posted.clear();
    m_chores = 0;
}

} // namespace kx::window
