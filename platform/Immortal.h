#pragma once

#include <new>
#include <utility>

namespace kx {

// A static object that is built like any other but never destroyed, so that it still works while other
// static objects are destroyed at unload.
template <class T>
class Immortal
{
public:
    template <class... Args>
    explicit Immortal(Args&&... args)
    {
        new (m_storage) T(std::forward<Args>(args)...);
    }
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& Get() noexcept { return *std::launder(reinterpret_cast<T*>(m_storage)); }
    T* operator->() noexcept { return &Get(); }

private:
    alignas(T) unsigned char m_storage[sizeof(T)];
};

// The one such object of a class, built at the first use.
template <class T>
T& The()
{
    static Immortal<T> object;
    return object.Get();
}

} // namespace kx
