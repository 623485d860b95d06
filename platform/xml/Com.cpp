#include "include/platform/Com.h"

#include "include/platform/Xml.h"
#include "platform/SameGuid.h"
#include "platform/xml/DocumentObject.h"

#include <new>

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
    if (g_nInitialized == 0) return CO_E_NOTINITIALIZED;
    if (!kx::SameGuid(clsid, CLSID_DOMDocument) || !(dwContext & kInProcess)) return REGDB_E_CLASSNOTREG;
    if (pOuter) return CLASS_E_NOAGGREGATION;
    return kx::xml::MakeDocument()->QueryInterface(iid, ppObject);
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}
