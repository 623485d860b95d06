#include "platform/window/Window.h"

#include "include/platform/Sync.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kx::window {

RECT RectOf(int x, int y, int nWidth, int nHeight) noexcept
{
    const auto end = [](int from, int length) {
        return static_cast<LONG>(std::min<std::int64_t>(std::int64_t{from} + std::max(length, 0), INT32_MAX));
    };
    return {x, y, end(x, nWidth), end(y, nHeight)};
}

Window::Window(std::shared_ptr<const WindowClass> cls, WNDPROC hook, std::shared_ptr<Queue> owner,
               const CREATESTRUCTA& create)
    : m_processId(GetCurrentProcessId()),
      m_proc(hook ? hook : cls->proc),
      m_classProc(cls->proc),
      m_background(cls->background),
      m_classStyle(cls->style),
      m_classCursor(cls->cursor),
      m_class(std::move(cls)),
      m_owner(std::move(owner)),
      m_rect(RectOf(create.x, create.y, create.cx, create.cy)),
      m_text(create.lpszName ? create.lpszName : "")
{
}

RECT Window::Rect() const
{
    const sync::MutexLock lock(m_lock);
    return m_rect;
}

void Window::SetRect(const RECT& rect)
{
    const sync::MutexLock lock(m_lock);
    m_rect = rect;
}

std::string Window::Text() const
{
    const sync::MutexLock lock(m_lock);
    return m_text;
}

void Window::SetText(const char* pszText)
{
    std::string text = pszText ? pszText : "";
    const sync::MutexLock lock(m_lock);
    m_text.swap(text);
}

} // namespace kx::window
