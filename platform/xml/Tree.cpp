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
    return m_blocks ? std::exchange(m_blocks, m_blocks->next) : ::operator new(nBytes);
}

void Tree::EndBlock(void* block) noexcept
{
#if defined(KX_SANITIZED) // a sanitizer is to see who uses an object that ended
    ::operator delete(block);
#else
    m_blocks = new (block) Block{m_blocks};
#endif
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
