#include "KXFileSystem.h"
#include "include/platform/Host.h"

#include <cstdio>

// Makes the object for the executable whose path it is given and writes what it says.
int main(int argc, char** argv)
{
    if (argc > 1) KXHost::SetExecutablePath(argv[1]);
    const CKXFileSystem* files = CKXFileSystem::GetInstancePtr();
    if (files != CKXFileSystem::GetInstancePtr()) return 2;
    for (const CString& str : {files->GetAppExeName(), files->GetAppPath(), files->GetDataPath(),
                               files->GetWorkPath(), CKXFileSystem::GetCurrentPath()})
        std::fprintf(stderr, "%s\n", str.GetString());
    return 0;
}
