#pragma once

#include "platform/xml/Libxml.h"

namespace kx::xml {

// How much lies within each other along the longest way down: elements, and declarations of namespaces. What
// exceeds the limits of one document could be written but not be loaded again.
struct Shape
{
    int nElements = 0;
    int nNamespaces = 0;

    // From a branch's top down to its leaves, each at its most.
    static Shape Below(xmlNode* branch) noexcept;
    // From the document down to this node, which may be null.
    static Shape Above(const xmlNode* node) noexcept;

    bool Fits() const noexcept;
    friend Shape operator+(const Shape& a, const Shape& b) noexcept
    {
        return {a.nElements + b.nElements, a.nNamespaces + b.nNamespaces};
    }
};

} // namespace kx::xml
