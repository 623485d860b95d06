#pragma once

#include "include/platform/String.h"
#include "include/platform/Window.h"
#include "platform/sync/Mutex.h"

#include <memory>
#include <vector>

namespace kx::window {

struct WindowClass
{
    CString name;
    CString key; // the name with its ASCII letters folded
    WNDPROC proc;
    HBRUSH background; // null: none
    UINT style;
    HCURSOR cursor; // null: none
    HICON icon;     // likewise
};

// The classes of windows by name. A class's atom tells its place here. Any thread.
class ClassTable
{
public:
    static ClassTable& Instance();

    // Give an error number, ERROR_SUCCESS when done.
    DWORD Add(const WNDCLASSA& cls, WORD& atom);
    DWORD Remove(const char* pszNameOrAtom);
    // Null for no such class. A class that is held by anyone can't be removed.
    std::shared_ptr<const WindowClass> Find(const char* pszNameOrAtom) const;

private:
    using Entry = std::shared_ptr<const WindowClass>;

    std::size_t IndexOf(const char* pszNameOrAtom) const KX_REQUIRES(m_lock);
    std::size_t IndexOfKey(const CString& key) const KX_REQUIRES(m_lock);

    mutable sync::Mutex m_lock;
    std::vector<Entry> m_classes KX_GUARDED_BY(m_lock); // null where a class was removed
};

} // namespace kx::window
