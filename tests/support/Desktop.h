#pragma once

#include "include/platform/Window.h"
#include "tests/support/Picture.h"

namespace test {

// Dispatches the messages that this thread has now.
inline void Pump()
{
    for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);)
        DispatchMessageA(&msg);
}

// The desktop's surface, for the length of the scope.
class Desktop : Fixed
{
public:
    ~Desktop() { ReleaseDC(nullptr, m_hDC); }
    operator HDC() const { return m_hDC; }

private:
    const HDC m_hDC = GetDC(nullptr);
};

// The desktop as it is seen: a pixel, and a row of it as letters (`?` for its own colour).
inline COLORREF SeenAt(int x, int y)
{
    return GetPixel(Desktop(), x, y);
}
inline std::string SeenRow(int left, int y, int nLength)
{
    return Read(Desktop(), left, y, left + nLength, y + 1)[0];
}

} // namespace test
