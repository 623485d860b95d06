#pragma once

#include "include/platform/GdiPlus.h"

#include <cstdint>

namespace test {

// GDI+, started for the scope's length.
class GdiPlus
{
public:
    GdiPlus()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr);
    }
    GdiPlus(const GdiPlus&) = delete;
    GdiPlus& operator=(const GdiPlus&) = delete;
    ~GdiPlus() { Gdiplus::GdiplusShutdown(m_nToken); }

private:
    std::uintptr_t m_nToken = 0;
};

} // namespace test
