#pragma once

#include <libxml/catalog.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <memory>
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

// Keeps what libxml2 has to complain of on this thread from stderr.
class Hush
{
public:
    Hush() noexcept
        : m_structured(xmlStructuredError),
          m_structuredContext(xmlStructuredErrorContext),
          m_generic(xmlGenericError),
          m_genericContext(xmlGenericErrorContext)
    {
        xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
        xmlSetGenericErrorFunc(nullptr, Ignore);
    }
    Hush(const Hush&) = delete;
    Hush& operator=(const Hush&) = delete;
    ~Hush()
    {
        xmlSetStructuredErrorFunc(m_structuredContext, m_structured);
        xmlSetGenericErrorFunc(m_genericContext, m_generic);
    }

private:
    __attribute__((format(printf, 2, 3))) static void Ignore(void*, const char*, ...) {}

    xmlStructuredErrorFunc m_structured;
    void* m_structuredContext;
    xmlGenericErrorFunc m_generic;
    void* m_genericContext;
};

} // namespace kx::xml
