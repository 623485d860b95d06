#include "platform/xml/libxml/Markup.h"

#include <algorithm>
#include <array>

namespace kx::xml::libxml {

namespace {

// The first few count in texts, all of them in attributes.
constexpr std::string_view kSpecial = "&<>\r\"\t\n";
constexpr std::size_t kInTexts = 4;
constexpr std::array<std::string_view, kSpecial.size()> kEscapes = {"&amp;",  "&lt;", "&gt;", "&#13;",
                                                                    "&quot;", "&#9;", "&#10;"};

// Spells nodes as markup. libxml2's own writer loses without a word what it has no memory for, and what it
// writes of declarations doesn't always read as them.
class Writer
{
public:
    explicit Writer(const Tree& tree) : m_tree(tree) {}

    void AddDocument(std::string_view encoding)
    {
        AddDeclaration(encoding);
        for (const xmlNode* node = m_tree.DocNode()->children; node; node = node->next) {
            AddNode(node);
            if (node->next) Add("\n");
        }
    }
    // With all that is in it, as deep within each other as documents may be.
    void AddNode(const xmlNode* node)
    {
        switch (node->type) {
        case XML_ELEMENT_NODE:
            return AddElement(node);
        case XML_TEXT_NODE:
            return AddEscaped(ViewOf(node->content), kSpecial.substr(0, kInTexts));
        case XML_CDATA_SECTION_NODE:
            return AddCData(ViewOf(node->content));
        case XML_COMMENT_NODE:
            return Add("<!--", ViewOf(node->content), "-->");
        case XML_PI_NODE:
            return Add("<?", ViewOf(node->name), node->content ? " " : "", ViewOf(node->content), "?>");
        case XML_ENTITY_REF_NODE:
            return Add("&", ViewOf(node->name), ";");
        case XML_ATTRIBUTE_NODE:
            return AddAttribute(reinterpret_cast<const xmlAttr*>(node));
        case XML_DTD_NODE:
            return AddDocType(reinterpret_cast<const xmlDtd*>(node));
        default:
            return;
        }
    }
    std::string Take() { return std::move(m_out); }

private:
    template <class... Parts>
    void Add(const Parts&... parts)
    {
        (m_out.append(parts), ...);
    }
    void AddName(const xmlNs* ns, const xmlChar* local)
    {
        if (ns && ns->prefix) Add(ViewOf(ns->prefix), ":");
        Add(ViewOf(local));
    }
    void AddAttribute(const xmlAttr* attribute)
    {
        AddName(attribute->ns, attribute->name);
        AddValue(attribute->children ? ViewOf(attribute->children->content) : "");
    }
    void AddValue(std::string_view value)
    {
        Add("=\"");
        AddEscaped(value, kSpecial);
        Add("\"");
    }
    void AddEscaped(std::string_view text, std::string_view special)
    {
        for (std::size_t at; (at = text.find_first_of(special)) != text.npos; text.remove_prefix(at + 1))
            Add(text.substr(0, at), kEscapes[kSpecial.find(text[at])]);
        Add(text);
    }
    // A text that no section can hold stands between two; the first "]]" of an end then ends one itself.
    void AddCData(std::string_view text)
    {
        constexpr std::string_view kEnd = "]]>";
        Add("<![CDATA[");
        for (std::size_t at; (at = std::min(text.find(kEnd), text.find('\r'))) != text.npos;) {
            if (text[at] == '\r')
                Add(text.substr(0, at++), "]]>&#13;<![CDATA[");
            else
                Add(text.substr(0, at += 2), "]]><![CDATA[");
            text.remove_prefix(at);
        }
        Add(text, kEnd);
    }
    void AddElement(const xmlNode* element)
    {
        Add("<");
        AddName(element->ns, element->name);
        for (const xmlNs* ns = element->nsDef; ns; ns = ns->next) {
            if (ViewOf(ns->prefix) == "xml" || (ns->prefix && ViewOf(ns->href).empty())) continue;
            Add(ns->prefix ? " xmlns:" : " xmlns", ViewOf(ns->prefix));
            AddValue(ViewOf(ns->href));
        }
        for (const xmlAttr* attribute = element->properties; attribute; attribute = attribute->next) {
            Add(" ");
            AddAttribute(attribute);
        }
        if (!element->children) return Add("/>");
        Add(">");
        for (const xmlNode* child = element->children; child; child = child->next)
            AddNode(child);
        Add("</");
        AddName(element->ns, element->name);
        Add(">");
    }
    void AddDeclaration(std::string_view encoding)
    {
        const xmlDoc& doc = *m_tree.Doc();
        if (doc.standalone == -1) return; // libxml2's mark for none
        Add("<?xml version=\"", doc.version ? ViewOf(doc.version) : "1.0");
        if (!encoding.empty()) Add("\" encoding=\"", encoding);
        if (doc.standalone >= 0) Add("\" standalone=\"", doc.standalone ? "yes" : "no");
        Add("\"?>\n");
    }
    void AddDocType(const xmlDtd* dtd)
    {
        const std::string_view system = ViewOf(dtd->SystemID);
        const char* const pszQuote = system.find('"') == system.npos ? "\"" : "'";
        Add("<!DOCTYPE ", ViewOf(dtd->name));
        if (dtd->ExternalID)
            Add(" PUBLIC \"", ViewOf(dtd->ExternalID), "\"");
        else if (dtd->SystemID)
            Add(" SYSTEM");
        if (dtd->SystemID || dtd->ExternalID) Add(" ", pszQuote, system, pszQuote);
        Add(m_tree.Subset().starts_with('[') ? " " : "", m_tree.Subset());
    }

    const Tree& m_tree;
    std::string m_out;
};

// Whether a file of these bytes is this document again.
bool ReadsAs(const Tree& tree, const std::string& bytes, const std::string& markup)
{
    const auto text = Decode(bytes);
    if (!text) return false;
    if (*text == markup) return true;
    const auto again = ParseText(*text);
    return again && MarkupOf(*again, again->DocNode()) == MarkupOf(tree, tree.DocNode());
}

} // namespace

std::string MarkupOf(const Tree& tree, const xmlNode* node)
{
    Writer writer(tree);
    node->type == XML_DOCUMENT_NODE ? writer.AddDocument({}) : writer.AddNode(node);
    return writer.Take();
}

std::string FileContentOf(const Tree& tree)
{
    const auto in = [&](std::string_view encoding) {
        Writer writer(tree);
        writer.AddDocument(encoding);
        return writer.Take() + "\n";
    };
    const std::string encoding(ViewOf(tree.Doc()->encoding));
    if (!encoding.empty()) {
        const std::string markup = in(encoding);
        auto bytes = Encode(markup, encoding);
        if (bytes && ReadsAs(tree, *bytes, markup)) return std::move(*bytes);
    }
    return in("UTF-8");
}

} // namespace kx::xml::libxml
