#pragma once

#include "include/platform/GdiPlus.h"
#include "tests/support/Fixed.h"

#include <cstdint>

namespace test {

// GDI+, started for the scope's length.
class GdiPlus : Fixed
{
public:
    GdiPlus()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr);
    }
    ~GdiPlus() { Gdiplus::GdiplusShutdown(m_nToken); }

private:
    std::uintptr_t m_nToken = 0;
};

} // namespace test
