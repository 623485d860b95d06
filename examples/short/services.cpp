#include "Short.h"

// The state of a service of systemd; on a machine without it, the class says so.
int main()
{
    CKXWinService service("dbus");
    int bExists = 0;
    unsigned long dwState = 0;
    if (service.GetStatus(bExists, dwState))
        std::printf("dbus: state %lu\n", dwState);
    else
        std::printf("dbus is not there, or there is no manager\n");
    return bExists && dwState == 0 ? 1 : 0;
}
