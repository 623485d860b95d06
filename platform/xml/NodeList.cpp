#include "platform/xml/NodeList.h"

#include "platform/SameGuid.h"
#include "platform/xml/NodeObject.h"

namespace kx::xml {

namespace {

class NodeList final : public IXMLDOMNodeList
{
public:
    NodeList(Tree& tree, const std::vector<xmlNode*>& nodes)
    {
        m_nodes.reserve(nodes.size());
        for (xmlNode* const node : nodes)
            m_nodes.push_back(NodeObject::Of(tree, node));
    }

    HRESULT QueryInterface(const GUID& iid, void** ppObject) override
    {
        if (!ppObject) return E_POINTER;
        *ppObject = nullptr;
        if (!SameGuid(iid, IID_IUnknown) && !SameGuid(iid, IID_IXMLDOMNodeList)) return E_NOINTERFACE;
        *ppObject = static_cast<IXMLDOMNodeList*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_nRefs; }
    ULONG Release() override
    {
        const ULONG nRefs = --m_nRefs;
        if (nRefs == 0) delete this;
        return nRefs;
    }

    HRESULT get_length(long* pnLength) override
    {
        if (!pnLength) return E_POINTER;
        *pnLength = static_cast<long>(m_nodes.size());
        return S_OK;
    }
    HRESULT item(long nIndex, IXMLDOMNode** ppNode) override
    {
        if (!ppNode) return E_POINTER;
        *ppNode = nullptr;
        if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= m_nodes.size()) return S_FALSE;
        *ppNode = Ref(m_nodes[static_cast<std::size_t>(nIndex)]).Detach();
        return S_OK;
    }

private:
    ~NodeList() = default;

    ULONG m_nRefs = 1;
    std::vector<Ref<NodeObject>> m_nodes;
};

} // namespace

Ref<IXMLDOMNodeList> MakeNodeList(Tree& tree, const std::vector<xmlNode*>& nodes)
{
    return Ref<IXMLDOMNodeList>::Adopt(new NodeList(tree, nodes));
}

} // namespace kx::xml
