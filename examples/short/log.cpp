#include "Short.h"

#include <platform/Clock.h>

// The log: lines are queued at once, and a thread writes them.
namespace {

int CountLines(const CString& strFile)
{
    CStdioFile file;
    if (!file.Open(strFile, CFile::modeRead | CFile::shareDenyNone)) return 0;
    int nLines = 0;
    for (CString strLine; file.ReadString(strLine); ++nLines)
        std::printf("%s\n", strLine.GetString());
    return nLines;
}

} // namespace

int main()
{
    const CString strFile = Beside("log.txt");
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    if (!pLog->Initialize(strFile)) return 1;

    pLog->PushLog(CKXLogSys::LogInfo, "the lesson begins");
    pLog->PushLogEx(CKXLogSys::LogError, "lesson %d has no word list", 12);
    pLog->PushLog(CKXLogSys::LogNone, "a level below 1 is no line");

    // A stop doesn't wait for lines that are queued: who wants to see them there looks for them.
    int nLines = 0;
    for (int nTry = 0; nTry < 500 && nLines < 2; ++nTry) {
        CFile file;
        if (file.Open(strFile, CFile::modeRead | CFile::shareDenyNone) && file.GetLength() >= 80)
            nLines = CountLines(strFile);
        else
            Sleep(10);
    }
    pLog->Uninitialize();
    return nLines == 2 ? 0 : 1;
}
