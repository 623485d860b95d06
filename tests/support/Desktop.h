#pragma once

#include "include/platform/Window.h"
#include "tests/support/Picture.h"

#include <string>

namespace test {

// Dispatches the messages that this thread has now.
inline void Pump()
{
    for (MSG msg; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);)
        DispatchMessageA(&msg);
}

// The desktop as it is seen: a pixel, and a row of it as letters (`?` for its own colour).
inline COLORREF SeenAt(int x, int y)
{
    const HDC desktop = GetDC(nullptr);
    const COLORREF clr = GetPixel(desktop, x, y);
    ReleaseDC(nullptr, desktop);
    return clr;
}
inline std::string SeenRow(int left, int y, int nLength)
{
    const HDC desktop = GetDC(nullptr);
    const Picture row = Read(desktop, left, y, left + nLength, y + 1);
    ReleaseDC(nullptr, desktop);
    return row[0];
}

} // namespace test
