#include "KXXmlDomDocument.h"

#include "files/WideText.h"
#include "platform/Com.h"

using kx::files::Checked;
using kx::files::WideResult;
using kx::files::WideText;

namespace {

// Takes over the reference.
CKXXmlDomElement Wrap(IXMLDOMElement* pElement)
{
    CKXXmlDomElement element(pElement);
    if (pElement) pElement->Release();
    return element;
}

} // namespace

CKXXmlDomDocument::CKXXmlDomDocument()
{
    void* pDocument = nullptr;
    Checked(CoCreateInstance(CLSID_DOMDocument, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument, &pDocument));
    m_pDocument = static_cast<IXMLDOMDocument*>(pDocument);
}

CKXXmlDomDocument::~CKXXmlDomDocument()
{
    if (m_pDocument) m_pDocument->Release();
}

bool CKXXmlDomDocument::Load(const char* pszFile)
{
    if (!m_pDocument) return false;
    const WideText file(pszFile);
    VARIANT_BOOL bLoaded = VARIANT_FALSE;
    const HRESULT hr = Checked(m_pDocument->load(file.AsVariant(), &bLoaded));
    return SUCCEEDED(hr) && bLoaded != VARIANT_FALSE;
}

bool CKXXmlDomDocument::LoadXml(const char* pszXml)
{
    if (!m_pDocument) return false;
    const WideText xml(pszXml);
    VARIANT_BOOL bLoaded = VARIANT_FALSE;
    const HRESULT hr = Checked(m_pDocument->loadXML(xml, &bLoaded));
    return SUCCEEDED(hr) && bLoaded != VARIANT_FALSE;
}

void CKXXmlDomDocument::Save(const char* pszFile)
{
    if (!m_pDocument) return;
    const WideText file(pszFile);
    Checked(m_pDocument->save(file.AsVariant()));
}

void CKXXmlDomDocument::SetText(const char* pszText)
{
    if (!m_pDocument) return;
    Checked(m_pDocument->put_text(WideText(pszText)));
}

CString CKXXmlDomDocument::GetXml() const
{
    WideResult xml;
    if (m_pDocument) Checked(m_pDocument->get_xml(xml.Target()));
    return xml.Text();
}

CString CKXXmlDomDocument::GetText() const
{
    return GetXml();
}

CKXXmlDomElement CKXXmlDomDocument::GetDocumentElement()
{
    IXMLDOMElement* pElement = nullptr;
    if (m_pDocument) Checked(m_pDocument->get_documentElement(&pElement));
    return Wrap(pElement);
}

void CKXXmlDomDocument::SetDocumentElement(CKXXmlDomElement& element)
{
    if (m_pDocument) Checked(m_pDocument->putref_documentElement(element.GetElementPtr()));
}

CKXXmlDomElement CKXXmlDomDocument::CreateElement(const char* pszName, const char* pszText)
{
    if (!m_pDocument) return {};
    IXMLDOMElement* pElement = nullptr;
    const HRESULT hr = Checked(m_pDocument->createElement(WideText(pszName), &pElement));
    CKXXmlDomElement element = Wrap(pElement);
    if (SUCCEEDED(hr) && pszText) element.SetText(pszText);
    return element;
}
