#pragma once

#include "include/KXXmlDomDocument.h"

#include "include/platform/Com.h"
#include "include/platform/Host.h"

#include <cstdlib>
#include <string>

// The fuzz targets of XML share this.
namespace fuzz {

inline void Expect(bool bHolds)
{
    if (!bHolds) std::abort();
}

// Looks at everything that an element and those below it tell.
inline void Walk(CKXXmlDomElement element, int& nLeft)
{
    if (!element.IsValid() || --nLeft < 0) return;
    Expect(!element.GetName().IsEmpty());
    element.GetText();
    element.GetAttributeInt32("a");
    element.GetAttributeDouble("b", 1);
    element.GetAttributeDateTime("c", COleDateTime());
    int n = 0;
    double d = 0;
    COleDateTime t;
    element.GetChild("a", n, true, 1);
    element.GetChild("b", d, false, 1);
    element.GetChild("c", t, false, COleDateTime());
    for (const CKXXmlDomElement& child : element.GetChilds("*"))
        Walk(child, nLeft);
}

// Nothing may be left when all of an input's objects are gone.
class Round
{
public:
    Round() { CoInitialize(nullptr); }
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round()
    {
        CoUninitialize();
        Expect(KXHost::LiveHandles() == m_nBefore);
    }

private:
    int m_nBefore = KXHost::LiveHandles();
};

} // namespace fuzz
