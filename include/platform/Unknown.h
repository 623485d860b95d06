#pragma once

// Counted interfaces. What gives one out gives a reference with it, which the caller ends with Release.

#include "Guid.h"
#include "Types.h"

// A count of references.
using ULONG = std::uint32_t;

// How a call ended; below 0 it failed.
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);

// Whether a call did not fail.
inline constexpr bool SUCCEEDED(HRESULT hr)
{
    return hr >= 0;
}
// Whether a call failed.
inline constexpr bool FAILED(HRESULT hr)
{
    return hr < 0;
}

// {00000000-0000-0000-C000-000000000046}
inline constexpr GUID IID_IUnknown{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// AddRef and Release give the new count, for tests alone, and may be called from any thread unless an
// interface says otherwise.
struct IUnknown
{
    // Another interface of the object; one more holder of it; one less, and at none it ends.
    virtual HRESULT QueryInterface(const GUID& iid, void** ppObject) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;
};
