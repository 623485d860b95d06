#include "KXCommonClass.h"
#include "tests/support/Standard.h"

// ForkChild DIRECTORY FORKS: forks while threads use the log, paths, INI files and the clock, and has each
// fork use them too. 0 if all forks came to their end; a fork that hangs ends by its alarm.

namespace {

std::atomic<bool> g_bStop{false};
std::string g_directory; // of the library's paths

int Use(int nFork)
{
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    const std::string own = g_directory + "own" + std::to_string(nFork % 4);
    pLog->PushLog(CKXLogSys::LogInfo, "before");
    if (pLog->Flush(0) != 0) return 1; // it doesn't run
    if (!pLog->Initialize((own + ".log").c_str())) return 2;
    pLog->PushLogEx(CKXLogSys::LogInfo, "fork %d", nFork);
    if (!pLog->Flush(INFINITE)) return 3;
    pLog->Uninitialize();
    CStdioFile file;
    CString strLine;
    if (!file.Open((own + ".LOG").c_str(), CFile::modeRead | CFile::shareDenyNone)) return 4;
    if (!file.ReadString(strLine) || strLine.Right(6) != "before" || !file.ReadString(strLine)) return 5;
    if (file.ReadString(strLine)) return 6;
    const CString strIni = (own + ".ini").c_str();
    CKXIniDataMgr::WriteInteger(strIni, "a", "fork", nFork);
    if (CKXIniDataMgr::GetInteger(strIni, "A", "Fork", -1) != nFork) return 7;
    if (CKXIniDataMgr::GetInteger((g_directory + "busy.ini").c_str(), "a", "b", -1) < 0) return 8;
    if (PathFileExistsA((g_directory + "none").c_str())) return 9;
    return 0;
}

bool Fork(int nFork)
{
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        std::exit(Use(nFork));
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) std::fprintf(stderr, "fork %d: %x\n", nFork, static_cast<unsigned>(status));
    return status == 0;
}

} // namespace

int main(int, char** args)
{
    g_directory = "C:" + std::string(args[1]) + "/";
    const int nForks = std::atoi(args[2]);
    CKXFileSystem::GetInstancePtr();
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    if (!pLog->Initialize((g_directory + "parent.log").c_str())) return 1;
    const CString strBusy = (g_directory + "busy.ini").c_str();
    CKXIniDataMgr::WriteInteger(strBusy, "a", "b", 0);
    const std::function<void(int, int)> steps[] = {
        [=](int t, int n) {
            pLog->PushLogEx(CKXLogSys::LogInfo, "%d %d", t, n);
            if (n % 1000 == 0) pLog->Flush(INFINITE);
        },
        [](int, int) { PathFileExistsA((g_directory + "Other.Name").c_str()); },
        [=](int, int n) {
            if (n % 8 == 0) CKXIniDataMgr::WriteInteger(strBusy, "a", "b", n);
            CKXIniDataMgr::GetInteger(strBusy, "a", "b", 0);
        },
        [](int, int n) {
            std::tm fields{};
            CTime(n).GetLocalTm(&fields);
        },
    };
    std::vector<std::jthread> threads;
    for (const auto& step : steps)
        for (int t = 0; t < 2; ++t)
            threads.emplace_back([&step, t] {
                for (int n = 0; !g_bStop; ++n)
                    step(t, n);
            });
    int nFailed = 0;
    for (int n = 0; n < nForks; ++n)
        nFailed += !Fork(n);
    g_bStop = true;
    threads.clear();
    if (!pLog->Flush(INFINITE)) return 1; // the parent's log goes on
    pLog->Uninitialize();
    return nFailed ? 1 : 0;
}
