#include "KXXmlDomElement.h"

#include "files/WideText.h"

#include <limits>

using kx::files::Checked;
using kx::files::ToText;
using kx::files::WideResult;
using kx::files::WideText;

namespace {

// A reference of one's own on the same element.
IXMLDOMElement* Share(IXMLDOMElement* pElement)
{
    void* pShared = nullptr;
    if (pElement) pElement->QueryInterface(IID_IXMLDOMElement, &pShared);
    return static_cast<IXMLDOMElement*>(pShared);
}

// An attribute's value turned to a type, for the length of the scope.
class Attribute
{
public:
    Attribute(IXMLDOMElement* pElement, const char* pszName, VARTYPE vt)
    {
        if (!pElement || Checked(pElement->getAttribute(WideText(pszName), &m_value)) != S_OK) return;
        const HRESULT hr = VariantChangeType(&m_value, &m_value, 0, vt);
        if (hr == E_OUTOFMEMORY) VariantClear(&m_value);
        m_bThere = SUCCEEDED(Checked(hr));
    }
    Attribute(const Attribute&) = delete;
    Attribute& operator=(const Attribute&) = delete;
    ~Attribute() { VariantClear(&m_value); }

    explicit operator bool() const noexcept { return m_bThere; }
    const VARIANT* operator->() const noexcept { return &m_value; }

private:
    VARIANT m_value{};
    bool m_bThere = false;
};

} // namespace

CKXXmlDomElement::CKXXmlDomElement(IXMLDOMElement* pElement) : m_pElement(pElement)
{
    if (m_pElement) m_pElement->AddRef();
}

CKXXmlDomElement::CKXXmlDomElement(const CKXXmlDomElement& other) : m_pElement(Share(other.m_pElement))
{
}

CKXXmlDomElement::~CKXXmlDomElement()
{
    if (m_pElement) m_pElement->Release();
}

CKXXmlDomElement& CKXXmlDomElement::operator=(const CKXXmlDomElement& other)
{
    if (this == &other) return *this;
    if (m_pElement) m_pElement->Release();
    m_pElement = nullptr;
    m_pElement = Share(other.m_pElement);
    return *this;
}

CString CKXXmlDomElement::GetName() const
{
    WideResult name;
    return m_pElement && Checked(m_pElement->get_nodeName(name.Target())) == S_OK ? name.Text() : CString();
}

CString CKXXmlDomElement::GetText() const
{
    WideResult text;
    if (m_pElement) Checked(m_pElement->get_text(text.Target()));
    return text.Text();
}

CString CKXXmlDomElement::GetXml() const
{
    WideResult xml;
    if (m_pElement) Checked(m_pElement->get_xml(xml.Target()));
    return xml.Text();
}

void CKXXmlDomElement::SetText(const char* pszText)
{
    if (m_pElement) Checked(m_pElement->put_text(WideText(pszText)));
}

void CKXXmlDomElement::AppendChild(const CKXXmlDomElement& child)
{
    if (!m_pElement) return;
    IXMLDOMNode* pAppended = nullptr;
    Checked(m_pElement->appendChild(child.m_pElement, &pAppended));
    if (pAppended) pAppended->Release();
}

CString CKXXmlDomElement::GetAttributeString(const char* pszName) const
{
    const Attribute value(m_pElement, pszName, VT_BSTR);
    return value ? ToText(value->bstrVal) : CString();
}

long CKXXmlDomElement::GetAttributeInt32(const char* pszName) const
{
    const Attribute value(m_pElement, pszName, VT_I4);
    return value ? value->lVal : 0;
}

double CKXXmlDomElement::GetAttributeDouble(const char* pszName, double dDefault)
{
    const Attribute value(m_pElement, pszName, VT_R8);
    return value ? value->dblVal : dDefault;
}

COleDateTime CKXXmlDomElement::GetAttributeDateTime(const char* pszName, COleDateTime tDefault)
{
    CString strText = GetAttributeString(pszName);
    if (strText.IsEmpty()) return tDefault;
    COleDateTime tValue;
    if (tValue.ParseDateTime(strText)) return tValue;
    strText.Replace('T', ' ');
    const int nPoint = strText.Find('.');
    if (nPoint > 0) strText = strText.Left(nPoint);
    tValue.ParseDateTime(strText); // on failure day 0, invalid
    return tValue;
}

void CKXXmlDomElement::SetAttributeString(const char* pszName, const char* pszValue)
{
    if (!m_pElement) return;
    const WideText value(pszValue);
    Checked(m_pElement->setAttribute(WideText(pszName), value.AsVariant()));
}

void CKXXmlDomElement::SetAttributeInt32(const char* pszName, long nValue)
{
    using Limits = std::numeric_limits<LONG>;
    if (!m_pElement) return;
    if (nValue < Limits::min() || nValue > Limits::max()) { // more than the service's type holds
        CString strValue;
        strValue.Format("%ld", nValue);
        SetAttributeString(pszName, strValue);
        return;
    }
    VARIANT value{};
    value.vt = VT_I4;
    value.lVal = static_cast<LONG>(nValue);
    Checked(m_pElement->setAttribute(WideText(pszName), value));
}
