#pragma once

#include <memory>
#include <new>
#include <pthread.h>

namespace kx::sync {

// An object for each thread that asks for it, made at the thread's first `Get` and ended with the thread; the
// one of the thread that ends the process ends with this. Other than for an object that is `thread_local`,
// for which the C library aborts the process, a lack of memory is thrown.
template <class T>
class PerThread
{
public:
    PerThread()
    {
        if (pthread_key_create(&m_key, [](void* p) { delete static_cast<T*>(p); }) != 0)
            throw std::bad_alloc();
    }
    PerThread(const PerThread&) = delete;
    PerThread& operator=(const PerThread&) = delete;
    ~PerThread() { End(); } // the key stays, for threads that still run

    T& Get()
    {
        if (T* const made = Find()) return *made;
        auto mine = std::make_unique<T>();
        if (pthread_setspecific(m_key, mine.get()) != 0) throw std::bad_alloc();
        return *mine.release();
    }
    // Ends this thread's object before the thread does.
    void End() noexcept
    {
        const std::unique_ptr<T> mine(Find());
        pthread_setspecific(m_key, nullptr);
    }
    // Null before the thread's first `Get`.
    T* Find() const noexcept { return static_cast<T*>(pthread_getspecific(m_key)); }

private:
    pthread_key_t m_key{};
};

} // namespace kx::sync
