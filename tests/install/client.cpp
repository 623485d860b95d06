#include <KXCommonClass.h>

#include <cstdio>

// What an installed library's client needs: the umbrella header, linking, and the version of its own binary.
int main()
{
    CString strGuid;
    CKXExeFileInfo::VersionInfo version{};
    const int bVersion =
        CKXExeFileInfo::GetFileInfo(CKXFileSystem::GetInstancePtr()->GetAppPath() + "client", version);
    std::printf("installed client: version %u.%u.%u.%u\n", version.dwMajor, version.dwMinor,
                version.dwRevision, version.dwBuild);
    const bool bExpected = !bVersion || (version.dwMajor == 3 && version.dwBuild == 15);
    return CreateGUIDString(strGuid) && strGuid.GetLength() == 36 && bExpected ? 0 : 1;
}
