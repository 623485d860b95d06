#pragma once

#include "include/platform/GdiPlusTypes.h"
#include "platform/Errno.h"

#include <memory>
#include <string>
#include <utility>

// How the calls begin and end.
namespace kx::gdiplus {

// Whether a start has not been ended yet. Any thread.
bool Started() noexcept;
// The status of a call before the start. Tells of the first one, to who listens.
Gdiplus::Status NotStarted() noexcept;

// Runs a call's body if the layer is started. A lack of memory becomes its status.
template <class Body>
Gdiplus::Status Guarded(Body&& body) noexcept
try {
    return Started() ? body() : NotStarted();
} catch (...) {
    kx::NoMemory();
    return Gdiplus::OutOfMemory;
}

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

// The classes keep the last failure until it is asked for.
inline Gdiplus::Status KeepIn(Gdiplus::Status& last, Gdiplus::Status status) noexcept
{
    if (status != Gdiplus::Ok) last = status;
    return status;
}

inline Gdiplus::Status TakeFrom(Gdiplus::Status& last) noexcept
{
    return std::exchange(last, Gdiplus::Ok);
}

// A UTF-16 path as the other families take it, in the code page; empty for null.
std::string ToCodePage(const WCHAR* pszPath);

// The status for an ERROR_... code of a file that can't be opened or made.
Gdiplus::Status StatusOf(DWORD dwError) noexcept;

} // namespace kx::gdiplus
