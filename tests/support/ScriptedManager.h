#pragma once

#include "include/platform/Clock.h"
#include "include/platform/Host.h"
#include "tests/support/Standard.h"

#include <deque>

namespace test {

struct State
{
    DWORD dwState = SERVICE_RUNNING;
    DWORD dwCheckPoint = 0;
    DWORD dwWaitHint = 0;
    DWORD dwExitCode = 0;
    DWORD dwQueryError = 0; // the query that would tell it fails with this
};

// A manager whose services tell the states that a test lists, one for each query or stop, and whose calls
// fail where it says so. It keeps a line of all calls, each with the milliseconds of the clock since the one
// before where there are any.
class ScriptedManager : public KXHost::ServiceManager
{
public:
    std::map<std::string, std::deque<State>> states;  // by service; the last state stays
    std::map<std::string, DWORD> errors;              // by call, as "start" or "open Dep"
    std::vector<KXHost::DependentService> dependents; // of every service
    std::function<void(const std::string&)> onCall;   // told of each call first
    KXHost::ServiceSettings created;

    std::string Calls() { return std::exchange(m_calls, {}); }

    DWORD OpenManager(DWORD dwAccess) override { return Call("manager", "", Hex(dwAccess)); }
    DWORD OpenService(const CString& strName, DWORD dwAccess) override
    {
        const DWORD error = Call("open", strName, Hex(dwAccess));
        return error == 0 && !states.contains(strName.GetString()) ? ERROR_SERVICE_DOES_NOT_EXIST : error;
    }
    DWORD Create(const CString& strName, const KXHost::ServiceSettings& settings, DWORD dwAccess) override
    {
        created = settings;
        return Call("create", strName, Hex(dwAccess));
    }
    DWORD Delete(const CString& strName) override { return Call("delete", strName); }
    DWORD SetStartType(const CString& strName, DWORD dwStartType) override
    {
        return Call("type", strName, Hex(dwStartType));
    }
    DWORD SetDescription(const CString& strName, const CString& strText) override
    {
        return Call("describe", strName, strText.GetString());
    }
    DWORD Query(const CString& strName, SERVICE_STATUS_PROCESS& status) override
    {
        const DWORD error = Call("query", strName);
        const DWORD told = Tell(strName, status);
        return error ? error : told;
    }
    DWORD Start(const CString& strName) override { return Call("start", strName); }
    DWORD Stop(const CString& strName, SERVICE_STATUS& status) override
    {
        const DWORD error = Call("stop", strName);
        if (!error) Tell(strName, status);
        return error;
    }
    DWORD ListDependents(const CString& strName, std::vector<KXHost::DependentService>& found) override
    {
        found = dependents;
        return Call("list", strName);
    }

private:
    static std::string Hex(DWORD value)
    {
        std::ostringstream text;
        text << std::hex << value;
        return text.str();
    }

    DWORD Call(std::string call, const char* pszName, const std::string& argument = {})
    {
        const DWORD now = GetTickCount();
        if (!m_calls.empty()) m_calls += now != m_last ? " +" + std::to_string(now - m_last) + " " : " ";
        m_last = now;
        std::string full = *pszName ? call + " " + pszName : call;
        m_calls += (argument.empty() ? full : full + " " + argument) + ";";
        if (onCall) onCall(full);
        for (const std::string& key : {full, call})
            if (errors.contains(key)) return errors[key];
        return 0;
    }
    // Fills in the next state, and gives the error that its query has.
    template <class Status>
    DWORD Tell(const CString& strName, Status& status)
    {
        auto& list = states[strName.GetString()];
        const State state = list.empty() ? State() : list.front();
        if (list.size() > 1) list.pop_front();
        status.dwCurrentState = state.dwState;
        status.dwWin32ExitCode = state.dwExitCode;
        status.dwCheckPoint = state.dwCheckPoint;
        status.dwWaitHint = state.dwWaitHint;
        return state.dwQueryError;
    }

    std::string m_calls;
    DWORD m_last = 0;
};

} // namespace test
