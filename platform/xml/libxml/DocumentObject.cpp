#include "include/platform/Error.h"
#include "internal/Debug.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/module/Door.h"
#include "platform/xml/libxml/Markup.h"
#include "platform/xml/libxml/NodeObject.h"

namespace kx::xml::libxml {

namespace {

class DocumentObject final : public NodeMethods<IXMLDOMDocument, DocumentObject>
{
public:
    NodeRef Where() const noexcept { return {m_tree.get(), m_tree->DocNode()}; }

    HRESULT QueryInterface(const GUID& iid, void** ppObject) override
    {
        return Query(iid, ppObject, {&IID_IUnknown, &IID_IXMLDOMNode, &IID_IXMLDOMDocument});
    }

    HRESULT load(VARIANT path, VARIANT_BOOL* pbSuccess) override
    {
        return Replace(pbSuccess, [&]() -> Ref<Tree> {
            if (path.vt != VT_BSTR) return {};
            const std::string name = ToCodePage(path.bstrVal);
            const auto source = files::Resolve(name.c_str());
            files::FileContent file;
            if (source && files::ReadWholeFile(source->system, XML_MAX_FILE, file) == ERROR_SUCCESS)
                return ParseFile(std::move(file.bytes), name.c_str());
            debug::Tell("xml", "%s can't be read; the document stays empty", name.c_str());
            return {};
        });
    }
    HRESULT loadXML(BSTR bstrXml, VARIANT_BOOL* pbSuccess) override
    {
        return Replace(pbSuccess, [&]() -> Ref<Tree> {
            const std::string text = ToUtf8(bstrXml);
            if (text.size() <= XML_MAX_FILE) return ParseText(text);
            debug::Tell("xml", "a text is refused: it goes beyond a limit; the document stays empty");
            return {};
        });
    }
    HRESULT save(VARIANT path) override
    {
        return Guarded([&] {
            if (path.vt != VT_BSTR) return E_INVALIDARG;
            if (!m_tree->Root()) return E_FAIL; // the file could never be loaded
            const std::string content = FileContentOf(*m_tree);
            if (content.size() > XML_MAX_FILE) return E_FAIL; // nor could this one
            const auto target = files::Resolve(ToCodePage(path.bstrVal).c_str());
            if (!target || target->trailing) return E_FAIL;
            const DWORD dwError = files::ReplaceWholeFile(target->system, content, 0666);
            if (dwError == ERROR_NOT_ENOUGH_MEMORY) return E_OUTOFMEMORY;
            return dwError == ERROR_SUCCESS ? S_OK : E_FAIL;
        });
    }
    HRESULT get_documentElement(IXMLDOMElement** ppElement) override
    {
        return Give(ppElement, [&] {
            xmlNode* const root = m_tree->Root();
            if (!root) return S_FALSE;
            *ppElement = NodeObject::Of(*m_tree, root).release();
            return S_OK;
        });
    }
    HRESULT putref_documentElement(IXMLDOMElement* pElement) override
    {
        const Complaints quiet;
        return Guarded([&] {
            const auto element = NodeObject::From(pElement);
            return element && element->IsElement() ? SetRoot(Where(), *element) : E_INVALIDARG;
        });
    }
    HRESULT createElement(BSTR bstrName, IXMLDOMElement** ppElement) override
    {
        return Give(ppElement, [&] {
            const std::string name = ToUtf8(bstrName);
            if (!IsName(name) || !m_tree->HasRoomForNames(1)) return E_INVALIDARG;
            const Complaints quiet;
            NodePtr node(xmlNewDocNode(m_tree->Doc(), nullptr, ToXml(name.c_str()), nullptr));
            if (!node) return E_OUTOFMEMORY;
            *ppElement = NodeObject::Of(*m_tree, node.get()).release();
            static_cast<void>(node.release());
            return S_OK;
        });
    }

private:
    template <class Parse>
    HRESULT Replace(VARIANT_BOOL* pbSuccess, Parse parse)
    {
        if (pbSuccess) *pbSuccess = VARIANT_FALSE;
        return Guarded([&] {
            m_tree = Tree::Make();
            Ref<Tree> tree = parse();
            if (!tree) return S_FALSE;
            m_tree = std::move(tree);
            if (pbSuccess) *pbSuccess = VARIANT_TRUE;
            return S_OK;
        });
    }

    Ref<Tree> m_tree = Tree::Make();
};

constexpr Functions kFunctions{[]() -> IXMLDOMDocument* { return new DocumentObject; }};

} // namespace

} // namespace kx::xml::libxml

KX_MODULE_ENTRY(xml, kx::xml::libxml::kFunctions)
