#include "Short.h"

// Prints what a file manager shows of a file: its name, its type's text, and its icon's names in the
// desktop's theme.
int main()
{
    CString strName, strType;
    CKXFileSystem::GetTypeDesc(Beside("short_icons"), strName, strType);
    const _IMAGELIST* const pIcons = CKXFileSystem::GetSystemImageList(1);
    const int nIcon = CKXFileSystem::GetFileImage(Beside("short_icons"), 1);
    int cx = 0;
    int cy = 0;
    ImageList_GetIconSize(pIcons, &cx, &cy);
    std::printf("%s, %s, icon %d: %s, %d by %d\n", strName.GetString(), strType.GetString(), nIcon,
                ImageList_GetIconName(pIcons, nIcon), cx, cy);
    return !strType.IsEmpty() && nIcon < ImageList_GetImageCount(pIcons) ? 0 : 1;
}
