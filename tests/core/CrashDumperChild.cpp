#include "KXCrashDumper.h"
#include "KXLogSys.h"
#include "platform/Host.h"
#include "tests/support/CrashKinds.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

// CrashDumperChild ROOT HOW: with `C:` at the directory ROOT, crashes in that way. The environment says the
// rest.

namespace {

std::string Setting(const char* pszName, const char* pszElse = "")
{
    const char* psz = std::getenv(pszName);
    return psz ? psz : pszElse;
}

// The log's own lock, which nobody else gets at: an explicit instantiation may name what is private.
CKXCritSection CKXLogSys::*LockOf(CKXLogSys*);
template <CKXCritSection CKXLogSys::*pLock>
struct Reach
{
    friend CKXCritSection CKXLogSys::*LockOf(CKXLogSys*) { return pLock; }
};
template struct Reach<&CKXLogSys::m_lockLog>;

void CrashBesideTheLog() KX_UNCHECKED_LOCKING
{
    CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
    (pLog->*LockOf(pLog)).Lock();
    crashes::OnThread<crashes::CrashByRead>();
}

} // namespace

int main(int, char** args)
{
    const std::string root = args[1];
    const std::string how = args[2];
    if (how == "restarted") { // how this very program is started again
        std::ofstream(root) << args[3] << "\n";
        return 0;
    }
    KXHost::Drive drive;
    drive.strRoot = root;
    KXHost::MountDrive('C', drive);
    if (!Setting("KX_TEST_TIME").empty())
        KXHost::UseVirtualClock(std::atoll(Setting("KX_TEST_TIME").c_str()));
    CKXCrashDumper dumper;
    if (Setting("KX_TEST_EARLY").empty()) {
        dumper.Initialize("first", "C:\\elsewhere\\", "first", "first", "first", 0, 0);
        dumper.Initialize(Setting("KX_TEST_APP", "App").c_str(), Setting("KX_TEST_PATH", "C:\\app\\").c_str(),
                          "stem", Setting("KX_TEST_RUN").c_str(), "ann@example.com",
                          Setting("KX_TEST_SEND") == "1", Setting("KX_TEST_RESTART") == "1");
        dumper.Unintialize();
    }
    if (how == "log") CrashBesideTheLog();
    crashes::kKinds.at(how).pfnCrash();
    return 0;
}
