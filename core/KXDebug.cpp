#include "KXDebug.h"

#include "platform/Debug.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

int KXPrintDebugStr(char const* format, ...)
{
    std::array<char, 1024> text;
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    if (length < 0) return length;
    OutputDebugStringA(text.data());
    return std::min(length, static_cast<int>(text.size()) - 1);
}
