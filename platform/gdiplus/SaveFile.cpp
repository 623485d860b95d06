#include "platform/gdiplus/SaveFile.h"

#include "platform/Errno.h"
#include "platform/files/Path.h"
#include "platform/files/ReplaceFile.h"
#include "platform/gdiplus/WidePath.h"

namespace kx::gdiplus {

namespace {

Gdiplus::Status StatusOfErrno(int nErrno) noexcept
{
    if (nErrno == 0) return Gdiplus::Ok;
    if (nErrno == EISDIR || nErrno == EROFS) return Gdiplus::AccessDenied;
    return StatusOf(ErrorFromErrno(nErrno));
}

} // namespace

Gdiplus::Status SaveFile(const WCHAR* pszPath, std::span<const std::uint8_t> bytes)
{
    const auto named = path::Resolve(ToCodePage(pszPath).c_str());
    if (!named) return StatusOf(GetLastError());
    if (named->trailing || named->root) return Gdiplus::AccessDenied;
    return StatusOfErrno(ReplaceFile(named->system, bytes.data(), bytes.size()));
}

} // namespace kx::gdiplus
