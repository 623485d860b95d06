#pragma once

#include <cstdlib>
#include <memory>

namespace kx::window::x11 {

struct Free
{
    void operator()(void* p) const noexcept { std::free(p); }
};

// What the server answered: a block of xcb's, null where the answer is an error or the server is lost.
template <class T>
using Reply = std::unique_ptr<T, Free>;

template <class T>
Reply<T> Own(T* reply) noexcept
{
    return Reply<T>(reply);
}

} // namespace kx::window::x11
