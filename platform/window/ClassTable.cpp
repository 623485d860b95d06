#include "platform/window/Window.h"

#include "platform/Errno.h"
#include "platform/Immortal.h"

#include <algorithm>

namespace kx::window {

namespace {

constexpr std::uintptr_t kFirstAtom = 0xC000;
constexpr std::size_t kMaxClasses = 0x10000 - kFirstAtom;

// A number of 16 bits in place of the pointer to a name.
bool IsAtom(const char* pszName) noexcept
{
    return reinterpret_cast<std::uintptr_t>(pszName) <= 0xFFFF;
}

CString KeyOf(const char* pszName)
{
    CString key(pszName);
    key.MakeLower();
    return key;
}

} // namespace

ClassTable& ClassTable::Instance()
{
    return The<ClassTable>();
}

std::size_t ClassTable::IndexOfKey(const CString& key) const
{
    const auto same = [&](const ClassPtr& entry) { return entry && entry->key == key; };
    return static_cast<std::size_t>(std::ranges::find_if(m_classes, same) - m_classes.begin());
}

// m_classes.size() or more for no such class.
std::size_t ClassTable::IndexOf(const char* pszNameOrAtom) const
{
    if (!IsAtom(pszNameOrAtom)) return IndexOfKey(KeyOf(pszNameOrAtom));
    const std::size_t index = reinterpret_cast<std::uintptr_t>(pszNameOrAtom) - kFirstAtom; // wraps below it
    return index < m_classes.size() && m_classes[index] ? index : m_classes.size();
}

DWORD ClassTable::Add(const WNDCLASSA& cls, WORD& atom)
{
    if (IsAtom(cls.lpszClassName) || !*cls.lpszClassName || !cls.lpfnWndProc) return ERROR_INVALID_PARAMETER;
    const CString key = KeyOf(cls.lpszClassName);
    const auto entry = std::make_shared<const WindowClass>(WindowClass{CString(cls.lpszClassName), key,
                                                                       cls.lpfnWndProc, cls.hbrBackground,
                                                                       cls.style, cls.hCursor, cls.hIcon});

    const sync::MutexLock lock(m_lock);
    if (IndexOfKey(key) < m_classes.size()) return ERROR_CLASS_ALREADY_EXISTS;
    const auto free = std::ranges::find(m_classes, nullptr);
    const auto index = static_cast<std::size_t>(free - m_classes.begin());
    if (index == kMaxClasses) return ERROR_NOT_ENOUGH_MEMORY;
    if (free == m_classes.end())
        m_classes.push_back(entry);
    else
        *free = entry;
    atom = static_cast<WORD>(kFirstAtom + index);
    return ERROR_SUCCESS;
}

DWORD ClassTable::Remove(const char* pszNameOrAtom)
{
    const sync::MutexLock lock(m_lock);
    const std::size_t index = IndexOf(pszNameOrAtom);
    if (index >= m_classes.size()) return ERROR_CLASS_DOES_NOT_EXIST;
    // Only this table, under this lock, hands out further holders: nobody can join between look and removal.
    if (m_classes[index].use_count() > 1) return ERROR_CLASS_HAS_WINDOWS;
    m_classes[index].reset();
    return ERROR_SUCCESS;
}

std::shared_ptr<const WindowClass> ClassTable::Find(const char* pszNameOrAtom) const
{
    const sync::MutexLock lock(m_lock);
    const std::size_t index = IndexOf(pszNameOrAtom);
    return index < m_classes.size() ? m_classes[index] : nullptr;
}

} // namespace kx::window

WORD RegisterClassA(const WNDCLASSA* pClass)
try {
    if (!pClass) return static_cast<WORD>(kx::Fail(ERROR_INVALID_PARAMETER));
    WORD atom = 0;
    const DWORD error = kx::window::ClassTable::Instance().Add(*pClass, atom);
    return error == ERROR_SUCCESS ? atom : static_cast<WORD>(kx::Fail(error));
} catch (...) {
    return kx::NoMemory();
}

int UnregisterClassA(const char* pszClassName)
try {
    const DWORD error = kx::window::ClassTable::Instance().Remove(pszClassName);
    return error == ERROR_SUCCESS ? 1 : kx::Fail(error);
} catch (...) {
    return kx::NoMemory();
}
