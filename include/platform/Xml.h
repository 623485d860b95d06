#pragma once

// XML documents as a tree of counted nodes. A document is made by CoCreateInstance (Com.h).
//
// A node is a handle: it keeps the tree that it belongs to alive, also after its document object is gone or
// has loaded another text, and asking for the same node twice gives the same object, but for the document as
// a node, which is no IXMLDOMDocument. A document, its nodes and lists are used by one thread at a time,
// AddRef and Release included.
//
// Names are those that stand in the document, with their prefix. A name without a prefix, in a document or in
// a pattern, means just itself, whatever default namespace is declared. A prefix in a pattern stands for the
// namespace that it has at the node that is asked, or else for the one that the document first declares for
// it.
//
// Limits, beyond which loading, changing and saving refuse, in time and memory that follow the input:
// XML_MAX_DEPTH elements within each other, XML_MAX_ATTRIBUTES on one element, XML_MAX_NAMESPACES declared
// around one place, about XML_MAX_NAMES distinct names (of elements, attributes, prefixes, namespaces) of
// 10 MB together and 10,000 bytes each (in loading, some more), attribute values of XML_MAX_ATTRIBUTE and
// texts of XML_MAX_TEXT bytes of UTF-8, documents of XML_MAX_FILE bytes. Texts that have come to lie beside
// each other count one by one until they are loaded again. What a document declares is XML_MAX_DECLARATIONS
// bytes, and what its entities add to it XML_MAX_EXPANSION: their text, 32 bytes for each node and reference,
// 1,000 for a parameter's, and a 400th of each text that an entity's is appended to. Default attributes
// aren't added, but count there.
//
// Results: S_OK; S_FALSE for a search that found nothing, with its output null; E_POINTER for a null output,
// E_INVALIDARG for an argument that makes no sense, E_OUTOFMEMORY, and E_FAIL where an operation has no
// meaning for this kind of node. Nothing changes on failure, and outputs are null. A BSTR or an interface
// that an operation gives out is the caller's. What XML can't hold (control characters) becomes "?" in
// texts that are set.

#include "Com.h"
#include "Variant.h"

// The limits, as told above.
inline constexpr int XML_MAX_DEPTH = 256;
inline constexpr int XML_MAX_ATTRIBUTES = 4096;
inline constexpr int XML_MAX_NAMESPACES = 512;
inline constexpr UINT XML_MAX_ATTRIBUTE = 1 << 20;
inline constexpr UINT XML_MAX_TEXT = 10'000'000;
inline constexpr UINT XML_MAX_FILE = 64 << 20;
inline constexpr int XML_MAX_NAMES = 100'000;
inline constexpr UINT XML_MAX_DECLARATIONS = 128 << 10;
inline constexpr UINT XML_MAX_EXPANSION = 10'000'000;

// {2933BF80-7B36-11D2-B20E-00C04F983E60} and so on
inline constexpr GUID IID_IXMLDOMNode{
    0x2933BF80, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
// Identities for QueryInterface and CoCreateInstance.
inline constexpr GUID IID_IXMLDOMDocument{
    0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
// The list of nodes.
inline constexpr GUID IID_IXMLDOMNodeList{
    0x2933BF82, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
// The element.
inline constexpr GUID IID_IXMLDOMElement{
    0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

struct IXMLDOMNodeList;

// A node of a document.
struct IXMLDOMNode : IUnknown
{
    // The name; "#document", "#text", "#cdata-section" or "#comment" for what has none.
    virtual HRESULT get_nodeName(BSTR* pbstrName) = 0;
    // The text of the node and of all below it, without comments and processing instructions. White space
    // stays as it is.
    virtual HRESULT get_text(BSTR* pbstrText) = 0;
    // An element's text takes the place of all that was in it; the empty text, and null, leave it empty but
    // with an end tag. E_FAIL for a document.
    virtual HRESULT put_text(BSTR bstrText) = 0;
    // The markup. A document's has its declaration, if there is one, without an encoding.
    virtual HRESULT get_xml(BSTR* pbstrXml) = 0;

    // Moves an element, with all in it, behind this one's last child, out of the place where it was, which
    // may be in another document. A document takes one element. E_INVALIDARG for null, for another kind of
    // node, for an element that this one lies in, and for a depth beyond the limit. `ppAppended` may be null;
    // else it is given the element with a reference of its own.
    virtual HRESULT appendChild(IXMLDOMNode* pChild, IXMLDOMNode** ppAppended) = 0;

    // The first node, or all nodes in the document's order, that an XPath 1.0 expression selects from here. A
    // name alone selects the children of that name. `id()` knows the attributes that the document's own
    // declarations make identities, and `namespace-uri()` tells the default namespace of an element without a
    // prefix. E_INVALIDARG for what is no such expression, E_FAIL for one that has another result than nodes.
    // An expression takes as long as it takes: there is no limit on its steps. Time follows the nodes passed,
    // but for steps that meet the same nodes again, which libxml2 compares with all that it has found. With
    // `id()`, ancestors, and `..` before the end of a path or behind a predicate, time grows with the square
    // of the nodes found (20,000 in 1.1 s). Where each of many nodes has many preceding or following ones or
    // siblings, it grows with the cube (`//a/following-sibling::a` takes 0.4 s for 1,000, and a union of
    // `preceding::` for 5,000 two minutes); such an axis in a predicate is one factor less.
    // E_OUTOFMEMORY unless 16 MB are at hand: libxml2 doesn't survive a lack of memory within an evaluation,
    // so one that needs more than there is ends the process.
    virtual HRESULT selectSingleNode(BSTR bstrPattern, IXMLDOMNode** ppNode) = 0;
    // An empty list and S_OK if nothing was found.
    virtual HRESULT selectNodes(BSTR bstrPattern, IXMLDOMNodeList** ppList) = 0;

protected:
    ~IXMLDOMNode() = default;
};

// An element.
struct IXMLDOMElement : IXMLDOMNode
{
    // A VT_BSTR. S_FALSE and VT_NULL without such an attribute. What `*pValue` held isn't freed.
    virtual HRESULT getAttribute(BSTR bstrName, VARIANT* pValue) = 0;
    // Adds or overwrites it. The value is one that VariantChangeType can turn to VT_BSTR, and stays the
    // caller's. E_INVALIDARG for what is no name.
    virtual HRESULT setAttribute(BSTR bstrName, VARIANT value) = 0;

protected:
    ~IXMLDOMElement() = default;
};

// The nodes as they were found; each stays in the list whatever becomes of it in the document.
struct IXMLDOMNodeList : IUnknown
{
    // How many nodes there are.
    virtual HRESULT get_length(long* pnLength) = 0;
    // S_FALSE and null for an index out of range, which begins at 0.
    virtual HRESULT item(long nIndex, IXMLDOMNode** ppNode) = 0;

protected:
    ~IXMLDOMNodeList() = default;
};

// A document.
struct IXMLDOMDocument : IXMLDOMNode
{
    // Load a file, by a path of this library in a VT_BSTR, or a text. The file's encoding is that of its byte
    // order mark, or else the one that it declares (what is declared as GB2312 or GBK is read as their
    // superset, byte 80 as the euro sign); a text's declared encoding counts for saving alone. `*pbSuccess`
    // tells whether it succeeded, and the result is S_FALSE if not; the document is empty then. What is
    // well-formed is accepted but for the limits above.
    // Entities that the document declares are replaced by their text. Nothing is ever fetched from elsewhere:
    // a reference to an entity that lies there, or that only what lies there could declare, stays as it is
    // in the markup and counts as an empty text; in an attribute's value it is left out.
    virtual HRESULT load(VARIANT path, VARIANT_BOOL* pbSuccess) = 0;
    virtual HRESULT loadXML(BSTR bstrXml, VARIANT_BOOL* pbSuccess) = 0;
    // Writes the file in the declared encoding if that is UTF-16, GBK or GB2312 (in GBK), GB18030, Big5,
    // EUC-JP, EUC-KR, ISO-8859-x or windows-125x but 1255 and 1258, with references for what that lacks in
    // texts and attributes, and what was written reads as the same document; else in UTF-8. The document type
    // declaration is written as it was read. The file's old content stays unless all of the new could be
    // written: E_FAIL then, as for a document without an element and for one whose file would be too large.
    virtual HRESULT save(VARIANT path) = 0;

    // S_FALSE and null if the document is empty.
    virtual HRESULT get_documentElement(IXMLDOMElement** ppElement) = 0;
    // Moves the element to the place of the one that was there, as appendChild.
    virtual HRESULT putref_documentElement(IXMLDOMElement* pElement) = 0;
    // An element that lies nowhere yet. E_INVALIDARG for what is no name.
    virtual HRESULT createElement(BSTR bstrName, IXMLDOMElement** ppElement) = 0;

protected:
    ~IXMLDOMDocument() = default;
};
