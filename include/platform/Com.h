#pragma once

// The component service: a thread's right to use it, and the making of its one class, the XML document
// (Xml.h).

#include "../KXExport.h"
#include "Guid.h"
#include "Types.h"
#include "Unknown.h"

// An object may be made anywhere.
inline constexpr DWORD CLSCTX_ALL = 23;

// Failures of CoCreateInstance.
inline constexpr HRESULT CO_E_NOTINITIALIZED = static_cast<HRESULT>(0x800401F0);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);

// {2933BF90-7B36-11D2-B20E-00C04F983E60}
inline constexpr GUID CLSID_DOMDocument{
    0x2933BF90, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

// Lets the calling thread make objects, until as many calls of CoUninitialize. S_OK for the thread's first
// call, S_FALSE for a further one. The argument is ignored.
KX_API HRESULT CoInitialize(void* pReserved);
// Objects made before stay usable. One call more than there were of CoInitialize does nothing.
KX_API void CoUninitialize();

// Makes an object of a class, with one reference for the caller in `*ppObject`, which is null on failure:
// E_POINTER for a null `ppObject`, CO_E_NOTINITIALIZED on a thread that didn't call CoInitialize,
// CLASS_E_NOAGGREGATION for an outer object, REGDB_E_CLASSNOTREG for an unknown class, for a context that
// leaves out this process (bit 0) and without the library's module for XML, E_NOINTERFACE, E_OUTOFMEMORY.
KX_API HRESULT CoCreateInstance(const GUID& clsid, IUnknown* pOuter, DWORD dwContext, const GUID& iid,
                                void** ppObject);
