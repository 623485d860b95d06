#include "Scene.h"

#include <cstdio>

// The writer works in the background: the scene waits until it has written what the client has logged so far.
bool client::ShowLog()
{
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    pLog->PushLog(CKXLogSys::LogError, "that is all");
    if (!pLog->Flush(5000)) return false;
    CStdioFile file;
    if (!file.Open(CKXFileSystem::GetInstancePtr()->GetAppPath() + "client.log",
                   CFile::modeRead | CFile::shareDenyNone))
        return false;
    for (CString strLine; file.ReadString(strLine);)
        std::fputs(KXText::ToUtf8("   " + strLine + "\n").c_str(), stdout);
    return true;
}
