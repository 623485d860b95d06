#include "Scene.h"

#include <cstdio>
#include <iterator>

// The order is a client's own: the log first, so that the others can write to it, and last what it wrote.
int main()
{
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    const CString strLog = CKXFileSystem::GetInstancePtr()->GetAppPath() + "client.log";
    if (!pLog->Initialize(strLog)) {
        std::fprintf(stderr, "no log at %s\n", client::Utf8(strLog).c_str());
        return 1;
    }
    constexpr client::Scene scenes[] = {
        {"Paths and files", client::ShowPaths}, {"Languages", client::ShowLanguages},
        {"Drawing", client::ShowDrawing},       {"Pictures", client::ShowPictures},
        {"Skins", client::ShowSkins},           {"Log", client::ShowLog},
    };
    int nFailed = 0;
    for (const auto& scene : scenes) {
        std::printf("\n-- %s\n", scene.title);
        pLog->PushLogEx(CKXLogSys::LogInfo, "scene: %s", scene.title);
        if (scene.Run()) continue;
        std::printf("   failed\n");
        ++nFailed;
    }
    pLog->Uninitialize();
    return nFailed;
}
