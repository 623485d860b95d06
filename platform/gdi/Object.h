#pragma once

#include "include/platform/Gdi.h"
#include "platform/LiveHandles.h"

#include <atomic>
#include <memory>

namespace kx::gdi {

// What a handle of this family names: a device context, bitmap, pen, brush, font, region or icon. Objects are
// found through one table, so that a null, stale or invented handle finds nothing.
class Object
{
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    // How many surfaces hold it; DeleteObject refuses while there is one.
    std::atomic<int> selected{0};

private:
    LiveHandle m_live;
};

// Puts an object into the table; null for lack of memory. Stock objects are put there as `stock`, which
// DeleteObject leaves alone, and they don't count as live handles that leak.
HGDIOBJ Add(std::shared_ptr<Object> object, bool stock = false);
// The object of a handle, or null.
std::shared_ptr<Object> Find(HGDIOBJ handle);
// Takes a handle out of the table; the object ends with its last user. Null if there is no such handle.
std::shared_ptr<Object> Remove(HGDIOBJ handle);
bool IsStock(HGDIOBJ handle);

// The object of a handle if it is of that class.
template <class T>
std::shared_ptr<T> FindAs(const void* handle)
{
    return std::dynamic_pointer_cast<T>(Find(const_cast<void*>(handle)));
}

} // namespace kx::gdi
