#include "platform/xml/Tree.h"

#include <new>

namespace kx::xml {

Ref<Tree> Tree::Make(DocPtr doc)
{
    if (!doc) {
        StartLibxml();
        doc.reset(xmlNewDoc(ToXml("1.0")));
        if (doc) doc->dict = xmlDictCreate(); // so that names repeated cost nothing
    }
    if (!doc) throw std::bad_alloc();
    return Ref<Tree>::Adopt(new Tree(std::move(doc)));
}

Tree::~Tree()
{
    while (m_blocks)
        ::operator delete(std::exchange(m_blocks, m_blocks->next));
}

void* Tree::NewBlock(std::size_t nBytes)
{
    void* const block = m_blocks ? std::exchange(m_blocks, m_blocks->next) : ::operator new(nBytes);
    if (m_nBlocks > 0) --m_nBlocks;
    CountObject();
    return block;
}

void Tree::EndBlock(void* block) noexcept
{
#if defined(KX_SANITIZED) // a sanitizer is to see who uses an object that ended
    constexpr bool bKept = false;
#else
    const bool bKept = m_nBlocks < m_nMostObjects;
#endif
    --m_nObjects;
    if (!bKept) {
        ::operator delete(block);
        return;
    }
    m_blocks = new (block) Block{m_blocks};
    ++m_nBlocks;
}

xmlXPathContext* Tree::XPath()
{
    if (!m_xpath) {
        m_xpath.reset(xmlXPathNewContext(m_doc.get()));
        if (m_xpath) m_xpath->error = [](void*, xmlErrorPtr) {};
    }
    return m_xpath.get();
}

} // namespace kx::xml
