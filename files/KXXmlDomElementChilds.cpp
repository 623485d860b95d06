#include "KXStrHelper.h"
#include "KXXmlDomDocument.h"
#include "files/NumberText.h"
#include "files/WideText.h"

#include <memory>
#include <new>

using kx::files::Checked;
using kx::files::ScanNumber;
using kx::files::ToDouble;
using kx::files::ToFixedPoint;
using kx::files::WideResult;
using kx::files::WideText;

namespace {

struct ReleaseList
{
    void operator()(IXMLDOMNodeList* pList) const noexcept { pList->Release(); }
};
using ListPtr = std::unique_ptr<IXMLDOMNodeList, ReleaseList>;

// A node as an element, null if it is none. Takes over the reference.
IXMLDOMElement* AsElement(IXMLDOMNode* pNode)
{
    void* pElement = nullptr;
    if (!pNode) return nullptr;
    pNode->QueryInterface(IID_IXMLDOMElement, &pElement);
    pNode->Release();
    return static_cast<IXMLDOMElement*>(pElement);
}

// The readers of numbers differ in whether an empty text is one.
enum class Empty
{
    IsMissing,
    IsText
};

template <class Value, class Read>
int ReadChild(const CKXXmlDomElement& parent, const char* pszPath, Value& value, bool bRequired,
              const Value& valueDefault, Empty empty, Read read)
{
    const CKXXmlDomElement child = parent.GetChild(pszPath);
    if (!child.IsValid()) {
        value = valueDefault;
        return bRequired ? 0 : 1;
    }
    WideResult text;
    Checked(child.GetElementPtr()->get_text(text.Target()));
    if (empty == Empty::IsMissing && text.IsEmpty()) {
        value = valueDefault;
        return 0;
    }
    read(text, value);
    return 1;
}

template <class Number>
int ReadNumber(const CKXXmlDomElement& parent, const char* pszPath, Number& nValue, bool bRequired,
               Number nDefault, Empty empty = Empty::IsMissing)
{
    return ReadChild(parent, pszPath, nValue, bRequired, nDefault, empty,
                     [](WideResult& text, Number& n) { ScanNumber(text.View(), n); });
}

// Both forms of ISO 8601; a "Z" ends the text.
void ReadDateTime(const WideResult& text, COleDateTime& tValue)
{
    CString strText = text.Text();
    strText.Replace('T', ' ');
    strText.Replace('t', ' ');
    for (const char chZone : {'Z', 'z'})
        if (const int nZone = strText.Find(chZone); nZone >= 0) strText.Truncate(nZone);
    tValue = CKXStrHelper::String2DateTime(strText);
}

} // namespace

CKXXmlDomElement CKXXmlDomElement::GetChild(const char* pszPath) const
{
    CKXXmlDomElement child;
    IXMLDOMNode* pNode = nullptr;
    if (m_pElement && Checked(m_pElement->selectSingleNode(WideText(pszPath), &pNode)) == S_OK)
        child.m_pElement = AsElement(pNode);
    return child;
}

int CKXXmlDomElement::GetChild(const char* pszPath, CKXXmlDomElement& child) const
{
    child = GetChild(pszPath);
    return child.IsValid();
}

std::vector<CKXXmlDomElement> CKXXmlDomElement::GetChilds(const char* pszPath) const
{
    std::vector<CKXXmlDomElement> childs;
    if (!m_pElement) return childs;
    IXMLDOMNodeList* pList = nullptr;
    if (Checked(m_pElement->selectNodes(WideText(pszPath), &pList)) != S_OK || !pList) return childs;
    const ListPtr list(pList);
    long nLength = 0;
    pList->get_length(&nLength);
    try {
        childs.reserve(static_cast<std::size_t>(nLength));
    } catch (const std::bad_alloc&) {
        AfxThrowMemoryException();
    }
    for (long n = 0; n < nLength; ++n) {
        IXMLDOMNode* pNode = nullptr;
        Checked(pList->item(n, &pNode));
        childs.emplace_back().m_pElement = AsElement(pNode);
    }
    return childs;
}

int CKXXmlDomElement::GetChild(const char* pszPath, CString& strValue, bool bRequired) const
{
    return ReadChild(*this, pszPath, strValue, bRequired, CString(), Empty::IsText,
                     [](const WideResult& text, CString& str) { str = text.Text(); });
}

int CKXXmlDomElement::GetChild(const char* pszPath, int& nValue, bool bRequired, int nDefault) const
{
    return ReadNumber(*this, pszPath, nValue, bRequired, nDefault);
}

int CKXXmlDomElement::GetChild(const char* pszPath, long& nValue, bool bRequired, long nDefault) const
{
    return ReadNumber(*this, pszPath, nValue, bRequired, nDefault);
}

int CKXXmlDomElement::GetChild(const char* pszPath, unsigned long& nValue, bool bRequired,
                               unsigned long nDefault) const
{
    return ReadNumber(*this, pszPath, nValue, bRequired, nDefault);
}

int CKXXmlDomElement::GetChild(const char* pszPath, unsigned long long& nValue, bool bRequired,
                               unsigned long long nDefault) const
{
    return ReadNumber(*this, pszPath, nValue, bRequired, nDefault, Empty::IsText);
}

int CKXXmlDomElement::GetChild(const char* pszPath, double& dValue, bool bRequired, double dDefault) const
{
    return ReadChild(*this, pszPath, dValue, bRequired, dDefault, Empty::IsMissing,
                     [](WideResult& text, double& d) { d = ToDouble(text.View()); });
}

int CKXXmlDomElement::GetChild(const char* pszPath, COleDateTime& tValue, bool bRequired,
                               COleDateTime tDefault) const
{
    return ReadChild(*this, pszPath, tValue, bRequired, tDefault, Empty::IsText, ReadDateTime);
}

int CKXXmlDomElement::SetChild(const char* pszPath, const char* pszText)
{
    CKXXmlDomElement child = GetChild(pszPath);
    if (!child.IsValid()) return 0;
    child.SetText(pszText);
    return 1;
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, const CString& strValue,
                                   bool bForce)
{
    if (strValue.IsEmpty() && !bForce) return;
    AppendChild(doc.CreateElement(pszName, strValue.IsEmpty() ? nullptr : strValue.GetString()));
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, long nValue, bool bForce,
                                   long nDefault)
{
    if (nValue == nDefault && !bForce) return;
    CString strText;
    strText.Format("%ld", nValue);
    AppendChild(doc.CreateElement(pszName, strText));
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, unsigned long nValue,
                                   bool bForce, unsigned long nDefault)
{
    if (nValue == nDefault && !bForce) return;
    CString strText;
    strText.Format("%lu", nValue);
    AppendChild(doc.CreateElement(pszName, strText));
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, int nValue, bool bForce,
                                   int nDefault)
{
    AppendChild(doc, pszName, long{nValue}, bForce, long{nDefault});
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, unsigned long long nValue,
                                   bool bForce, unsigned long long nDefault)
{
    AppendChild(doc, pszName, static_cast<long>(nValue), bForce, static_cast<long>(nDefault));
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, double dValue, bool bForce,
                                   double dDefault)
{
    if (dValue == dDefault && !bForce) return;
    AppendChild(doc.CreateElement(pszName, ToFixedPoint(dValue)));
}

void CKXXmlDomElement::AppendChild(CKXXmlDomDocument& doc, const char* pszName, COleDateTime& tValue, bool)
{
    AppendChild(doc.CreateElement(pszName, tValue.Format("%Y-%m-%d %H:%M:%S")));
}
