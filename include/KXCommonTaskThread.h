#pragma once

#include "KXCritSection.h"

#include <list>

struct tagKXCommonTask;

// A task's work: gets the task itself, so that a derived record reaches its data, and the event that is
// signalled when the thread is to stop, which a long task looks at now and then. Its result isn't read.
using KXCommonTaskProc = int (*)(tagKXCommonTask* pTask, HANDLE hStopEvent);

// A task; derive from it for data of your own.
struct KX_API tagKXCommonTask
{
    // Takes both as they are; nothing is copied.
    explicit tagKXCommonTask(KXCommonTaskProc pfn = nullptr, char const* pszName = nullptr) noexcept
        : pfnTaskProc(pfn), pszTaskName(pszName)
    {
    }
    tagKXCommonTask(const tagKXCommonTask&) = default;
    tagKXCommonTask& operator=(const tagKXCommonTask&) = default;
    // Ends the task; the thread does so after its run.
    virtual ~tagKXCommonTask();

    KXCommonTaskProc pfnTaskProc; // null: the task is only deleted
    char const* pszTaskName;      // for the log, should the task fail; stays the task's maker's
};

// Runs tasks one after the other, in the order in which they were added, on a thread of its own. What a task
// throws ends the task alone: the log (KXLogSys.h) gets a line of level 2 with its name.
//
// A client calls Initialize, then AddTask as often as it likes, then UnInitialize. Tasks that a stop leaves
// in the queue run after a later Initialize and AddTask.
class KX_API CKXCommonTaskThread
{
public:
    // No thread yet; Initialize follows.
    CKXCommonTaskThread();
    CKXCommonTaskThread(CKXCommonTaskThread const&) = delete;
    CKXCommonTaskThread& operator=(CKXCommonTaskThread const&) = delete;
    // Deletes what is still queued, without running it. A thread that was left running is stopped first, as
    // in UnInitialize.
    ~CKXCommonTaskThread();

    // Makes ready for tasks; nothing happens if it is. Not at the same time as AddTask or UnInitialize.
    void Initialize();

    // Stops the thread after the task in hand, waiting for that as long as it takes. Nothing happens without
    // one. Not at the same time as AddTask, and not from a task.
    void UnInitialize();

    // Queues a task made with `new`, null for none, and owns it from then on: it is deleted after its run, on
    // the thread, whose start the first task is. Without Initialize the task stays queued, and no other runs
    // until UnInitialize and Initialize have been called. Any thread, a task too. Without memory for it the
    // task stays the caller's: CMemoryException*.
    void AddTask(tagKXCommonTask* pTask);

protected:
    // Starts the thread unless there is one; 1.
    int StartThread();
    // Stops the thread and waits for its end; 1.
    int StopThread();
    // Takes the oldest task; null without one. The caller's to delete. The thread's business while there is
    // one.
    tagKXCommonTask* GetNextTask();
    // The thread's loop; 0.
    unsigned ProcessTaskThread();
    static unsigned ProcessTaskThread(void* pParam);

private:
    void StartLocked() KX_REQUIRES(m_lockTask);
    bool RunNext(HANDLE hStopEvent);
    void GiveBack();

    std::list<tagKXCommonTask*> m_listTask KX_GUARDED_BY(m_lockTask);
    CKXCritSection m_lockTask;
    HANDLE m_hThread KX_GUARDED_BY(m_lockTask) = nullptr;
    HANDLE m_hWakeEvent KX_GUARDED_BY(m_lockTask) = nullptr;
    HANDLE m_hStopEvent KX_GUARDED_BY(m_lockTask) = nullptr;
    bool m_bWoken KX_GUARDED_BY(m_lockTask) = false; // the thread will look at the queue once more
    DWORD m_dwProcess KX_GUARDED_BY(m_lockTask) = 0; // whose thread it is
    // Tasks that the thread took off the queue in one go and has not run yet; its own.
    std::list<tagKXCommonTask*> m_listTaken;
};
