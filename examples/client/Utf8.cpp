#include "Scene.h"

#include <platform/CodePage.h>
#include <vector>

std::string client::Utf8(const CString& str)
{
    std::vector<WCHAR> wide(static_cast<std::size_t>(str.GetLength()) + 1);
    const int nWide =
        MultiByteToWideChar(CP_ACP, 0, str, str.GetLength(), wide.data(), static_cast<int>(wide.size()));
    std::string utf8(static_cast<std::size_t>(nWide) * 3, '\0');
    const int nBytes =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), nWide, utf8.data(), static_cast<int>(utf8.size()));
    utf8.resize(static_cast<std::size_t>(nBytes));
    return utf8;
}
