#include "platform/xml/Serialize.h"

#include "platform/xml/EscapedTexts.h"
#include "platform/xml/FileEncoding.h"

#include <libxml/xmlsave.h>
#include <new>

namespace kx::xml {

namespace {

constexpr const char* kUtf8 = "UTF-8";

std::string Declaration(const xmlDoc* doc, std::string_view encoding)
{
    if (!HasDeclaration(doc)) return {};
    std::string text = R"(<?xml version=")";
    text += doc->version ? ViewOf(doc->version) : "1.0";
    if (!encoding.empty()) text.append(R"(" encoding=")").append(encoding);
    if (doc->standalone >= 0) text.append(R"(" standalone=")").append(doc->standalone ? "yes" : "no");
    return text + "\"?>\n";
}

// Without an encoding, libxml2 would spell out the characters of attributes as numbers.
class AsUtf8
{
public:
    explicit AsUtf8(xmlDoc* doc) : m_doc(doc), m_encoding(doc->encoding) { m_doc->encoding = ToXml(kUtf8); }
    AsUtf8(const AsUtf8&) = delete;
    AsUtf8& operator=(const AsUtf8&) = delete;
    ~AsUtf8() { m_doc->encoding = m_encoding; }

private:
    xmlDoc* m_doc;
    const xmlChar* m_encoding;
};

void Append(std::string& text, xmlNode* node)
{
    const std::unique_ptr<xmlOutputBuffer, FreeBy<xmlOutputBufferClose>> out(xmlAllocOutputBuffer(nullptr));
    if (!out) throw std::bad_alloc();
    const AsUtf8 mark(node->doc);
    xmlNodeDumpOutput(out.get(), node->doc, node, 0, 0, kUtf8);
    if (out->error != 0) throw std::bad_alloc();
    text.append(ViewOf(xmlOutputBufferGetContent(out.get())).substr(0, xmlOutputBufferGetSize(out.get())));
}

std::string DocumentMarkup(xmlDoc* doc, std::string_view encoding)
{
    std::string text = Declaration(doc, encoding);
    for (xmlNode* node = doc->children; node; node = node->next) {
        Append(text, node);
        if (node->next) text += '\n';
    }
    return text;
}

// What is written, once more if something in it has to be escaped. To look for declarations in the text is
// far quicker than to walk through all nodes for them.
template <class Write>
std::string Escaped(xmlNode* top, Write write)
{
    std::string text = write();
    if (!top->doc->intSubset && text.find("xmlns") == text.npos) return text;
    const EscapedTexts escaped(top);
    return escaped.Any() ? write() : text;
}

} // namespace

std::string MarkupOf(xmlNode* node)
{
    const Hush hush;
    std::string text = Escaped(node, [&] {
        if (node->type == XML_DOCUMENT_NODE) return DocumentMarkup(reinterpret_cast<xmlDoc*>(node), {});
        std::string markup;
        Append(markup, node);
        return markup;
    });
    if (node->type == XML_ATTRIBUTE_NODE) text.erase(0, text.find_first_not_of(' '));
    return text;
}

std::optional<std::string> FileContentOf(xmlDoc* doc)
{
    const Hush hush;
    const FileEncoding encoding(doc);
    return encoding.Encode(Escaped(reinterpret_cast<xmlNode*>(doc),
                                   [&] { return DocumentMarkup(doc, encoding.Name()) + "\n"; }));
}

} // namespace kx::xml
