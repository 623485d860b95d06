#include "Short.h"

#include <platform/Com.h>
#include <platform/Xml.h>

// A document by the interfaces themselves, for what the classes don't offer; a client frees what it is given.
int main()
{
    if (FAILED(CoInitialize(nullptr))) return 1;
    IXMLDOMDocument* pDocument = nullptr;
    void* pObject = nullptr;
    if (SUCCEEDED(CoCreateInstance(CLSID_DOMDocument, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument, &pObject)))
        pDocument = static_cast<IXMLDOMDocument*>(pObject);
    if (!pDocument) return 1;

    VARIANT path;
    VariantInit(&path);
    path.vt = VT_BSTR;
    path.bstrVal = SysAllocString(u"C:\\none\\words.xml");
    VARIANT_BOOL bLoaded = VARIANT_TRUE;
    const bool bMissing = pDocument->load(path, &bLoaded) == S_FALSE && bLoaded == VARIANT_FALSE;
    VariantClear(&path);

    const BSTR bstrXml = SysAllocString(u"<words><word>harbour</word></words>");
    const bool bParsed = pDocument->loadXML(bstrXml, &bLoaded) == S_OK;
    SysFreeString(bstrXml);
    BSTR bstrText = nullptr;
    const bool bText = pDocument->get_text(&bstrText) == S_OK && SysStringLen(bstrText) == 7;
    SysFreeString(bstrText);
    pDocument->Release();
    CoUninitialize();
    std::printf("missing %d, parsed %d, text %d\n", bMissing, bParsed, bText);
    return bMissing && bParsed && bText ? 0 : 1;
}
