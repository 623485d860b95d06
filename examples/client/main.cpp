#include "Scene.h"

#include <cstdio>
#include <iterator>
#include <platform/Host.h>
#include <string_view>

// Without an argument shows what the library does, scene by scene, in the terminal and in pictures; with
// "window" it is the spelling test in a window of its own. The order is a client's own: the log first, so
// that the others can write to it, and last what it wrote.
int main(int nArgs, char** args)
{
    const std::string_view mode = nArgs > 1 ? args[1] : "";
    if (mode == "crash") return client::Crash();
    if (mode == "window") return client::RunSpelling();
    KXHost::UseMemoryDesktop(); // the scenes need no display
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    const CString strLog = CKXFileSystem::GetInstancePtr()->GetAppPath() + "client.log";
    if (!pLog->Initialize(strLog)) {
        std::fprintf(stderr, "no log at %s\n", KXText::ToUtf8(strLog).c_str());
        return 1;
    }
    constexpr client::Scene scenes[] = {
        {"Paths and files", client::ShowPaths},
        {"Languages", client::ShowLanguages},
        {"Drawing", client::ShowDrawing},
        {"Pictures", client::ShowPictures},
        {"Skins", client::ShowSkins},
        {"Downloads", client::ShowDownloads},
        {"Spelling test", client::ShowSpelling},
        {"Word lists", client::ShowWordLists},
        {"Crash report", client::ShowCrash},
        {"Services", client::ShowServices},
        {"Log", client::ShowLog},
    };
    int nFailed = 0;
    for (const auto& scene : scenes) {
        std::printf("\n-- %s\n", scene.title);
        pLog->PushLogEx(CKXLogSys::LogInfo, "scene: %s", scene.title);
        if (scene.Run()) continue;
        std::printf("   failed\n");
        ++nFailed;
    }
    pLog->Flush(5000); // a stop doesn't wait for what is queued
    pLog->Uninitialize();
    return nFailed;
}
