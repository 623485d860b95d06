#include "platform/gdiplus/WidePath.h"

#include "include/platform/CodePage.h"
#include "include/platform/Error.h"

#include <string_view>

namespace kx::gdiplus {

std::string ToCodePage(const WCHAR* pszPath)
{
    // Anything longer than the paths of this library can be is none.
    constexpr std::size_t kMaxUnits = 32767;
    const std::u16string_view path = pszPath ? std::u16string_view(pszPath) : std::u16string_view();
    if (path.empty() || path.size() > kMaxUnits) return {};
    const int nUnits = static_cast<int>(path.size());
    const int nBytes = WideCharToMultiByte(CP_ACP, 0, path.data(), nUnits, nullptr, 0);
    std::string text(static_cast<std::size_t>(nBytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, path.data(), nUnits, text.data(), nBytes);
    return text;
}

Gdiplus::Status StatusOf(DWORD dwError) noexcept
{
    switch (dwError) {
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return Gdiplus::AccessDenied;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_DIRECTORY:
    case ERROR_NOT_READY:
        return Gdiplus::FileNotFound;
    default:
        return Gdiplus::GenericError;
    }
}

} // namespace kx::gdiplus
