#pragma once

#include "include/platform/String.h"
#include "include/platform/Window.h"

#include <memory>
#include <mutex>
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

    std::size_t IndexOf(const char* pszNameOrAtom) const;
    std::size_t IndexOfKey(const CString& key) const;

    mutable std::mutex m_lock;
    std::vector<Entry> m_classes; // null where a class was removed
};

} // namespace kx::window
