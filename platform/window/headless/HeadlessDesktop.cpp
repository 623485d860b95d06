#include "platform/window/headless/HeadlessDesktop.h"

#include "include/platform/MessageBox.h"
#include "platform/Immortal.h"
#include "platform/window/WindowTable.h"
#include "platform/window/headless/Compose.h"

namespace kx::window {

HeadlessDesktop& HeadlessDesktop::Instance()
{
    static Immortal<HeadlessDesktop> desktop;
    return desktop.Get();
}

SIZE HeadlessDesktop::Size() const noexcept
{
    std::lock_guard lock(m_lock);
    return m_size;
}

void HeadlessDesktop::SetSize(SIZE size)
{
    std::lock_guard lock(m_lock);
    m_size = size;
}

bool HeadlessDesktop::Create(HWND hWnd, const CREATESTRUCTA&)
{
    std::lock_guard lock(m_lock);
    m_stack.Add(hWnd);
    return true;
}

void HeadlessDesktop::Stack(HWND hWnd, Order order)
{
    std::lock_guard lock(m_lock);
    m_stack.Move(hWnd, order);
}

void HeadlessDesktop::Destroy(HWND hWnd) noexcept
{
    std::lock_guard lock(m_lock);
    m_stack.Remove(hWnd);
}

gdi::Surface& HeadlessDesktop::Look(const RECT& rect, gdi::Surface& root)
{
    std::vector<HWND> order;
    {
        std::lock_guard lock(m_lock);
        order = m_stack.Handles();
    }
    return Compose(order, rect, root, m_seen);
}

std::vector<HWND> HeadlessDesktop::ForeignWindows() const
{
    std::vector<HWND> handles;
    std::lock_guard lock(m_lock);
    for (const auto& [handle, foreign] : m_foreign)
        handles.push_back(handle);
    return handles;
}

std::optional<WindowFacts> HeadlessDesktop::FindForeign(HWND hWnd) const noexcept
{
    std::lock_guard lock(m_lock);
    const auto it = m_foreign.find(hWnd);
    return it == m_foreign.end() ? std::nullopt : std::optional(it->second.facts);
}

bool HeadlessDesktop::PostForeign(HWND hWnd, const KXHost::SentMessage& message)
{
    std::lock_guard lock(m_lock);
    const auto it = m_foreign.find(hWnd);
    if (it == m_foreign.end()) return false;
    it->second.received.Add(message);
    return true;
}

LRESULT HeadlessDesktop::SendForeign(HWND hWnd, const KXHost::SentMessage& message)
{
    PostForeign(hWnd, message);
    return 0;
}

int HeadlessDesktop::ShowMessageBox(const KXHost::MessageBoxRecord& box)
{
    std::lock_guard lock(m_lock);
    m_boxes.Add(box);
    return IDOK;
}

HWND HeadlessDesktop::AddForeign(const WindowFacts& facts)
{
    std::lock_guard lock(m_lock);
    const HWND handle = NewHandle();
    m_foreign.emplace(handle, Foreign{facts, {}});
    return handle;
}

void HeadlessDesktop::RemoveForeign(HWND hWnd)
{
    std::lock_guard lock(m_lock);
    m_foreign.erase(hWnd);
}

std::vector<KXHost::SentMessage> HeadlessDesktop::TakeMessages(HWND hWnd)
{
    std::lock_guard lock(m_lock);
    const auto it = m_foreign.find(hWnd);
    return it == m_foreign.end() ? std::vector<KXHost::SentMessage>() : it->second.received.Take();
}

std::vector<KXHost::MessageBoxRecord> HeadlessDesktop::TakeMessageBoxes()
{
    std::lock_guard lock(m_lock);
    return m_boxes.Take();
}

} // namespace kx::window
