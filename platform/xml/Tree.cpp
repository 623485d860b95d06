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
    if (!m_blocks) return ::operator new(nBytes);
    --m_nBlocks;
    return std::exchange(m_blocks, m_blocks->next);
}

void Tree::EndBlock(void* block) noexcept
{
#if defined(KX_SANITIZED)
    constexpr int kMostBlocks = 0; // a sanitizer is to see who uses an object that ended
#else
    constexpr int kMostBlocks =
        64; // objects may come from another tree, and then more end here than are made
#endif
    if (m_nBlocks >= kMostBlocks) {
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
