#pragma once

#include "KXExport.h"
#include "platform/String.h"
#include "platform/Types.h"

// The account that an executable file gives of itself. Any thread.
class KX_API CKXExeFileInfo
{
public:
    // The four numbers of a version, each 0 to 65535.
    struct VersionInfo
    {
        // The four numbers of a version, in their order.
        DWORD dwMajor;
        DWORD dwMinor;
        DWORD dwRevision;
        DWORD dwBuild;
    };

    // Reads the version of a PE image (its version resource) or of an ELF file that was built with
    // kx_file_version (CMake). 1; 0, with `info` untouched, for a file without a version or one that can't be
    // read.
    static int GetFileInfo(const CString& strPath, VersionInfo& info);
};
