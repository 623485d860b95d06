#pragma once

#include "platform/xml/Libxml.h"

#include <deque>
#include <string>

namespace kx::xml {

// libxml2 writes the names of namespaces and the defaults of attributes as they are. For as long as this
// lives, those in a branch or a document are spelled as markup.
class EscapedTexts
{
public:
    explicit EscapedTexts(xmlNode* top);

    bool Any() const noexcept { return !m_texts.empty(); }

private:
    class Escaped
    {
    public:
        Escaped(const xmlChar*& place, std::string markup)
            : m_place(place), m_plain(place), m_markup(std::move(markup))
        {
            m_place = ToXml(m_markup.c_str());
        }
        Escaped(const Escaped&) = delete;
        Escaped& operator=(const Escaped&) = delete;
        ~Escaped() { m_place = m_plain; }

    private:
        const xmlChar*& m_place;
        const xmlChar* m_plain;
        std::string m_markup;
    };

    void AddBranch(xmlNode* branch);
    void AddDeclarations(const xmlNode* dtd);
    void Add(const xmlChar*& text);

    std::deque<Escaped> m_texts;
};

} // namespace kx::xml
