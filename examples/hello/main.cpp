#include <KXCommonClass.h>
#include <cstdio>

int main()
{
    const CString strApp = CKXFileSystem::GetInstancePtr()->GetAppPath();
    CKXExeFileInfo::VersionInfo version{};
    CKXExeFileInfo::GetFileInfo(strApp + "hello", version);

    const int nRuns = CKXIniDataMgr::GetInteger(strApp + "hello.ini", "Hello", "Runs", 0) + 1;
    CKXIniDataMgr::WriteInteger(strApp + "hello.ini", "Hello", "Runs", nRuns);

    CString strTest = "gradually";
    CKXEnglishWord::MakeTestWord(strTest, 3, 1); // hides three letters, never the first
    std::printf("hello %u.%u, run %d: can you spell %s?\n", version.dwMajor, version.dwMinor, nRuns,
                strTest.GetString());
    return nRuns > 0 && strTest.GetLength() == 9 ? 0 : 1;
}
