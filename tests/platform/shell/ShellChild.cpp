#include "include/platform/Host.h"
#include "include/platform/Shell.h"
#include "tests/support/Process.h"

#include <cstdio>

// Writes name, type and icon of each path that it is given. Fails if that left anything running.
int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        SHFILEINFOA info{};
        const auto list = reinterpret_cast<const _IMAGELIST*>(SHGetFileInfoA(
            argv[i], 0, &info, sizeof(info), SHGFI_DISPLAYNAME | SHGFI_TYPENAME | SHGFI_SYSICONINDEX));
        std::fprintf(stderr, "%s|%s|%s\n", info.szDisplayName, info.szTypeName,
                     ImageList_GetIconName(list, info.iIcon));
    }
    return test::Threads() == 1 ? 0 : 1;
}
