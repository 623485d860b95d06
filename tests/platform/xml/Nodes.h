#pragma once

#include "include/platform/Xml.h"
#include "tests/support/Com.h"
#include "tests/support/Test.h"

// Values that calls of the document's interfaces take and give.
namespace test {

// A text as an argument.
class Arg : Fixed
{
public:
    Arg(const std::u16string& text) : m_bstr(SysAllocString(text.c_str())) {}
    ~Arg() { SysFreeString(m_bstr); }
    operator BSTR() const { return m_bstr; }

private:
    BSTR m_bstr;
};

// Holds what an operation gives out.
template <class Interface>
class Out : Fixed
{
public:
    ~Out() { Reset(); }
    Interface** operator&()
    {
        Reset();
        return &m_p;
    }
    Interface* operator->() const { return m_p; }
    operator Interface*() const { return m_p; }

private:
    void Reset()
    {
        if (m_p) m_p->Release();
        m_p = nullptr;
    }

    Interface* m_p = nullptr;
};

// A text that a node gives.
inline std::u16string Get(IXMLDOMNode* pNode, HRESULT (IXMLDOMNode::*get)(BSTR*))
{
    BSTR bstr = nullptr;
    if ((pNode->*get)(&bstr) != S_OK) return u"<failed>";
    const std::u16string text(bstr, SysStringLen(bstr));
    SysFreeString(bstr);
    return text;
}

} // namespace test
