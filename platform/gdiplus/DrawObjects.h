#pragma once

#include "platform/gdiplus/Startup.h"

#include <memory>

// How the calls that make and end an object begin.
namespace kx::gdiplus {

// Runs `make`, which gives the object to *ppResult or a status of failure; until then that is null.
template <class T, class Make>
Gdiplus::Status MakeObject(T** ppResult, Make&& make) noexcept
{
    if (ppResult) *ppResult = nullptr;
    return Guarded([&] { return ppResult ? make() : Gdiplus::InvalidParameter; });
}

template <class T, class... Args>
Gdiplus::Status Give(auto** ppResult, Args&&... args)
{
    *ppResult = std::make_unique<T>(std::forward<Args>(args)...).release();
    return Gdiplus::Ok;
}

template <class T>
Gdiplus::Status EndObject(T* pObject) noexcept
{
    const std::unique_ptr<T> object(pObject);
    return object ? Gdiplus::Ok : Gdiplus::InvalidParameter;
}

} // namespace kx::gdiplus
