#pragma once

#include "KXExport.h"
#include "platform/Crash.h"
#include "platform/String.h"

// The process's crash hook, for as long as the object lives. When the process crashes while the file
// "C:\nv_dbg_14.txt" can be opened, a separate program makes the report:
//
//     APP_PATH\KXCrashReport.exe -sd -app[NAME] -run[RESTART] -dmp[DUMP] -pid[N] -tid[N] -exp[ADDRESS]
//     -inf[CONTACT]
//
// behind which stand " -autosend" and " -autorestart" where they are asked for. DUMP is
// APP_PATH\dumps\EXE_NAME_20090314080509.dmp, by the local time of the crash; the directory is there when the
// reporter starts. ADDRESS is that of the crashed process's _EXCEPTION_POINTERS record, in decimal. Values
// stand as they are, whatever brackets they hold. The crash waits for the reporter, without a time-out, and
// then the process ends by the signal that it crashed with. Without the file, the crash takes its ordinary
// course.
//
// If the reporter can't be started, or its arguments take more than 32,767 bytes, the process just ends.
//
// The report also has the log's lines that were queued, and appends them to the log's file (KXLogSys.h).
//
// Crashes are reported while the object lives, and need no static object of the library. To have crashes of
// static destructors, of atexit handlers and of threads that outlive main reported too, make it by `new` in
// main and never delete it. While a crash is reported, a call of `exit` on another thread, or the return from
// main, waits.
//
// Three kinds of crash are never reported:
//
// 1. A stack overflow on a thread without an alternate stack. The platform's threads (_beginthreadex) have
//    one, and so has the one that makes this object. A thread made in another way (pthread_create,
//    std::thread) gets one at the first call that takes a lock of the library or names a file, once this
//    object has been made. One that calls nothing of the kind calls KXCrash::GuardThread (platform/Crash.h)
//    at its start.
// 2. A fault on a thread that has blocked its signal (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS; abort
//    unblocks its own): the system ends the process at once. Leave these unblocked, also in a mask of all
//    signals that a thread starts with.
// 3. A process without memory for another process, or killed by SIGKILL, as for lack of memory.
//
// A process that has used up its file descriptors is reported: one is kept in reserve. A signal handler that
// a client sets later for one of these signals takes the crash, and calls the former handler if it is to be
// reported.
class KX_API CKXCrashDumper
{
public:
    // Sets the hook, which works from here on: a crash before Initialize is reported with empty values. The
    // filter that was set before is kept, and set again by the destructor, or by a crash that made a report.
    CKXCrashDumper();
    ~CKXCrashDumper();
    CKXCrashDumper(const CKXCrashDumper&) = delete; // a copy's end would be the hook's
    // Changes nothing.
    CKXCrashDumper& operator=(CKXCrashDumper const&);

    // Sets the values of the report, in place of those before. `strAppPath` ends in a backslash; `strExeName`
    // is the stem of the dump's name. Before other threads start: a crash meanwhile may see some of both.
    void Initialize(CString const& strAppName, CString const& strAppPath, CString const& strExeName,
                    CString const& strRestartParam, CString const& strContactInfo, int bAutoSend,
                    int bAutoRestart);

    // Changes nothing: the hook stays until the destructor.
    void Unintialize();

protected:
    // The hook itself: starts the reporter and waits for it.
    static long ExceptionFilter(_EXCEPTION_POINTERS* pExceptionInfo);

    // The filter before the hook, and what Initialize was given last.
    static LPTOP_LEVEL_EXCEPTION_FILTER m_OriginalFilter;
    static int m_bAutoRestart;
    static int m_bAutoSend;
    static CString m_strAppName;
    static CString m_strAppPath;
    static CString m_strContactInfo;
    static CString m_strExeName;
    static CString m_strRestartParam;
};
