#pragma once

#include "include/platform/Gdi.h"

#include <atomic>
#include <cstdint>
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

// What a handle of this family names. Objects are found through one table, so that a null, stale or invented
// handle finds nothing.
class Object
{
public:
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
    friend class ObjectTable;
    HGDIOBJ m_handle = nullptr;
    bool m_stock = false;
};

// What a place of the table knows of who works on its object: see Object.cpp.
struct Pins
{
    std::atomic<std::uint64_t> state;
};
void Unpin(Pins& pins) noexcept;

// Keeps an object from its end while it is worked on.
template <class T>
class Pinned
{
public:
    Pinned() = default;
    Pinned(Pins* pins, T* object) noexcept : m_pins(pins), m_object(object) {}
    Pinned(Pinned&& other) noexcept
        : m_pins(std::exchange(other.m_pins, nullptr)), m_object(std::exchange(other.m_object, nullptr))
    {
    }
    Pinned& operator=(Pinned&& other) noexcept
    {
        std::swap(m_pins, other.m_pins);
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Pinned()
    {
        if (m_pins) Unpin(*m_pins);
    }

    explicit operator bool() const noexcept { return m_object; }
    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    // The same pin under the object's own class.
    template <class U>
    Pinned<U> As() && noexcept
    {
        return {std::exchange(m_pins, nullptr), static_cast<U*>(m_object)};
    }

private:
    Pins* m_pins = nullptr;
    T* m_object = nullptr;
};

// Puts an object into the table; null for lack of memory or of room (1,048,576 objects). A stock object is
// one that the caller of the library didn't make: DeleteObject leaves it alone, and it isn't counted as a
// live handle. Any thread may call any of these.
HGDIOBJ Add(std::shared_ptr<Object> object, bool stock = false);
// The object of a handle, or none.
Pinned<Object> Find(HGDIOBJ handle) noexcept;
// Takes a handle out of the table; the object ends with its last user. False if there is no such handle. A
// device context leaves under the text lock (text/TextLock.h).
bool Remove(HGDIOBJ handle) noexcept;
// The device context of a handle, or null, for who holds the text lock: it stays until that is let go, and
// needs no pin.
Object* FindHeldContext(HGDIOBJ handle) noexcept;

// The object of a handle if it is of that class.
template <class T>
Pinned<T> FindAs(const void* handle) noexcept
{
    Pinned<Object> object = Find(const_cast<void*>(handle));
    if (!object || object->kind != T::KIND) return {};
    return std::move(object).template As<T>();
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
