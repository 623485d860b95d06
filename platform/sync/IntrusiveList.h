#pragma once

#include <utility>

namespace kx::sync {

// An element of an IntrusiveList derives from this.
template <class T>
struct ListLink
{
    T* prev = nullptr;
    T* next = nullptr;
};

// A list of objects that live elsewhere, mostly on the stacks of waiting threads: joining and leaving cost a
// few stores and no memory. It owns nothing and takes no lock.
template <class T>
class IntrusiveList
{
public:
    IntrusiveList() = default;
    IntrusiveList(const IntrusiveList&) = delete;
    IntrusiveList& operator=(const IntrusiveList&) = delete;

    bool IsEmpty() const noexcept { return !m_first; }
    T* First() const noexcept { return m_first; }

    void Append(T& item) noexcept
    {
        item.prev = m_last;
        item.next = nullptr;
        (m_last ? m_last->next : m_first) = &item;
        m_last = &item;
    }

    void Remove(T& item) noexcept
    {
        (item.prev ? item.prev->next : m_first) = item.next;
        (item.next ? item.next->prev : m_last) = item.prev;
    }

    // The first element, which leaves the list; null from an empty one.
    T* TakeFirst() noexcept
    {
        T* item = m_first;
        if (item) Remove(*item);
        return item;
    }

    void Swap(IntrusiveList& other) noexcept
    {
        std::swap(m_first, other.m_first);
        std::swap(m_last, other.m_last);
    }

private:
    T* m_first = nullptr;
    T* m_last = nullptr;
};

} // namespace kx::sync
