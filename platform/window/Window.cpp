#include "platform/window/Window.h"

#include <algorithm>
#include <cstdint>

#include "include/platform/Sync.h"

#include <utility>

namespace kx::window {

namespace {

// A size below 0 counts as none, and the far sides stay within an int.
RECT RectOf(const CREATESTRUCTA& create)
{
    const auto end = [](int from, int length) {
        return static_cast<LONG>(std::min<std::int64_t>(std::int64_t{from} + std::max(length, 0), INT32_MAX));
    };
    return {create.x, create.y, end(create.x, create.cx), end(create.y, create.cy)};
}

} // namespace

Window::Window(HWND handle, std::shared_ptr<const WindowClass> cls, std::shared_ptr<Queue> owner,
               const CREATESTRUCTA& create)
    : m_handle(handle),
      m_processId(GetCurrentProcessId()),
      m_proc(cls->proc),
      m_class(std::move(cls)),
      m_owner(std::move(owner)),
      m_rect(RectOf(create)),
      m_text(create.lpszName ? create.lpszName : "")
{
}

std::string Window::Text() const
{
    std::lock_guard lock(m_textLock);
    return m_text;
}

void Window::SetText(const char* pszText)
{
    std::string text = pszText ? pszText : "";
    std::lock_guard lock(m_textLock);
    m_text.swap(text);
}

} // namespace kx::window
