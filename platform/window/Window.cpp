#include "platform/window/Window.h"

#include "include/platform/Sync.h"

#include <utility>

namespace kx::window {

Window::Window(HWND handle, std::shared_ptr<const WindowClass> cls, std::shared_ptr<Queue> owner,
               const char* pszText)
    : m_handle(handle),
      m_processId(GetCurrentProcessId()),
      m_proc(cls->proc),
      m_class(std::move(cls)),
      m_owner(std::move(owner)),
      m_text(pszText ? pszText : "")
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
