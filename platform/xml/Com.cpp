#include "include/platform/Com.h"

#include "internal/Debug.h"
#include "platform/SameGuid.h"
#include "platform/module/Door.h"
#include "platform/xml/Functions.h"

#include <new>

KX_DOOR(xml, kx::xml::Functions);

namespace {
thread_local int g_nInitialized = 0;
}

HRESULT CoInitialize(void*)
{
    return g_nInitialized++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize()
{
    if (g_nInitialized > 0) --g_nInitialized;
}

HRESULT CoCreateInstance(const GUID& clsid, IUnknown* pOuter, DWORD dwContext, const GUID& iid,
                         void** ppObject)
try {
    constexpr DWORD kInProcess = 1;
    if (!ppObject) return E_POINTER;
    *ppObject = nullptr;
    if (g_nInitialized == 0) {
        kx::debug::Tell("xml", "CoInitialize was not called on this thread; there is no document");
        return CO_E_NOTINITIALIZED;
    }
    if (!kx::SameGuid(clsid, CLSID_DOMDocument) || !(dwContext & kInProcess)) return REGDB_E_CLASSNOTREG;
    if (pOuter) return CLASS_E_NOAGGREGATION;
    const kx::xml::Functions* const functions = g_door.Open();
    if (!functions) return REGDB_E_CLASSNOTREG;
    IXMLDOMDocument* const document = functions->makeDocument();
    const HRESULT result = document->QueryInterface(iid, ppObject);
    document->Release();
    return result;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}
