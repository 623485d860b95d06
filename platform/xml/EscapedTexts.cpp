#include "platform/xml/EscapedTexts.h"

#include "platform/xml/Tree.h"

namespace kx::xml {

namespace {

std::string_view EscapeFor(char ch) noexcept
{
    switch (ch) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '"':
        return "&quot;";
    case '\t':
        return "&#9;";
    case '\n':
        return "&#10;";
    case '\r':
        return "&#13;";
    default:
        return {};
    }
}

std::string Escape(std::string_view text)
{
    std::string markup;
    for (const char ch : text) {
        const std::string_view escape = EscapeFor(ch);
        markup += escape.empty() ? std::string_view(&ch, 1) : escape;
    }
    return markup;
}

} // namespace

EscapedTexts::EscapedTexts(xmlNode* top)
{
    if (top->type != XML_DOCUMENT_NODE) {
        AddBranch(top);
        return;
    }
    for (xmlNode* node = top->children; node; node = node->next)
        node->type == XML_DTD_NODE ? AddDeclarations(node) : AddBranch(node);
}

void EscapedTexts::AddBranch(xmlNode* branch)
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        if (node->type != XML_ELEMENT_NODE) continue;
        for (xmlNs* ns = node->nsDef; ns; ns = ns->next)
            Add(ns->href);
    }
}

void EscapedTexts::AddDeclarations(const xmlNode* dtd)
{
    for (xmlNode* node = dtd->children; node; node = node->next)
        if (node->type == XML_ATTRIBUTE_DECL) Add(reinterpret_cast<xmlAttribute*>(node)->defaultValue);
}

void EscapedTexts::Add(const xmlChar*& text)
{
    if (ViewOf(text).find_first_of("&<\"\t\n\r") != std::string_view::npos)
        m_texts.emplace_back(text, Escape(ViewOf(text)));
}

} // namespace kx::xml
