#include "KXCrashDumper.h"

#include "internal/FixedText.h"
#include "platform/Sync.h"

#include <cstdint>

LPTOP_LEVEL_EXCEPTION_FILTER CKXCrashDumper::m_OriginalFilter = nullptr;
int CKXCrashDumper::m_bAutoRestart = 0;
int CKXCrashDumper::m_bAutoSend = 0;

namespace {

using Path = kx::FixedText<4096>;

// The values as the filter reads them. They have no destructor, unlike the static strings: a crash may come
// after those are gone, in a destructor of a static object or on a thread that outlives main.
kx::FixedText<32'768> g_app;
kx::FixedText<32'768> g_restart;
kx::FixedText<32'768> g_contact;
Path g_path;
Path g_stem;

// The filter writes to these. One thread at a time is in it.
Path g_dumps;
Path g_dump;
Path g_reporter;
kx::FixedText<32'768> g_arguments;

// The time of the crash in 14 digits.
void AppendTime(Path& path)
{
    std::tm time{};
    KXCrash::GetLocalTime(&time);
    path.Number(time.tm_year + 1900LL, 4).Number(time.tm_mon + 1LL, 2).Number(time.tm_mday, 2);
    path.Number(time.tm_hour, 2).Number(time.tm_min, 2).Number(time.tm_sec, 2);
}

// Waits until the reporter has ended, or couldn't start.
void RunReporter()
{
    STARTUPINFO startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION information{};
    if (!CreateProcessA(g_reporter.Data(), g_arguments.Data(), nullptr, nullptr, 0, 0, nullptr, nullptr,
                        &startup, &information))
        return;
    WaitForSingleObject(information.hProcess, INFINITE);
    DWORD dwCode = 0;
    GetExitCodeProcess(information.hProcess, &dwCode);
    CloseHandle(information.hProcess);
    CloseHandle(information.hThread);
}

} // namespace

CKXCrashDumper::CKXCrashDumper()
{
    m_OriginalFilter = SetUnhandledExceptionFilter(ExceptionFilter);
}

CKXCrashDumper::~CKXCrashDumper()
{
    SetUnhandledExceptionFilter(m_OriginalFilter);
}

CKXCrashDumper& CKXCrashDumper::operator=(CKXCrashDumper const&)
{
    return *this;
}

void CKXCrashDumper::Initialize(CString const& strAppName, CString const& strAppPath,
                                CString const& strExeName, CString const& strRestartParam,
                                CString const& strContactInfo, int bAutoSend, int bAutoRestart)
{
    const auto keep = [](auto& target, const CString& str) {
        target.Clear();
        target << str.View();
    };
    keep(g_app, strAppName);
    keep(g_path, strAppPath);
    keep(g_stem, strExeName);
    keep(g_restart, strRestartParam);
    keep(g_contact, strContactInfo);
    m_strAppName = strAppName;
    m_strAppPath = strAppPath;
    m_strExeName = strExeName;
    m_strRestartParam = strRestartParam;
    m_strContactInfo = strContactInfo;
    m_bAutoSend = bAutoSend;
    m_bAutoRestart = bAutoRestart;
}

void CKXCrashDumper::Unintialize()
{
}

// On a process as the crash left it: static buffers, and of the platform only what a filter may call.
long CKXCrashDumper::ExceptionFilter(_EXCEPTION_POINTERS* pExceptionInfo)
{
    if (!KXCrash::IsFileReadable("C:\\nv_dbg_14.txt")) return EXCEPTION_CONTINUE_SEARCH;

    g_dumps.Clear();
    g_dump.Clear();
    g_reporter.Clear();
    g_arguments.Clear();
    KXCrash::MakeDirectory((g_dumps << g_path.View() << "dumps").Data());
    AppendTime(g_dump << g_path.View() << "dumps\\" << g_stem.View() << "_");
    g_dump << ".dmp";
    g_reporter << g_path.View() << "KXCrashReport.exe";
    g_arguments << "-sd -app[" << g_app.View() << "] -run[" << g_restart.View() << "] -dmp[" << g_dump.View()
                << "] -pid[";
    g_arguments.Number(GetCurrentProcessId()) << "] -tid[";
    g_arguments.Number(GetCurrentThreadId()) << "] -exp[";
    g_arguments.Number(reinterpret_cast<std::intptr_t>(pExceptionInfo))
        << "] -inf[" << g_contact.View() << "]";
    if (m_bAutoSend) g_arguments << " -autosend";
    if (m_bAutoRestart) g_arguments << " -autorestart";

    const bool bFits = g_app.Fits() && g_path.Fits() && g_stem.Fits() && g_restart.Fits() && g_contact.Fits();
    if (bFits && g_dump.Fits() && g_reporter.Fits() && g_arguments.Fits()) RunReporter();
    if (m_OriginalFilter) SetUnhandledExceptionFilter(m_OriginalFilter);
    return EXCEPTION_EXECUTE_HANDLER;
}
