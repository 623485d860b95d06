#include "Short.h"

// The log: lines are queued at once, and a thread writes them.
int main()
{
    const CString strFile = Beside("log.txt");
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    if (!pLog->Initialize(strFile)) return 1;

    pLog->PushLog(CKXLogSys::LogInfo, "the lesson begins");
    pLog->PushLogEx(CKXLogSys::LogError, "lesson %d has no word list", 12);
    pLog->PushLog(CKXLogSys::LogNone, "a level below 1 is no line");

    // A stop doesn't wait for lines that are queued, so flush first.
    if (!pLog->Flush(5000)) return 1;
    pLog->Uninitialize();

    CStdioFile file;
    if (!file.Open(strFile, CFile::modeRead | CFile::shareDenyNone)) return 1;
    int nLines = 0;
    for (CString strLine; file.ReadString(strLine); ++nLines)
        std::printf("%s\n", strLine.GetString());
    return nLines == 2 ? 0 : 1;
}
