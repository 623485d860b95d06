#pragma once

#include "KXCritSection.h"
#include "platform/StdioFile.h"
#include "platform/String.h"

#include <memory>

namespace kx::core {
class Line;
class Queue;
} // namespace kx::core

// The process's one log. Any thread pushes lines at the cost of formatting and one insertion into a queue; a
// writer thread appends them to one text file. A client flushes before it stops the log, or the file may end
// before the last lines, even be empty:
//
//     CKXLogSys* pLog = CKXLogSys::GetSingletonPtr();
//     if (!pLog->Initialize(strFilePath)) return 1;
//     pLog->PushLogEx(CKXLogSys::LogInfo, "lesson %d begins", 12); // from any thread
//     pLog->Flush(5000);
//     pLog->Uninitialize();
//
// A line in the file is
//
//     [2009-03-14 08:05:09] 2 message
//
// with the local time of the call, the level and the message as it stands: line ends in it make further
// lines. Lines stand in the order in which they were queued.
//
// While the log runs, the writer takes a queued line, and has handed it to the system at the end of its
// batch, after which a crash of the process no longer loses it. Lines pushed while the log doesn't run wait;
// they go ahead of the next line that is pushed while it runs. Uninitialize doesn't drain: lines that the
// writer hasn't taken by then wait in the same way, or are lost when the process ends. A line that can't be
// written (a full disk) is lost, and the writer goes on; the next line that can be written begins on a line
// of its own. The queue has no bound but memory.
//
// A child of fork has a log that doesn't run and whose queue is empty, for it to start on a file of its own
// (platform/Sync.h says what else such a child may call).
//
// A crash that is reported (KXCrashDumper.h) loses no queued line: the reporter appends to the log's file
// what the writer hadn't handed over, and puts it into the report. Of a crash that isn't reported, because
// the marker file or the reporter isn't there, the queued lines are lost.
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
    // directory exists. Others may read the file meanwhile, not write it. 1 on success, also where no thread
    // can be started: lines wait then. 0 when the file can't be opened, memory lacks or the log runs already,
    // with nothing left running. Not at the same time as Uninitialize.
    int Initialize(CString const& strFilePath);

    // Stops the writer after the line in hand, waits for it, and closes the file. Nothing happens when the
    // log doesn't run. No thread pushes lines meanwhile.
    void Uninitialize();

    // Waits until every line that was queued before the call has been handed to the system. 1 then; 0 when
    // that many milliseconds have passed first (INFINITE: no limit), one of these lines can't be written, the
    // log is stopped meanwhile, or memory lacks; 0 at once while the log doesn't run. Any thread.
    int Flush(unsigned long dwMilliseconds);

    // Queues a line. A level below 1 does nothing at all. Throws CMemoryException*, with nothing queued. Any
    // thread.
    void PushLog(LogLevel level, CString const& strLog);

    // The same with a printf-style message of any length. A format that can't be carried out is logged as it
    // stands. Any thread.
    void PushLogEx(LogLevel level, char const* format, ...) __attribute__((format(printf, 3, 4)));

protected:
    // A log that doesn't run; at its end it stops, and what is queued is lost.
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

    struct FlushWait;

    void PushLine(const kx::core::Line& line);
    bool WriteNext(CString& strLine);
    void HandOver(bool bFailed);
    void AwaitEnd() const;
    void EndFlushes();
    static void BeforeFork() noexcept;
    static void AfterFork(bool bChild) noexcept;
    void StartAnew() noexcept;

    // For what needs no lock: what the writer alone reads, and whether the log is closed.
    kx::core::Queue& Unguarded() const noexcept KX_NO_LOCK_ANALYSIS { return m_listLog; }

    kx::core::Queue& m_listLog KX_GUARDED_BY(m_lockLog);
    CKXCritSection m_lockLog;
    CStdioFile m_fileLog;
    HANDLE m_hThread = nullptr;
    HANDLE m_hStopEvent = nullptr;
    // Set under the lock by Initialize, cleared without it by Uninitialize, when no thread pushes.
    HANDLE m_hWakeEvent = nullptr;
    bool m_bWoken KX_GUARDED_BY(m_lockLog) = false;           // the writer will look at the queue once more
    bool m_bRunning KX_GUARDED_BY(m_lockLog) = false;         // there is a writer, not asked to stop
    FlushWait* m_pFlushes KX_GUARDED_BY(m_lockLog) = nullptr; // who waits in Flush

    static CKXLogSys* s_pInstance;
    static std::unique_ptr<CKXLogSys> s_auto_ptr;
};
