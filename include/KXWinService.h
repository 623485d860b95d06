#pragma once

#include "KXExport.h"
#include "platform/Services.h"
#include "platform/String.h"

// Installs, removes, configures, starts, stops and queries one service by its name (platform/Services.h says
// which names there are). Each operation asks the machine's service manager anew, and blocks its caller until
// it has the result, waits included. Progress and failures are told on the debug channel, failures of the
// platform with GetLastError's number.
//
// Results of type int are 1 for success and 0 for failure, after which the object can be used again. No
// operation throws but for lack of memory. An object is used by one thread at a time, and DoStart and DoStop
// not by one that has windows to serve.
class KX_API CKXWinService
{
public:
    // Opens the manager. Where that fails each operation tries again.
    explicit CKXWinService(CString const& strServiceName);
    // A copy takes the texts and the start type over and opens handles of its own when it needs them.
    CKXWinService(CKXWinService const& other);
    CKXWinService& operator=(CKXWinService const& other);
    ~CKXWinService();

    // Installs the service: its program's full path (in double quotes where arguments follow a path with
    // spaces), a SERVICE_..._START or SERVICE_DISABLED, and the name to show. The handle of an earlier
    // operation is overwritten, not closed.
    int Create(CString const& strBinaryPath, unsigned long dwStartType, CString strDisplayName);

    // Marks the service for deletion; it isn't stopped first.
    int Delete();

    // Sets the text that describes the service to people.
    int ChangeDesc(CString const& strDescription);

    // Sets when the service is started: a SERVICE_..._START or SERVICE_DISABLED.
    int ChangeStartType(unsigned long dwStartType);

    // Starts the service and waits until it runs: 1. A stop that is under way is waited for first. Waits end
    // when the service has made no progress for longer than it said it needs. 0 also for one that is running
    // or starting already.
    int DoStart();

    // Stops the active services that need this one, then it, and waits until it has stopped: 1. 0 also for
    // one that was stopped before. The whole has 30 seconds, and the dependents 30 of their own; a limit is
    // looked at after each wait, of the length that the service asks for.
    int DoStop();

    // Whether the service exists, and its state. Where it doesn't, or the manager can't be asked, `bExists`
    // is 0, `dwState` SERVICE_STOPPED and the result 0.
    int GetStatus(int& bExists, unsigned long& dwState);

protected:
    // Opens the manager where it isn't open; whether it is now.
    int OpenSCM();
    // Stops the active services that need the open one, in the order in which they are listed, each before
    // the next; the first failure ends it. 1 also where there are none. Prints nothing.
    int StopDependentServices();

private:
    int Reopen(DWORD dwAccess);
    void CloseService();

    CString m_strServiceName;
    CString m_strDisplayName;
    CString m_strDescription;
    CString m_strBinaryPath;
    unsigned long m_dwStartType = 0;
    SC_HANDLE m_hSCManager = nullptr;
    SC_HANDLE m_hService = nullptr;
};
