#pragma once

#include "KXCritSection.h"
#include "platform/String.h"
#include "platform/Types.h"

#include <atomic>
#include <cstddef>
#include <list>
#include <memory>

class CException;
class CFile;
class CHttpFile;
class CInternetSession;

// Gets the notification code, the task's id, its URL and local file (valid during the call), the announced
// and the received bytes, and the caller's parameter. Runs on the download worker; its result isn't read. It
// may add tasks. While it runs nothing is downloaded; if it throws, nothing ever is again: see below.
using KXDownloadCallback = int (*)(unsigned int uCode, unsigned int uTaskId, CString const& strUrl,
                                   CString const& strLocalFile, unsigned long dwTotalSize,
                                   unsigned long dwReceived, unsigned int uUserParam);

// A callback gets this as its code, and a window as its message, with the task's id in WPARAM and in LPARAM
// what is told here.
inline constexpr unsigned int WM_KXDOWNLOADOPENED = 2029; // the URL is open; the announced size, 0 for none
inline constexpr unsigned int WM_KXDOWNLOADBLOCK = 2030;  // a block has arrived; the bytes received so far
inline constexpr unsigned int WM_KXDOWNLOADENDED = 2031;  // the transfer is over; 0
inline constexpr unsigned int WM_KXDOWNLOADCUT = 2032;    // the library's unload cuts it short; 0

// The process's downloads: one worker thread fetches URLs (http and https; platform/Internet.h says how) one
// after the other, in the order in which they were added, into local files or nowhere.
//
// A task's notifications are one of
//
//     2029, 2030 for each block, 2031          all of it arrived (of an empty body just 2029, 2031)
//     2029, 2032                               the unload came before the first block
//     2029, 2030 for each block, 2032, 2031    the unload came after a block
//     nothing, or 2029 and 2030s               it failed
//
// where a block has up to 2,048 bytes.
//
// The server's status isn't looked at: an error page is stored as any other body. After a 2030 for a local
// file, that file holds as many bytes as were received.
//
// The first task that fails (no server, a broken transfer, a file that can't be opened or written, a callback
// that throws) ends the worker for good. What its file holds by then stays. Tasks are still accepted after
// that, but none is served, and none is told of: IsRunning and GetLastFailure tell, and so does a line on the
// debug channel.
class KX_API CKXHttpDownloadMgr
{
public:
    struct KX_API Task
    {
        // Draws the id: 2 for the library's first task, and one more for each.
        Task(CString const& strUrl, CString const& strLocalFile, HWND hNotifyWnd,
             KXDownloadCallback pfnCallback, unsigned int uUserParam);

        // AddTask's arguments, and the id that it gave.
        unsigned int uTaskId;
        CString strUrl;
        CString strLocalFile; // empty: what arrives is dropped
        HWND hNotifyWnd;      // null in the form with a callback
        KXDownloadCallback pfnCallback;
        unsigned int uUserParam;
        unsigned long dwTotalSize = 0; // as announced; 0 until known or if it isn't
        unsigned long dwReceived = 0;
    };

    // The manager, made with its worker at the first call, which must not race with another. It ends when the
    // library unloads: the running task is cut short, at once also where its server is silent, and those that
    // wait are freed without a word.
    static CKXHttpDownloadMgr& Instance();

    CKXHttpDownloadMgr(CKXHttpDownloadMgr const&) = delete;
    CKXHttpDownloadMgr& operator=(CKXHttpDownloadMgr const&) = delete;

    // Queues a download of `strUrl` into `strLocalFile`, which is made or emptied once the URL is open; empty
    // for nowhere. The window, null for none, is notified by PostMessage. Returns the task's id at once,
    // maybe after the first notification. Any thread.
    unsigned int AddTask(CString const& strUrl, CString const& strLocalFile, HWND hWnd);
    // The same with a callback, null for none.
    unsigned int AddTask(CString const& strUrl, CString const& strLocalFile, KXDownloadCallback pfnCallback,
                         unsigned int uUserParam);

    // Whether the worker serves tasks: false once one has failed or the library unloads, in a fork, and where
    // no thread could be started. Any thread.
    bool IsRunning() const;
    // The URL of the task that ended the worker and why it failed, as in "http://host/a: the file can't be
    // opened"; empty where none did. It is there before IsRunning gives false. Any thread.
    CString GetLastFailure() const;

protected:
    // Starts the worker; ends it, cutting the running task short.
    CKXHttpDownloadMgr();
    ~CKXHttpDownloadMgr();

    // Start a worker, unless one runs. After a stop it ends at once.
    void Initialize() { StartDownload(); }
    void StartDownload();
    // Asks the worker to stop and waits for its end.
    void StopDownload();
    void Uninitialize();
    // Takes the oldest task; null without one. The caller's to delete.
    Task* GetNextTask();
    // Frees all tasks that wait.
    void ReleaseTasks();
    void NotifyOrCallback(unsigned int uCode, Task* pTask);

    // The thread's entry: runs the worker of the object that it gets.
    static unsigned DownloadFunc(void* pParam);
    // The worker: 0 at its end, (unsigned)-1 after a task that failed other than by its file not opening.
    unsigned __DownloadFunc(); // NOLINT(bugprone-reserved-identifier): its given name

private:
    enum class Outcome
    {
        Complete,
        Stopped,
        NoFile,
        Failed,
    };

    unsigned int Queue(std::unique_ptr<Task> task);
    std::unique_ptr<Task> WaitForTask();
    Outcome Run(Task& task, CFile& file) noexcept;
    void NoteFailure(const Task& task, const char* pszReason) noexcept;
    void NoteFailure(const Task& task, const CException& exception) noexcept;
    Outcome Download(Task& task, CFile& file);
    bool Transfer(Task& task, CHttpFile& http, CFile& file);
    int ReadBlock(CHttpFile& http, char* pBlock, std::size_t cbBlock) const;
    bool IsStopped() const noexcept { return m_bStop != 0; }
    bool IsOwnProcess() const;

    HANDLE m_hThread = nullptr;
    HANDLE m_hWakeEvent = nullptr;
    std::atomic<int> m_bStop{0};
    std::atomic<bool> m_bRunning{false};
    std::list<Task*> m_listTask KX_GUARDED_BY(m_lockTask);
    CString m_strFailure KX_GUARDED_BY(m_lockTask);
    mutable CKXCritSection m_lockTask;
    std::unique_ptr<CInternetSession> m_pSession; // the worker's; others cancel it at most
    DWORD m_dwProcess = 0;                        // whose threads they are
    std::atomic<DWORD> m_dwWorker{0};
};
