#include "Scene.h"

#include <cstdio>

// The writer works in the background: the scene waits until it has written what the client has logged so far.
bool client::ShowLog()
{
<<<<<<< HEAD
    const CString strMark = "that is all";
    CKXLogSys::GetSingletonPtr()->PushLog(CKXLogSys::LogError, strMark);
    const CString strPath = CKXFileSystem::GetInstancePtr()->GetAppPath() + "client.log";
    for (int nTry = 0; nTry < 500; ++nTry, Sleep(10)) {
        CStdioFile file;
        if (!file.Open(strPath, CFile::modeRead | CFile::shareDenyNone)) return false;
        CString strAll;
        bool bMarked = false;
        for (CString strLine; file.ReadString(strLine);) {
            bMarked = strLine.Find(strMark) >= 0;
            strAll += "   " + strLine + "\n";
        }
        if (!bMarked) continue;
        std::fputs(KXText::ToUtf8(strAll).c_str(), stdout);
        return true;
    }
    return false;
=======
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    pLog->PushLog(CKXLogSys::LogError, "that is all");
    if (!pLog->Flush(5000)) return false;
    CStdioFile file;
    if (!file.Open(CKXFileSystem::GetInstancePtr()->GetAppPath() + "client.log",
                   CFile::modeRead | CFile::shareDenyNone))
        return false;
    for (CString strLine; file.ReadString(strLine);)
        std::fputs(Utf8("   " + strLine + "\n").c_str(), stdout);
    return true;
>>>>>>> 89059cf (Bring a crashed process's queued log lines home, and let clients flush the log)
}
