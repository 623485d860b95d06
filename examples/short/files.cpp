#include "Short.h"

// Paths, directory trees, and the version in a binary.
namespace {

// Hears of the files directly in the directory.
int Tell(const CString& strFrom, const CString&, int bFile, int bResult, long pnFiles)
{
    std::printf("%s %s\n", bResult ? "copied" : "lost", strFrom.GetString());
    *reinterpret_cast<int*>(pnFiles) += bFile && bResult;
    return 1;
}

} // namespace

int main()
{
    CString strFrom = Beside("files\\from");
    CString strTo = Beside("files\\to");
    CKXFileSystem::DeleteFolder(Beside("files"));
    CKXFileSystem::CreatePath(strFrom + "\\unit\\one\\");
    CKXFileSystem::CreatePath(strTo + "\\");
    for (const char* pszName : {"\\a.txt", "\\unit\\b.txt", "\\unit\\one\\c.txt"}) {
        CStdioFile file;
        if (!file.Open(strFrom + pszName, CFile::modeCreate | CFile::modeWrite)) return 1;
        file.WriteString("a text\n");
    }
    int nFiles = 0;
    CKXFileSystem::CopyDir(strFrom, strTo, Tell,
                           reinterpret_cast<long>(&nFiles));                   // which end in a backslash now
    const bool bThere = CKXFileSystem::FileExists(strTo + "UNIT\\one\\C.txt"); // in whatever case

    CFile file;
    if (!file.Open(strTo + "a.txt", CFile::modeRead)) return 1;
    char szRead[8] = "";
    file.Read(szRead, 1);
    file.SeekToBegin();
    std::printf("%s begins with %zu bytes of text\n", file.GetFilePath().GetString(), file.Read(szRead, 7));
    file.Close();

    CString strDir, strFile, strName, strExt;
    CKXFileSystem::ParsePathFile(strTo + "unit\\b.txt", &strDir, &strFile, &strName, &strExt);
    std::printf("%s: %s and %s\n", strFile.GetString(), strName.GetString(), strExt.GetString());

    CKXExeFileInfo::VersionInfo version{};
    CKXExeFileInfo::GetFileInfo(Beside("short_files"), version);
    std::printf("this is version %u.%u\n", version.dwMajor, version.dwMinor);
    return nFiles == 1 && bThere && version.dwMajor == 2 ? 0 : 1;
}
