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
        if (m_nLast != XML_ERR_OK) xmlResetLastError(); // which keeps copies of texts
    }

    bool NoMemory() const noexcept { return m_bNoMemory; }
    void ThrowIfNoMemory() const
    {
        if (m_bNoMemory) throw std::bad_alloc();
    }

private:
    // Texts and attributes beyond the parser's limits are lacks of memory to it as well.
    static void Take(void* self, xmlErrorPtr error)
    {
        auto& complaints = *static_cast<Complaints*>(self);
        const std::string_view what = error->message ? error->message : "";
        const bool bLimit =
            complaints.m_nLast == XML_ERR_ATTRIBUTE_NOT_FINISHED || what.find("huge") != what.npos;
        if (error->code == XML_ERR_NO_MEMORY && !bLimit) complaints.m_bNoMemory = true;
        complaints.m_nLast = error->code;
    }
    __attribute__((format(printf, 2, 3))) static void Ignore(void*, const char*, ...) {}

    xmlStructuredErrorFunc m_structured;
    void* m_structuredContext;
    xmlGenericErrorFunc m_generic;
    void* m_genericContext;
    int m_nLast = XML_ERR_OK;
    bool m_bNoMemory = false;
};

} // namespace kx::xml
