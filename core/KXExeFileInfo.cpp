#include "KXExeFileInfo.h"

#include "platform/Version.h"

#include <memory>
#include <new>

int CKXExeFileInfo::GetFileInfo(const CString& strPath, VersionInfo& info)
{
    const DWORD size = GetFileVersionInfoSizeA(strPath, nullptr);
    if (!size) return 0; // the last error tells why
    const std::unique_ptr<BYTE[]> block(new (std::nothrow) BYTE[size]);
    if (!block || !GetFileVersionInfoA(strPath, 0, size, block.get())) return 0;
    void* record = nullptr;
    if (!VerQueryValueA(block.get(), "\\", &record, nullptr)) return 0;
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(record);
    info = {fixed.dwFileVersionMS >> 16, fixed.dwFileVersionMS & 0xFFFF, fixed.dwFileVersionLS >> 16,
            fixed.dwFileVersionLS & 0xFFFF};
    return 1;
}
