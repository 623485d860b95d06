#include "platform/xml/FileEncoding.h"

#include "platform/text/CharWalk.h"
#include "platform/text/Iconv.h"
#include "platform/xml/Encoding.h"
#include "platform/xml/Serialize.h"
#include "platform/xml/Tree.h"

#include <algorithm>
#include <libxml/encoding.h>
#include <libxml/xmlIO.h>
#include <limits>

namespace kx::xml {

namespace {

constexpr const char* kUtf8 = "UTF-8";
constexpr const char* kGbk = "GBK";
// In the encoder for GBK a byte of its own, which is none where it is read.
constexpr std::string_view kEuro = "\xE2\x82\xAC";
constexpr std::string_view kEuroReference = "&#8364;";

// The texts in a document that are beyond ASCII and that no reference can stand for.
class Literals
{
public:
    explicit Literals(xmlDoc* doc)
    {
        for (xmlNode* top = doc->children; top; top = top->next) {
            if (top->type == XML_DTD_NODE) Add(MarkupOf(top));
            for (xmlNode* node = top; node; node = NextBelow(top, node))
                AddNode(node);
        }
    }

    const std::string& All() const noexcept { return m_all; }

private:
    void Add(std::string_view text)
    {
        if (std::ranges::any_of(text, [](char ch) { return static_cast<signed char>(ch) < 0; }))
            m_all += text;
    }
    void AddNode(const xmlNode* node)
    {
        if (node->type == XML_ELEMENT_NODE) return AddNames(node);
        if (node->type == XML_PI_NODE) Add(ViewOf(node->name));
        if (node->type == XML_PI_NODE || node->type == XML_COMMENT_NODE ||
            node->type == XML_CDATA_SECTION_NODE)
            Add(ViewOf(node->content));
    }
    void AddNames(const xmlNode* element)
    {
        Add(ViewOf(element->name));
        for (const xmlNs* ns = element->nsDef; ns; ns = ns->next)
            Add(ViewOf(ns->prefix));
        for (const xmlAttr* attribute = element->properties; attribute; attribute = attribute->next)
            Add(ViewOf(attribute->name));
    }

    std::string m_all;
};

std::string ReferToEuros(std::string_view markup)
{
    std::string text;
    for (std::size_t at; (at = markup.find(kEuro)) != markup.npos; markup.remove_prefix(at + kEuro.size()))
        text.append(markup.substr(0, at)).append(kEuroReference);
    return text.append(markup);
}

} // namespace

FileEncoding::FileEncoding(xmlDoc* doc) : m_name(ViewOf(doc->encoding))
{
    m_used = IsChinese(m_name) && text::CompareNoCase(m_name, "gb18030") != 0 ? kGbk : m_name;
    const bool bOther = HasDeclaration(doc) && text::CompareNoCase(m_name, kUtf8) != 0 && IsEncoding(m_name);
    if (bOther && CanSpell(Literals(doc).All())) return;
    m_name = kUtf8;
    m_used.clear();
}

bool FileEncoding::CanSpell(const std::string& text) const
{
    if (text.empty()) return true;
    if (m_used == kGbk && text.find(kEuro) != text.npos) return false;
    return text::Iconv(m_used.c_str(), kUtf8).Convert(text).has_value();
}

std::optional<std::string> FileEncoding::Encode(std::string markup) const
{
    if (m_used.empty()) return markup;
    if (markup.size() > std::numeric_limits<int>::max()) return std::nullopt;
    if (m_used == kGbk) markup = ReferToEuros(markup);

    using Output = std::unique_ptr<xmlOutputBuffer, FreeBy<xmlOutputBufferClose>>;
    const Output out(xmlAllocOutputBuffer(xmlFindCharEncodingHandler(m_used.c_str())));
    if (!out || xmlOutputBufferWrite(out.get(), static_cast<int>(markup.size()), markup.data()) < 0 ||
        xmlOutputBufferFlush(out.get()) < 0 || !out->conv || xmlOutputBufferGetSize(out.get()) != 0)
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(xmlBufContent(out->conv)), xmlBufUse(out->conv));
}

} // namespace kx::xml
