#pragma once

#include "KXXmlDomElement.h"

// An XML document. It is null, and everything does nothing and gives false, the empty string or an invalid
// element, on a thread that has not called CoInitialize (platform/Com.h); the library never calls it. Texts,
// failures and threads are as with CKXXmlDomElement.
class KX_API CKXXmlDomDocument
{
public:
    // An empty document; null without CoInitialize.
    CKXXmlDomDocument();
    CKXXmlDomDocument(const CKXXmlDomDocument&) = delete;
    CKXXmlDomDocument& operator=(const CKXXmlDomDocument&) = delete;
    // Lets go of the document, which lives on with its elements.
    ~CKXXmlDomDocument();

    // Load a file or a text in place of what the document held, which elements that the client has keep.
    // False, with the document empty, for what is no well-formed document or goes beyond the limits of
    // platform/Xml.h. Nothing outside of the document is ever fetched.
    bool Load(const char* pszFile);
    bool LoadXml(const char* pszXml);
    // Writes the file in the document's declared encoding if that is one of those of platform/Xml.h, else in
    // UTF-8: what was saved loads again. An old file stays unless all of the new one could be written, and if
    // the document is empty.
    void Save(const char* pszFile);

    // A document takes no text: nothing happens.
    void SetText(const char* pszText);
    // The markup, in both.
    CString GetXml() const;
    CString GetText() const;

    // The outermost element; an invalid one in an empty document.
    CKXXmlDomElement GetDocumentElement();
    // Takes the place of the element that was there. Nothing happens if it is invalid.
    void SetDocumentElement(CKXXmlDomElement& element);
    // A new element, not attached to anything, with a text unless that is null. Invalid for what is no name.
    CKXXmlDomElement CreateElement(const char* pszName, const char* pszText);

private:
    IXMLDOMDocument* m_pDocument = nullptr;
};
