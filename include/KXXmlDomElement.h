#pragma once

#include "KXExport.h"
#include "platform/OleDateTime.h"
#include "platform/String.h"
#include "platform/Xml.h"

#include <vector>

class CKXXmlDomDocument;

// An element of an XML document: a handle, copies of which name the same element. It stays usable after the
// CKXXmlDomDocument that it came from is gone.
//
// An element may be invalid: everything then does nothing and gives the empty string, 0 or an invalid
// element, as does what fails. Texts are in the process's code page (platform/CodePage.h), which holds every
// character. A null text counts as the empty one. What the document service makes of names, patterns and
// texts, and its limits, is told in platform/Xml.h.
//
// Nothing is thrown but a CMemoryException, for a lack of memory: a change is then not made, and a file not
// touched. A document and its elements are used by one thread at a time.
class KX_API CKXXmlDomElement
{
public:
    CKXXmlDomElement() = default;
    // Takes a reference of its own; null makes an invalid element.
    CKXXmlDomElement(IXMLDOMElement* pElement);
    CKXXmlDomElement(const CKXXmlDomElement& other);
    ~CKXXmlDomElement();
    CKXXmlDomElement& operator=(const CKXXmlDomElement& other);

    // Stays this object's.
    IXMLDOMElement* GetElementPtr() const { return m_pElement; }
    // Whether there is an element.
    bool IsValid() const { return m_pElement != nullptr; }

    // The name as it stands in the document, with its prefix.
    CString GetName() const;
    // The text of the element and all in it.
    CString GetText() const;
    CString GetXml() const;
    // Takes the place of all that was in the element.
    void SetText(const char* pszText);
    // Moves the child behind this element's last one. Nothing happens if it is invalid or holds this element.
    void AppendChild(const CKXXmlDomElement& child);

    // ---- Attributes

    // The attribute's text; empty without it.
    CString GetAttributeString(const char* pszName) const;
    // Also 0 for a text that is no number as a whole or lies beyond 32 bits.
    long GetAttributeInt32(const char* pszName) const;
    // The default for a missing attribute and a text that is no number as a whole.
    double GetAttributeDouble(const char* pszName, double dDefault);
    // The default for a missing or empty attribute; day 0 with the status invalid for a text that is no date.
    // The form that COleDateTime::ParseDateTime takes, with a "T" before the time and a fraction of the
    // second too.
    COleDateTime GetAttributeDateTime(const char* pszName, COleDateTime tDefault);
    // Add or overwrite it. A number beyond 32 bits is written in full.
    void SetAttributeString(const char* pszName, const char* pszValue);
    void SetAttributeInt32(const char* pszName, long nValue);

    // ---- Children by a pattern: an XPath expression, such as a child's name or "a/b"

    // The first node found, or an invalid element if there is none or it is no element.
    CKXXmlDomElement GetChild(const char* pszPath) const;
    // The same; 1 if found, else 0.
    int GetChild(const char* pszPath, CKXXmlDomElement& child) const;
    // All nodes found, in document order. One that is no element is an invalid entry.
    std::vector<CKXXmlDomElement> GetChilds(const char* pszPath) const;

    // Typed readers. Without the child, the value becomes the default (the empty string), and the result is 0
    // if the child is required and else 1. With a child the result is 1 whatever the text holds, but for
    // `int`, `long`, `unsigned long` and `double` an empty text gives the default and 0.
    int GetChild(const char* pszPath, CString& strValue, bool bRequired) const;
    // The number at the text's start; the nearest of the type for one out of range, and the value stays as it
    // was without one.
    int GetChild(const char* pszPath, int& nValue, bool bRequired, int nDefault) const;
    int GetChild(const char* pszPath, long& nValue, bool bRequired, long nDefault) const;
    int GetChild(const char* pszPath, unsigned long& nValue, bool bRequired, unsigned long nDefault) const;
    // Takes both the signed form that AppendChild writes and the unsigned one. An empty text leaves the value
    // as it was.
    int GetChild(const char* pszPath, unsigned long long& nValue, bool bRequired,
                 unsigned long long nDefault) const;
    // The number at the text's start, as `atof` takes it, with a decimal point in every locale; 0 without
    // one.
    int GetChild(const char* pszPath, double& dValue, bool bRequired, double dDefault) const;
    // "2009-03-01 12:34:56", also with a "T" between and followed by a fraction, a zone or "Z", which are
    // passed over. What the text lacks at its end counts as 0, so a date alone is its midnight. The status is
    // invalid unless there are such a day and time.
    int GetChild(const char* pszPath, COleDateTime& tValue, bool bRequired, COleDateTime tDefault) const;

    // Sets the text of a child that exists; 1 if there is one, else 0.
    int SetChild(const char* pszPath, const char* pszText);

    // Append a child of that name made by `doc`. An empty string, and a number that equals the default, is
    // left out unless `bForce`; a forced empty string makes an element without a text.
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, const CString& strValue, bool bForce);
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, long nValue, bool bForce, long nDefault);
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, unsigned long nValue, bool bForce,
                     unsigned long nDefault);
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, int nValue, bool bForce, int nDefault);
    // Written as the signed number of the same bits.
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, unsigned long long nValue, bool bForce,
                     unsigned long long nDefault);
    // Written with six digits behind the point.
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, double dValue, bool bForce,
                     double dDefault);
    // Always appends, as COleDateTime::Format gives "%Y-%m-%d %H:%M:%S".
    void AppendChild(CKXXmlDomDocument& doc, const char* pszName, COleDateTime& tValue, bool bForce);

private:
    IXMLDOMElement* m_pElement = nullptr;
};
