#pragma once

#include <utility>

namespace kx::xml {

// Holds one reference on an object with AddRef and Release.
template <class T>
class Ref
{
public:
    Ref() = default;
    explicit Ref(T* object) noexcept : m_object(object)
    {
        if (m_object) m_object->AddRef();
    }
    // Takes over the caller's reference.
    static Ref Adopt(T* object) noexcept
    {
        Ref ref;
        ref.m_object = object;
        return ref;
    }
    Ref(const Ref& other) noexcept : Ref(other.m_object) {}
    Ref(Ref&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Ref& operator=(Ref other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Ref()
    {
        if (m_object) m_object->Release();
    }

    T* Get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object; }
    // Gives the reference to the caller.
    T* Detach() noexcept { return std::exchange(m_object, nullptr); }

private:
    T* m_object = nullptr;
};

} // namespace kx::xml
