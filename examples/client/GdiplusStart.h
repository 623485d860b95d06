#pragma once

#include <KXCommonClass.h>

namespace client {

// The layer of pictures, which is the client's to start, for as long as this lives.
class GdiplusStart
{
public:
    GdiplusStart()
    {
        const Gdiplus::GdiplusStartupInput input;
        m_bStarted = Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr) == Gdiplus::Ok;
    }
    GdiplusStart(const GdiplusStart&) = delete;
    GdiplusStart& operator=(const GdiplusStart&) = delete;
    ~GdiplusStart()
    {
        if (m_bStarted) Gdiplus::GdiplusShutdown(m_nToken);
    }
    bool IsStarted() const { return m_bStarted; }

private:
    std::uintptr_t m_nToken = 0;
    bool m_bStarted = false;
};

} // namespace client
