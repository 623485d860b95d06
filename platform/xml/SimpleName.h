#pragma once

#include "include/platform/Variant.h"
#include "platform/xml/Tree.h"

#include <array>

namespace kx::xml {

// A short ASCII name without a prefix, as most are; false for any other text. Elements are found by it with
// neither XPath nor an allocation.
class SimpleName
{
public:
    explicit SimpleName(BSTR bstr) noexcept;

    // The child behind the one where the last search of the same children ended, if it is the first of that
    // name; null for all else. Most searches of a record end here. An attribute has no children for this.
    static xmlNode* NextIn(BSTR bstr, const xmlNode* parent, Passed& passed) noexcept;

    explicit operator bool() const noexcept { return m_bSimple; }
    // The first such element at or behind a node among its siblings; null without one.
    xmlNode* FirstFrom(xmlNode* node) const noexcept;
    // The first such child. Goes on from where the last search of the same children ended, and notes how far
    // it came.
    xmlNode* FirstIn(const xmlNode* parent, Passed& passed) const noexcept;

private:
    bool Names(const xmlNode* element) const noexcept;

    std::array<char, 40> m_text;
    bool m_bSimple = false;
};

} // namespace kx::xml
