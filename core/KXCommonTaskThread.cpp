#include "KXCommonTaskThread.h"

#include "KXAutoLock.h"
#include "KXDebug.h"
#include "KXLogSys.h"
#include "internal/Guard.h"
#include "platform/Exception.h"

#include <memory>
#include <new>
#include <utility>

namespace {

// GBK: the thread begins, the thread ends, a task failed.
constexpr char szEnter[] = "\xBD\xF8\xC8\xEB CommonTaskThread! \n";
constexpr char szLeave[] = "\xCD\xCB\xB3\xF6 CommonTaskThread! \n";
constexpr char szFailed[] =
    "\xB4\xA6\xC0\xED\xC8\xCE\xCE\xF1\xCA\xB1\xB3\xF6\xB4\xED\xA3\xA1\xA3\xA8taskname:%s\xA3\xA9";

void LogFailure(const tagKXCommonTask& task) noexcept
{
    const char* pszName = task.pszTaskName ? task.pszTaskName : "";
    kx::Guard([&] { // no memory for the line: the thread goes on without
        if (CKXLogSys* pLog = CKXLogSys::GetSingletonPtr())
            pLog->PushLogEx(CKXLogSys::LogError, szFailed, pszName);
    });
}

// Tasks often come in bursts: looks a few times before it sleeps, which would cost far more than that.
bool WaitAwake(HANDLE hWakeEvent)
{
    constexpr int nLooks = 200;
    DWORD dwResult = WAIT_TIMEOUT;
    for (int n = 0; n < nLooks && dwResult == WAIT_TIMEOUT; ++n)
        dwResult = WaitForSingleObject(hWakeEvent, 0);
    if (dwResult == WAIT_TIMEOUT) dwResult = WaitForSingleObject(hWakeEvent, INFINITE);
    return dwResult == WAIT_OBJECT_0;
}

void Run(tagKXCommonTask& task, HANDLE hStopEvent) noexcept
{
    if (!task.pfnTaskProc) return;
    if (!kx::Guard([&] { task.pfnTaskProc(&task, hStopEvent); })) LogFailure(task);
}

} // namespace

tagKXCommonTask::~tagKXCommonTask() = default;

CKXCommonTaskThread::CKXCommonTaskThread() = default;

CKXCommonTaskThread::~CKXCommonTaskThread()
{
    UnInitialize();
    while (tagKXCommonTask* pTask = GetNextTask())
        delete pTask;
}

void CKXCommonTaskThread::Initialize()
{
    const CKXAutoLock lock(&m_lockTask);
    if (!m_hWakeEvent) m_hWakeEvent = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    if (!m_hStopEvent) m_hStopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

void CKXCommonTaskThread::UnInitialize()
{
    StopThread();
    const CKXAutoLock lock(&m_lockTask);
    if (HANDLE hEvent = std::exchange(m_hWakeEvent, nullptr)) CloseHandle(hEvent);
    if (HANDLE hEvent = std::exchange(m_hStopEvent, nullptr)) CloseHandle(hEvent);
}

void CKXCommonTaskThread::AddTask(tagKXCommonTask* pTask)
try {
    if (!pTask) return;
    std::list<tagKXCommonTask*> node; // allocated before the lock is taken
    node.push_back(pTask);
    const CKXAutoLock lock(&m_lockTask);
    m_listTask.splice(m_listTask.end(), node);
    StartLocked();
    if (!std::exchange(m_bWoken, true)) SetEvent(m_hWakeEvent);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXCommonTaskThread::StartThread()
{
    const CKXAutoLock lock(&m_lockTask);
    StartLocked();
    return 1;
}

void CKXCommonTaskThread::StartLocked()
{
    if (m_hThread) return;
    m_bWoken = false;
    m_dwProcess = GetCurrentProcessId();
    m_hThread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, ProcessTaskThread, this, 0, nullptr));
}

// The thread takes the lock for its next task, so it isn't waited for in here. It counts as there until it
// has ended: a task that adds one meanwhile must not start another.
int CKXCommonTaskThread::StopThread()
{
    HANDLE hThread = nullptr;
    bool bOwn = false; // a fork has no thread to wait for
    {
        const CKXAutoLock lock(&m_lockTask);
        hThread = m_hThread;
        if (!hThread) return 1;
        bOwn = m_dwProcess == GetCurrentProcessId();
        SetEvent(m_hStopEvent); // first, so that the thread, once awake, finds it
        SetEvent(m_hWakeEvent);
    }
    if (bOwn) WaitForSingleObject(hThread, INFINITE);
    const CKXAutoLock lock(&m_lockTask);
    CloseHandle(std::exchange(m_hThread, nullptr));
    return 1;
}

tagKXCommonTask* CKXCommonTaskThread::GetNextTask()
{
    if (m_listTaken.empty()) {
        const CKXAutoLock lock(&m_lockTask);
        m_listTaken.swap(m_listTask);
        m_bWoken = false;
    }
    if (m_listTaken.empty()) return nullptr;
    tagKXCommonTask* pTask = m_listTaken.front();
    m_listTaken.pop_front();
    return pTask;
}

// Tasks that were taken but not run go back to the head of the queue, where a later start finds them.
void CKXCommonTaskThread::GiveBack()
{
    const CKXAutoLock lock(&m_lockTask);
    m_listTask.splice(m_listTask.begin(), m_listTaken);
}

unsigned CKXCommonTaskThread::ProcessTaskThread(void* pParam)
{
    if (!pParam) return 0;
    KXPrintDebugStr(szEnter);
    const unsigned nResult = static_cast<CKXCommonTaskThread*>(pParam)->ProcessTaskThread();
    KXPrintDebugStr(szLeave);
    return nResult;
}

unsigned CKXCommonTaskThread::ProcessTaskThread()
{
    HANDLE hWakeEvent = nullptr;
    HANDLE hStopEvent = nullptr;
    {
        const CKXAutoLock lock(&m_lockTask);
        hWakeEvent = m_hWakeEvent;
        hStopEvent = m_hStopEvent;
    }
    // Without an event, for a lack of memory, nobody could stop it later.
    const auto isStopped = [&] { return WaitForSingleObject(hStopEvent, 0) != WAIT_TIMEOUT; };
    while (WaitAwake(hWakeEvent)) {
        while (!isStopped() && RunNext(hStopEvent)) {
        }
        if (isStopped()) break;
    }
    GiveBack();
    return 0;
}

// False for an empty queue. The task is gone before the next one is looked for.
bool CKXCommonTaskThread::RunNext(HANDLE hStopEvent)
{
    const std::unique_ptr<tagKXCommonTask> task(GetNextTask());
    if (!task) return false;
    Run(*task, hStopEvent);
    return true;
}
