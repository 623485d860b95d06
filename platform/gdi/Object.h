#pragma once

#include "include/platform/Gdi.h"
#include "platform/Handles.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <utility>

namespace kx::gdi {

// An object's class, and what it can be selected as; a device context and an icon can't be, and DeleteObject
// leaves them alone.
enum class Kind
{
    Bitmap,
    Pen,
    Brush,
    Font,
    Region,
    Context,
    Icon
};

// An object that a handle of this family names.
class Object
{
public:
    static constexpr HandleKind HANDLE_KIND = HandleKind::Drawing;

    explicit Object(Kind of) noexcept : kind(of) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    // For GetObjectA: copies the record into a buffer that holds it, or tells its size for a null one; 0
    // where the buffer is too small or there is no record.
    virtual int Describe(int, void*) const { return 0; }
    // Null before Add.
    HGDIOBJ Handle() const noexcept { return m_handle; }
    bool IsStock() const noexcept { return m_stock; }

    const Kind kind;
    // How many surfaces hold it; DeleteObject refuses while there is one.
    std::atomic<int> selected{0};

private:
    friend HGDIOBJ Add(const std::shared_ptr<Object>& object, bool stock) noexcept;
    HGDIOBJ m_handle = nullptr;
    bool m_stock = false;
};

// Puts an object into the table of handles; null, with ERROR_NOT_ENOUGH_MEMORY, for lack of memory. A stock
// object is one that the caller of the library didn't make: DeleteObject leaves it alone, and it isn't
// counted as a live handle. Any thread may call any of these.
HGDIOBJ Add(const std::shared_ptr<Object>& object, bool stock = false) noexcept;
// Takes a handle out of the table; the object ends with its last user. False if there is no such handle.
bool Remove(HGDIOBJ handle) noexcept;

// The object of a handle if it is of that class.
template <class T>
std::shared_ptr<T> FindAs(const void* handle) noexcept
{
    auto object = FindHandle<Object>(handle);
    if (!object || object->kind != T::KIND) return nullptr;
    return std::static_pointer_cast<T>(std::move(object));
}

// Describe for a record that is at hand.
template <class Record>
int DescribeAs(const Record& record, int nSize, void* pBuffer) noexcept
{
    constexpr int nNeeded = static_cast<int>(sizeof(Record));
    if (!pBuffer) return nNeeded;
    if (nSize < nNeeded) return 0;
    std::memcpy(pBuffer, &record, sizeof(Record));
    return nNeeded;
}

} // namespace kx::gdi
