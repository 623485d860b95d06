#include "Scene.h"

#include <cstdio>

namespace {

const char* StateText(unsigned long dwState)
{
    switch (dwState) {
    case SERVICE_STOPPED:
        return "stopped";
    case SERVICE_START_PENDING:
        return "starting";
    case SERVICE_STOP_PENDING:
        return "stopping";
    case SERVICE_RUNNING:
        return "running";
    default:
        return "in a state of its own";
    }
}

bool HasManager()
{
    const SC_HANDLE hManager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT);
    return hManager && CloseServiceHandle(hManager);
}

} // namespace

// Only looks: a show starts and stops nothing.
bool client::ShowServices()
{
    if (!HasManager()) {
        std::printf("   no service manager here\n");
        return true;
    }
    CKXWinService service("dbus");
    int bExists = 0;
    unsigned long dwState = 0;
    const bool bRead = service.GetStatus(bExists, dwState);
    std::printf("   dbus is %s\n", bExists ? StateText(dwState) : "not installed");
    return bRead || !bExists;
}
