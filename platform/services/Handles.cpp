#include "platform/services/Handles.h"

#include "platform/Errno.h"
#include "platform/Immortal.h"

#include <mutex>
#include <unordered_map>

namespace kx::services {

namespace {

// A number is never given twice, so a handle that was closed stays unknown.
struct Table
{
    std::mutex lock;
    std::unordered_map<SC_HANDLE, HandlePtr> handles; // under the lock
    std::uintptr_t last = 0;                          // under the lock
};

Table& TheTable()
{
    static Immortal<Table> table;
    return table.Get();
}

HandlePtr Find(SC_HANDLE handle)
{
    Table& table = TheTable();
    const std::lock_guard lock(table.lock);
    const auto found = table.handles.find(handle);
    return found == table.handles.end() ? nullptr : found->second;
}

} // namespace

SC_HANDLE AddHandle(HandlePtr handle)
{
    Table& table = TheTable();
    const std::lock_guard lock(table.lock);
    table.last += 4;
    const auto number = reinterpret_cast<SC_HANDLE>(table.last);
    table.handles.emplace(number, std::move(handle));
    return number;
}

HandlePtr FindHandle(SC_HANDLE handle, Kind kind, DWORD right)
{
    HandlePtr found = Find(handle);
    DWORD error = ERROR_SUCCESS;
    if (!found || found->name.IsEmpty() != (kind == Kind::Manager))
        error = ERROR_INVALID_HANDLE;
    else if ((found->access & right) != right)
        error = ERROR_ACCESS_DENIED;
    if (error == ERROR_SUCCESS) return found;
    SetLastError(error);
    return nullptr;
}

bool RemoveHandle(SC_HANDLE handle)
{
    Table& table = TheTable();
    HandlePtr removed; // ends behind the lock
    const std::lock_guard lock(table.lock);
    const auto found = table.handles.find(handle);
    if (found == table.handles.end()) return false;
    removed = std::move(found->second);
    table.handles.erase(found);
    return true;
}

} // namespace kx::services
