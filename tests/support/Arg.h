#pragma once

#include "include/platform/Variant.h"

namespace test {

// A text as an argument.
class Arg
{
public:
    Arg(const char16_t* psz) : m_bstr(SysAllocString(psz)) {}
    Arg(const Arg&) = delete;
    Arg& operator=(const Arg&) = delete;
    ~Arg() { SysFreeString(m_bstr); }
    operator BSTR() const { return m_bstr; }

private:
    BSTR m_bstr;
};

} // namespace test
