#include "KXHttpDownloadMgr.h"

#include "KXAutoLock.h"
#include "internal/Debug.h"
#include "internal/Guard.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Internet.h"
#include "platform/Sync.h"
#include "platform/Window.h"

#include <array>
#include <new>
#include <utility>

namespace {

volatile long g_lTaskId = 1;

} // namespace

CKXHttpDownloadMgr::Task::Task(CString const& url, CString const& localFile, HWND hWnd,
                               KXDownloadCallback callback, unsigned int uParam)
    : uTaskId(static_cast<unsigned int>(InterlockedIncrement(&g_lTaskId))),
      strUrl(url),
      strLocalFile(localFile),
      hNotifyWnd(hWnd),
      pfnCallback(callback),
      uUserParam(uParam)
{
}

CKXHttpDownloadMgr& CKXHttpDownloadMgr::Instance()
{
    static CKXHttpDownloadMgr mgr;
    return mgr;
}

CKXHttpDownloadMgr::CKXHttpDownloadMgr()
{
    StartDownload();
}

CKXHttpDownloadMgr::~CKXHttpDownloadMgr()
{
    Uninitialize();
    if (!IsOwnProcess())
        m_pSession.release(); // NOLINT(bugprone-unused-return-value): its connections aren't ours
    if (m_dwWorker == GetCurrentThreadId()) return; // other threads may be adding tasks yet
    CloseHandle(m_hThread);
    CloseHandle(m_hWakeEvent);
}

unsigned int CKXHttpDownloadMgr::AddTask(CString const& strUrl, CString const& strLocalFile, HWND hWnd)
try {
    return Queue(std::make_unique<Task>(strUrl, strLocalFile, hWnd, nullptr, 0u));
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

unsigned int CKXHttpDownloadMgr::AddTask(CString const& strUrl, CString const& strLocalFile,
                                         KXDownloadCallback pfnCallback, unsigned int uUserParam)
try {
    return Queue(std::make_unique<Task>(strUrl, strLocalFile, nullptr, pfnCallback, uUserParam));
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

unsigned int CKXHttpDownloadMgr::Queue(std::unique_ptr<Task> task)
{
    const unsigned int uTaskId = task->uTaskId; // the worker may free the task before this returns
    {
        const CKXAutoLock lock(&m_lockTask);
        m_listTask.push_back(task.get());
        task.release(); // NOLINT(bugprone-unused-return-value): the queue has it
    }
    SetEvent(m_hWakeEvent);
    return uTaskId;
}

// The session is made here, not by the worker: what HTTP stands on is then older than the manager, and still
// there when that is destroyed at the process's end.
void CKXHttpDownloadMgr::StartDownload()
try {
    if (m_hThread && WaitForSingleObject(m_hThread, 0) != WAIT_OBJECT_0) return;
    m_pSession = std::make_unique<CInternetSession>(nullptr, 1, INTERNET_OPEN_TYPE_PRECONFIG);
    if (HANDLE hThread = std::exchange(m_hThread, nullptr)) CloseHandle(hThread);
    if (!m_hWakeEvent) m_hWakeEvent = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    m_dwProcess = GetCurrentProcessId();
    m_bRunning = true;
    m_hThread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, DownloadFunc, this, 0, nullptr));
    if (m_hThread) return;
    m_bRunning = false;
    kx::debug::Tell("http", "no thread for downloads could be started; none is served");
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void CKXHttpDownloadMgr::StopDownload()
{
    m_bStop = 1;
    if (!IsOwnProcess() || m_dwWorker == GetCurrentThreadId())
        return; // the latter: a callback ends the process
    SetEvent(m_hWakeEvent);
    m_pSession->Cancel();
    WaitForSingleObject(m_hThread, INFINITE);
}

bool CKXHttpDownloadMgr::IsRunning() const
{
    return m_bRunning && !IsStopped() && IsOwnProcess();
}

CString CKXHttpDownloadMgr::GetLastFailure() const
{
    const CKXAutoLock lock(&m_lockTask);
    return m_strFailure;
}

// A fork has neither the worker nor the right to what it worked with.
bool CKXHttpDownloadMgr::IsOwnProcess() const
{
    return m_dwProcess == GetCurrentProcessId();
}

void CKXHttpDownloadMgr::Uninitialize()
{
    StopDownload();
    ReleaseTasks();
}

CKXHttpDownloadMgr::Task* CKXHttpDownloadMgr::GetNextTask()
{
    const CKXAutoLock lock(&m_lockTask);
    if (m_listTask.empty()) return nullptr;
    Task* pTask = m_listTask.front();
    m_listTask.pop_front();
    return pTask;
}

void CKXHttpDownloadMgr::ReleaseTasks()
{
    const CKXAutoLock lock(&m_lockTask);
    for (Task* pTask : m_listTask)
        delete pTask;
    m_listTask.clear();
}

void CKXHttpDownloadMgr::NotifyOrCallback(unsigned int uCode, Task* pTask)
{
    if (!pTask) return;
    if (pTask->hNotifyWnd) {
        const unsigned long dwValue = uCode == WM_KXDOWNLOADOPENED  ? pTask->dwTotalSize
                                      : uCode == WM_KXDOWNLOADBLOCK ? pTask->dwReceived
                                                                    : 0;
        PostMessage(pTask->hNotifyWnd, uCode, pTask->uTaskId, static_cast<LPARAM>(dwValue));
    } else if (pTask->pfnCallback) {
        pTask->pfnCallback(uCode, pTask->uTaskId, pTask->strUrl, pTask->strLocalFile, pTask->dwTotalSize,
                           pTask->dwReceived, pTask->uUserParam);
    }
}

unsigned CKXHttpDownloadMgr::DownloadFunc(void* pParam)
{
    return pParam ? static_cast<CKXHttpDownloadMgr*>(pParam)->__DownloadFunc() : 1;
}

unsigned CKXHttpDownloadMgr::__DownloadFunc() // NOLINT(bugprone-reserved-identifier)
{
    m_dwWorker = GetCurrentThreadId();
    CFile file;
    Outcome outcome = Outcome::Complete;
    while (outcome == Outcome::Complete) {
        const std::unique_ptr<Task> task = WaitForTask();
        if (!task) break;
        outcome = Run(*task, file);
    }
    m_bRunning = false;
    m_pSession->Close();
    return outcome == Outcome::Failed ? static_cast<unsigned>(-1) : 0;
}

// Null at a stop; a task that was taken meanwhile is dropped.
std::unique_ptr<CKXHttpDownloadMgr::Task> CKXHttpDownloadMgr::WaitForTask()
{
    while (!IsStopped()) {
        std::unique_ptr<Task> task(GetNextTask());
        if (!task && WaitForSingleObject(m_hWakeEvent, INFINITE) != WAIT_OBJECT_0) return nullptr;
        if (IsStopped()) return nullptr;
        if (task) return task;
    }
    return nullptr;
}

// A callback may throw anything.
CKXHttpDownloadMgr::Outcome CKXHttpDownloadMgr::Run(Task& task, CFile& file) noexcept
{
    Outcome outcome = Outcome::Failed;
    try {
        outcome = Download(task, file);
    } catch (CException* pException) {
        NoteFailure(task, *pException);
        pException->Delete();
    } catch (...) {
        NoteFailure(task, "its callback threw");
    }
    file.Abort(); // what it holds stays
    return outcome;
}

void CKXHttpDownloadMgr::NoteFailure(const Task& task, const CException& exception) noexcept
{
    std::array<char, 512> text;
    const bool bText = exception.GetErrorMessage(text.data(), static_cast<UINT>(text.size())) != 0;
    NoteFailure(task, bText ? text.data() : "it failed");
}

void CKXHttpDownloadMgr::NoteFailure(const Task& task, const char* pszReason) noexcept
{
    if (IsStopped()) return; // cut short as asked
    // Without memory the debug channel still tells.
    kx::Guard([&] {
        const CString strFailure = task.strUrl + ": " + pszReason;
        const CKXAutoLock lock(&m_lockTask);
        m_strFailure = strFailure;
    });
    kx::debug::Tell("http", "%s: %s; the download worker has ended, and what is queued is never served",
                    task.strUrl.GetString(), pszReason);
}

CKXHttpDownloadMgr::Outcome CKXHttpDownloadMgr::Download(Task& task, CFile& file)
{
    std::unique_ptr<CHttpFile> http(m_pSession->OpenURL(task.strUrl, 1, INTERNET_FLAG_TRANSFER_ASCII));
    http->QueryInfo(HTTP_QUERY_CONTENT_LENGTH, task.dwTotalSize);
    NotifyOrCallback(WM_KXDOWNLOADOPENED, &task);
    CFileException failure;
    if (!task.strLocalFile.IsEmpty() &&
        !file.Open(task.strLocalFile, CFile::modeCreate | CFile::modeWrite, &failure)) {
        NoteFailure(task, failure);
        return Outcome::NoFile;
    }

    if (!Transfer(task, *http, file)) {
        NotifyOrCallback(WM_KXDOWNLOADCUT, &task);
        if (task.dwReceived == 0) return Outcome::Stopped;
    }
    file.Close();
    http.reset();
    NotifyOrCallback(WM_KXDOWNLOADENDED, &task);
    return Outcome::Complete;
}

// True at the body's end, false at a stop.
bool CKXHttpDownloadMgr::Transfer(Task& task, CHttpFile& http, CFile& file)
{
    std::array<char, 2048> block;
    while (!IsStopped()) {
        const int nRead = ReadBlock(http, block.data(), block.size());
        if (nRead == 0) return true;
        if (nRead < 0) continue;
        if (file.IsOpen()) file.Write(block.data(), static_cast<std::size_t>(nRead));
        task.dwReceived += static_cast<unsigned long>(nRead);
        NotifyOrCallback(WM_KXDOWNLOADBLOCK, &task);
    }
    return false;
}

// Negative when a stop cut the read short: that counts as one that was seen before the read.
int CKXHttpDownloadMgr::ReadBlock(CHttpFile& http, char* pBlock, std::size_t cbBlock) const
{
    try {
        return static_cast<int>(http.Read(pBlock, static_cast<UINT>(cbBlock)));
    } catch (CInternetException* pException) {
        if (!IsStopped() || pException->m_dwError != ERROR_INTERNET_OPERATION_CANCELLED) throw;
        pException->Delete();
        return -1;
    }
}
