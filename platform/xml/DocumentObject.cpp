#include "platform/xml/DocumentObject.h"

#include "platform/SameGuid.h"
#include "platform/files/Path.h"
#include "platform/files/ReplaceFile.h"
#include "platform/module/RegularFile.h"
#include "platform/xml/Change.h"
#include "platform/xml/Names.h"
#include "platform/xml/Parse.h"
#include "platform/xml/Serialize.h"

namespace kx::xml {

namespace {

class DocumentObject final : public NodeMethods<IXMLDOMDocument, DocumentObject>
{
public:
    Place Where() const noexcept { return {m_tree.Get(), m_tree->DocNode()}; }

    HRESULT QueryInterface(const GUID& iid, void** ppObject) override;
    ULONG AddRef() override { return ++m_nRefs; }
    ULONG Release() override
    {
        const ULONG nRefs = --m_nRefs;
        if (nRefs == 0) delete this;
        return nRefs;
    }

    HRESULT load(VARIANT path, VARIANT_BOOL* pbSuccess) override;
    HRESULT loadXML(BSTR bstrXml, VARIANT_BOOL* pbSuccess) override;
    HRESULT save(VARIANT path) override;
    HRESULT get_documentElement(IXMLDOMElement** ppElement) override;
    HRESULT putref_documentElement(IXMLDOMElement* pElement) override;
    HRESULT createElement(BSTR bstrName, IXMLDOMElement** ppElement) override;

private:
    ~DocumentObject() = default;

    template <class Parse>
    HRESULT Replace(VARIANT_BOOL* pbSuccess, Parse parse);

    ULONG m_nRefs = 1;
    Ref<Tree> m_tree = Tree::Make();
};

HRESULT DocumentObject::QueryInterface(const GUID& iid, void** ppObject)
{
    if (!ppObject) return E_POINTER;
    *ppObject = nullptr;
    if (!SameGuid(iid, IID_IUnknown) && !SameGuid(iid, IID_IXMLDOMNode) &&
        !SameGuid(iid, IID_IXMLDOMDocument))
        return E_NOINTERFACE;
    *ppObject = static_cast<IXMLDOMDocument*>(this);
    AddRef();
    return S_OK;
}

template <class Parse>
HRESULT DocumentObject::Replace(VARIANT_BOOL* pbSuccess, Parse parse)
{
    if (pbSuccess) *pbSuccess = VARIANT_FALSE;
    return Guarded([&] {
        m_tree = Tree::Make();
        DocPtr doc = parse();
        if (!doc) return S_FALSE;
        m_tree = Tree::Make(std::move(doc));
        if (pbSuccess) *pbSuccess = VARIANT_TRUE;
        return S_OK;
    });
}

HRESULT DocumentObject::load(VARIANT path, VARIANT_BOOL* pbSuccess)
{
    return Replace(pbSuccess, [&]() -> DocPtr {
        if (path.vt != VT_BSTR) return nullptr;
        const auto file = module::RegularFile::Open(ToCodePage(path.bstrVal).c_str());
        if (!file || file->Size() > XML_MAX_FILE) return nullptr;
        const auto bytes = file->Read(0, file->Size());
        if (!bytes) return nullptr;
        return ParseFile({reinterpret_cast<const char*>(bytes->All().data()), bytes->Size()});
    });
}

HRESULT DocumentObject::loadXML(BSTR bstrXml, VARIANT_BOOL* pbSuccess)
{
    return Replace(pbSuccess, [&] { return ParseText(ToUtf8(bstrXml)); });
}

HRESULT DocumentObject::save(VARIANT path)
{
    return Guarded([&] {
        if (path.vt != VT_BSTR) return E_INVALIDARG;
        if (!m_tree->Root()) return E_FAIL; // the file could never be loaded
        const auto content = FileContentOf(m_tree->Doc());
        if (!content) return E_OUTOFMEMORY;
        if (content->size() > XML_MAX_FILE) return E_FAIL; // nor could this one
        const auto target = path::Resolve(ToCodePage(path.bstrVal).c_str());
        if (!target || target->trailing || target->root) return E_FAIL;
        return ReplaceFile(target->system, content->data(), content->size()) == 0 ? S_OK : E_FAIL;
    });
}

HRESULT DocumentObject::get_documentElement(IXMLDOMElement** ppElement)
{
    if (!ppElement) return E_POINTER;
    *ppElement = nullptr;
    return Guarded([&] {
        xmlNode* const root = m_tree->Root();
        if (!root) return S_FALSE;
        *ppElement = NodeObject::Of(*m_tree, root).Detach();
        return S_OK;
    });
}

HRESULT DocumentObject::putref_documentElement(IXMLDOMElement* pElement)
{
    return Guarded([&] {
        const auto element = NodeObject::From(pElement);
        return element && element->IsElement() ? SetRoot(*m_tree, *element) : E_INVALIDARG;
    });
}

HRESULT DocumentObject::createElement(BSTR bstrName, IXMLDOMElement** ppElement)
{
    if (!ppElement) return E_POINTER;
    *ppElement = nullptr;
    return Guarded([&] {
        const std::string name = ToUtf8(bstrName);
        if (!IsName(name)) return E_INVALIDARG;
        std::unique_ptr<xmlNode, FreeBy<xmlFreeNode>> node(
            xmlNewDocNode(m_tree->Doc(), nullptr, ToXml(name.c_str()), nullptr));
        if (!node) return E_OUTOFMEMORY;
        *ppElement = NodeObject::Of(*m_tree, node.get()).Detach();
        static_cast<void>(node.release());
        return S_OK;
    });
}

} // namespace

Ref<IXMLDOMDocument> MakeDocument()
{
    return Ref<IXMLDOMDocument>::Adopt(new DocumentObject);
}

} // namespace kx::xml
