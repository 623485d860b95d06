#pragma once

#include "KXCritSection.h"
#include "platform/StdioFile.h"
#include "platform/String.h"

#include <list>
#include <memory>

namespace kx::log {
class Line;
}

// The process's one log. Any thread pushes lines at the cost of formatting and one insertion into a queue; a
// writer thread appends them to one text file. A line in the file is
//
//     [2009-03-14 08:05:09] 2 message
//
// with the local time of the call, the level and the message as it stands: line ends in it make further
// lines. Lines stand in the order in which they were queued.
//
// What becomes of a queued line: while the log runs, the writer takes it, and has handed it to the system at
// the end of its batch, after which a crash of the process no longer loses it. Lines pushed while the log
// doesn't run wait; they go ahead of the next line that is pushed while it runs. Uninitialize doesn't drain:
// what the writer hasn't taken by then waits in the same way, or is lost when the library unloads. A line
// that can't be written (a full disk) is lost, and the writer goes on. The queue has no bound but memory.
class KX_API CKXLogSys
{
public:
    // A number in the line; the log gives the values above 0 no meaning of its own.
    enum LogLevel : int
    {
        LogNone = 0, // this and anything below: not logged
        LogInfo = 1,
        LogError = 2,
    };

    // The log, made at the first call; null for lack of memory. The first call comes before other threads
    // use the log; later ones may come from any thread. The object is the library's.
    static CKXLogSys* GetSingletonPtr();

    CKXLogSys(const CKXLogSys&) = delete;
    CKXLogSys& operator=(const CKXLogSys&) = delete;

    // Creates the log file, or empties it, and starts the writer. `strFilePath` is the file's full path; its
    // directory exists. Others may read the file meanwhile, not write it. 1 on success; 0 when the file can't
    // be opened or the log runs already, with nothing changed. Not at the same time as Uninitialize.
    int Initialize(CString const& strFilePath);

    // Stops the writer after the line in hand, waits for it, and closes the file. Nothing happens when the
    // log doesn't run. No thread pushes lines meanwhile.
    void Uninitialize();

    // Queues a line. A level below 1 does nothing at all. Any thread.
    void PushLog(LogLevel level, CString const& strLog);

    // The same with a printf-style message of any length. A format that can't be carried out is logged as it
    // stands. Any thread.
    void PushLogEx(LogLevel level, char const* format, ...) __attribute__((format(printf, 3, 4)));

protected:
    CKXLogSys();
    ~CKXLogSys();

    // 1: a writer runs, or was asked for.
    int StartThread();
    // Stops the writer and waits for it; 1.
    int StopThread();
    // Takes the oldest line; 0 without one. The writer's thread only.
    int GetNextLog(CString& strLog);
    // The writer's loop; ends at the stop event with 0.
    unsigned WriteLogThreadFunc();
    static unsigned WriteLogThread(void* pParam);

private:
    friend struct std::default_delete<CKXLogSys>;

    void PushLine(const kx::log::Line& line);
    bool PushIntoSpare(const kx::log::Line& line);
    void Exchange();
    void GiveBack();

    std::list<CString> m_listLog KX_GUARDED_BY(m_lockLog);
    CKXCritSection m_lockLog;
    CStdioFile m_fileLog;
    HANDLE m_hThread = nullptr;
    HANDLE m_hStopEvent = nullptr;
    // Set under the lock by Initialize, cleared without it by Uninitialize, when no thread pushes.
    HANDLE m_hWakeEvent = nullptr;
    DWORD m_dwProcess = 0; // whose thread it is
    // Nodes for lines to come, with buffers.
    std::list<CString> m_listSpare KX_GUARDED_BY(m_lockLog);
    // The writer's own: lines that it took off the queue in one go and has not written yet, and the nodes of
    // those that it has.
    std::list<CString> m_listTaken;
    std::list<CString> m_listSpent;

    static CKXLogSys* s_pInstance;
    static std::unique_ptr<CKXLogSys> s_auto_ptr;
};
