#pragma once

#include <libxml/catalog.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

namespace kx::xml::libxml {

// libxml2 makes its locks and tables at their first use, which no two threads may have at once.
inline void StartLibxml()
{
    [[maybe_unused]] static const int nOnce = (xmlInitParser(), xmlInitializeCatalog(), xmlInitializeDict());
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
using FreeBy = std::integral_constant<decltype(free), free>;
using DocPtr = std::unique_ptr<xmlDoc, FreeBy<xmlFreeDoc>>;
using NodePtr = std::unique_ptr<xmlNode, FreeBy<xmlFreeNode>>;

// Takes libxml2's complaints on this thread for as long as it lives: none reaches stderr, and a lack of
// memory, which many of libxml2's calls don't report otherwise, is remembered.
class Complaints
{
public:
    Complaints() noexcept
        : m_structured(std::exchange(OfThread().structured, Take)),
          m_context(std::exchange(OfThread().context, this)),
          m_generic(std::exchange(OfThread().generic, Ignore))
    {
    }
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;
    ~Complaints()
    {
        OfThread().structured = m_structured;
        OfThread().context = m_context;
        OfThread().generic = m_generic;
        if (m_nLast != XML_ERR_OK) xmlResetLastError(); // which keeps copies of texts
    }

    bool NoMemory() const noexcept { return m_bNoMemory; }
    // The first fault that ends a document, what follows being often its consequence alone: the beginning of
    // its text, empty for none, and its line, 0 where it has none.
    const char* Fault() const noexcept { return m_nFaultLine < 0 ? "" : m_fault.data(); }
    int FaultLine() const noexcept { return std::max(m_nFaultLine, 0); }
    void ThrowIfNoMemory() const
    {
        if (m_bNoMemory) throw std::bad_alloc();
    }

private:
    // Where libxml2 keeps them; each of its own ways there asks which thread it is in.
    struct Handlers
    {
        xmlStructuredErrorFunc& structured = xmlStructuredError;
        void*& context = xmlStructuredErrorContext;
        xmlGenericErrorFunc& generic = xmlGenericError;
    };
    static Handlers& OfThread() noexcept
    {
        thread_local Handlers handlers;
        return handlers;
    }
    // Texts and attributes beyond the parser's limits are lacks of memory to it as well.
    static void Take(void* self, xmlErrorPtr error)
    {
        auto& complaints = *static_cast<Complaints*>(self);
        const std::string_view what = error->message ? error->message : "";
        const bool bLimit =
            complaints.m_nLast == XML_ERR_ATTRIBUTE_NOT_FINISHED || what.find("huge") != what.npos;
        if (error->code == XML_ERR_NO_MEMORY && !bLimit) complaints.m_bNoMemory = true;
        complaints.m_nLast = error->code;
        if (error->level != XML_ERR_FATAL || complaints.m_nFaultLine >= 0) return;
        complaints.m_nFaultLine = std::max(error->line, 0);
        complaints.m_fault[what.substr(0, what.find('\n')).copy(complaints.m_fault.data(), kMostOfFault)] =
            '\0';
    }
    __attribute__((format(printf, 2, 3))) static void Ignore(void*, const char*, ...) {}

    const xmlStructuredErrorFunc m_structured;
    void* const m_context;
    const xmlGenericErrorFunc m_generic;
    static constexpr std::size_t kMostOfFault = 199;

    std::array<char, kMostOfFault + 1> m_fault;
    int m_nFaultLine = -1;
    int m_nLast = XML_ERR_OK;
    bool m_bNoMemory = false;
};

} // namespace kx::xml::libxml
