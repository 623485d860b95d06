#include "Scene.h"

#include <cstdio>
#include <cstring>
#include <platform/Clock.h>
#include <platform/Crash.h>
#include <platform/Host.h>

namespace {

// A client's own marker file would lie at the drive's root; here a drive of its own stands in for that.
void MountAppDrive(const CString& strAppPath)
{
    KXHost::Drive drive;
    drive.strRoot = KXHost::ToSystemPath(strAppPath);
    KXHost::MountDrive('C', drive);
}

int PrintReport(tagKXFileInfo* pInfo, long pParam)
{
    const CString strName = pInfo->FindData.cFileName;
    if (strName.Right(4) != ".txt") return 1;
    CStdioFile file;
    if (!file.Open(CString(pInfo->szPath) + strName, CFile::modeRead)) return 0;
    std::printf("   %s\n", KXText::ToUtf8(strName).c_str());
    int nLeft = 0;
    for (CString strLine; file.ReadString(strLine);) {
        const char* const heads[] = {"signal", "exception", "instruction", "address"};
        for (const char* pszHead : heads)
            if (strLine.Find(pszHead) == 0) std::printf("   %s\n", strLine.GetString());
        if (strLine.Find("(crashed)") > 0) nLeft = 5; // the innermost of its functions
        if (nLeft-- > 0) std::printf("   %s\n", strLine.GetString());
    }
    *reinterpret_cast<bool*>(pParam) = true;
    return 1;
}

} // namespace

// The client's work when it is started to crash: what every client does at its start, and then its
// mistake.
int client::Crash()
{
    MountAppDrive(CKXFileSystem::GetInstancePtr()->GetAppPath());
    CKXCrashDumper dumper;
    dumper.Initialize("Trainer", "C:\\", "client", "", "ann@example.com", 0, 0);
    volatile int* volatile pWord = nullptr;
    return *pWord;
}

bool client::ShowCrash()
{
    CKXFileSystem& files = *CKXFileSystem::GetInstancePtr();
    const CString strApp = files.GetAppPath();
    if (!PathFileExistsA(strApp + "KXCrashReport.exe")) {
        std::printf("   no reporter beside the client\n");
        return true;
    }
    CKXFileSystem::DeleteFolder(strApp + "dumps");
    CStdioFile().Open(strApp + "nv_dbg_14.txt", CFile::modeCreate | CFile::modeWrite);
    char szArguments[] = "crash";
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(strApp + files.GetAppExeName(), szArguments, nullptr, nullptr, 0, 0, nullptr, nullptr,
                        nullptr, &process))
        return false;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD dwCode = 0;
    GetExitCodeProcess(process.hProcess, &dwCode);
    CloseHandle(process.hProcess);
    std::printf("   the child ended with %u\n", dwCode);
    bool bReport = false;
    CKXFileSystem::EnumFiles(strApp + "dumps\\", PrintReport, reinterpret_cast<long>(&bReport));
    return bReport;
}
