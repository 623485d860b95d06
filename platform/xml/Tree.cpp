#include "platform/xml/Tree.h"

#include <new>

namespace kx::xml {

Ref<Tree> Tree::Make(DocPtr doc)
{
    if (!doc) doc.reset(xmlNewDoc(ToXml("1.0")));
    if (!doc) throw std::bad_alloc();
    return Ref<Tree>::Adopt(new Tree(std::move(doc)));
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
