#include "Scene.h"

#include <cstdio>
#include <platform/Clock.h>

// The writer works in the background: the scene waits until the line that it marked is in the file.
bool client::ShowLog()
{
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
}
