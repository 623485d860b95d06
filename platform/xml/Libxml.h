#pragma once

#include <libxml/catalog.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <memory>
#include <new>
#include <string_view>

namespace kx::xml {

// libxml2 makes its locks and tables at their first use, which no two threads may have at once.
inline void StartLibxml()
{
    static const bool bStarted = [] {
        xmlInitParser();
        xmlInitializeCatalog();
        return xmlInitializeDict() == 0;
    }();
    static_cast<void>(bStarted);
}

inline const xmlChar* ToXml(const char* text) noexcept
{
    return reinterpret_cast<const xmlChar*>(text);
}
// Null counts as the empty text.
inline std::string_view ViewOf(const xmlChar* text) noexcept
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

template <auto free>
struct FreeBy
{
    template <class T>
    void operator()(T* object) const noexcept
    {
        free(object);
    }
};
struct FreeXmlText
{
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, FreeXmlText>;
using DocPtr = std::unique_ptr<xmlDoc, FreeBy<xmlFreeDoc>>;
using NodePtr = std::unique_ptr<xmlNode, FreeBy<xmlFreeNode>>;

// Takes libxml2's complaints on this thread for as long as it lives: none reaches stderr, and a lack of
// memory, which many of libxml2's calls don't report otherwise, is remembered.
class Complaints
{
public:
    Complaints() noexcept
        : m_structured(xmlStructuredError),
          m_structuredContext(xmlStructuredErrorContext),
          m_generic(xmlGenericError),
          m_genericContext(xmlGenericErrorContext)
    {
        xmlSetStructuredErrorFunc(this, Take);
        xmlSetGenericErrorFunc(nullptr, Ignore);
    }
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;
    ~Complaints()
    {
        xmlSetStructuredErrorFunc(m_structuredContext, m_structured);
        xmlSetGenericErrorFunc(m_genericContext, m_generic);
    }

    bool NoMemory() const noexcept { return m_bNoMemory; }
    void ThrowIfNoMemory() const
    {
        if (m_bNoMemory) throw std::bad_alloc();
    }

private:
    static void Take(void* self, xmlErrorPtr error)
    {
        if (error && error->code == XML_ERR_NO_MEMORY) static_cast<Complaints*>(self)->m_bNoMemory = true;
    }
    __attribute__((format(printf, 2, 3))) static void Ignore(void*, const char*, ...) {}

    xmlStructuredErrorFunc m_structured;
    void* m_structuredContext;
    xmlGenericErrorFunc m_generic;
    void* m_genericContext;
    bool m_bNoMemory = false;
};

} // namespace kx::xml
