#include "KXLogSys.h"

#include "KXAutoLock.h"
#include "core/LogLine.h"
#include "core/LogQueue.h"
#include "internal/Debug.h"
#include "internal/Guard.h"
#include "platform/Clock.h"
#include "platform/Debug.h"
#include "platform/Exception.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>
#include <utility>

CKXLogSys* CKXLogSys::s_pInstance = nullptr;

namespace {

// The writer hands lines over when it has this many bytes of them, which with a usual line fit the file's
// buffer of 64 KiB and so are one call of the system.
constexpr std::uint64_t BATCH_BYTES = 56 * 1024;
// The writer's own copy of a line gives a longer buffer back.
constexpr int KEPT_LENGTH = 1024;

} // namespace

// A thread that waits in Flush. In the log's list, and then only used under its lock, until it is answered.
struct CKXLogSys::FlushWait
{
    std::uint64_t nLines = 0; // how many had been pushed by then
    HANDLE hEvent = nullptr;  // set when they are handed over, or the log stops
    bool bDone = false;
    bool bLost = false; // a line of them couldn't be written
    FlushWait* pNext = nullptr;
};

CKXLogSys* CKXLogSys::GetSingletonPtr()
{
    if (!s_pInstance)
        s_pInstance = new (std::nothrow) CKXLogSys; // owned by s_auto_ptr from its constructor on
    return s_pInstance;
}

CKXLogSys::CKXLogSys() : m_listLog(kx::core::Queue::Get())
{
    s_auto_ptr.reset(this);
    kx::debug::SetLogRecord(&m_listLog.GetRecord());
    KXAtFork(BeforeFork, AfterFork);
    OutputDebugStringA("CKXLogSys Construction!\n");
}

CKXLogSys::~CKXLogSys()
{
    OutputDebugStringA("CKXLogSys Deconstruction!\n");
    if (m_hWakeEvent) Uninitialize(); // a writer left running must not outlive what it works on
}

int CKXLogSys::Initialize(CString const& strFilePath)
{
    constexpr unsigned nFlags = CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite;
    if (m_hWakeEvent) return 0;
    if (!kx::Guard([&] { return m_fileLog.Open(strFilePath, nFlags); })) {
        kx::debug::Tell("log", "%s can't be opened; lines wait until there is a log",
                        strFilePath.GetString());
        return 0;
    }
    const HANDLE hWakeEvent = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    m_hStopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (!hWakeEvent || !m_hStopEvent) {
        if (hWakeEvent) CloseHandle(hWakeEvent);
        Uninitialize();
        return 0;
    }
    {
        const CKXAutoLock lock(&m_lockLog); // lines may be pushed meanwhile
        m_hWakeEvent = hWakeEvent;
        m_bWoken = false;
        m_listLog.SetFile(GetCurrentProcessId(), m_fileLog.GetDescriptor());
    }
    StartThread();
    return 1;
}

void CKXLogSys::Uninitialize()
{
    StopThread();
    for (HANDLE* pEvent : {&m_hWakeEvent, &m_hStopEvent})
        if (HANDLE hEvent = std::exchange(*pEvent, nullptr)) CloseHandle(hEvent);
    {
        const CKXAutoLock lock(&m_lockLog);
        m_listLog.SetFile(0, -1);
    }
    kx::Guard([this] { m_fileLog.Close(); });
}

int CKXLogSys::StartThread()
{
    if (m_hThread) return 1;
    m_hThread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, WriteLogThread, this, 0, nullptr));
    const CKXAutoLock lock(&m_lockLog);
    m_bRunning = m_hThread != nullptr;
    return 1;
}

int CKXLogSys::StopThread()
{
    if (!m_hThread) return 1;
    {
        const CKXAutoLock lock(&m_lockLog);
        m_bRunning = false;
    }
    SetEvent(m_hStopEvent); // first, so that the writer, once awake, finds it
    SetEvent(m_hWakeEvent);
    WaitForSingleObject(m_hThread, INFINITE);
    CloseHandle(std::exchange(m_hThread, nullptr));
    EndFlushes();
    return 1;
}

// A fork comes when nobody changes the queue.
void CKXLogSys::BeforeFork() noexcept KX_NO_LOCK_ANALYSIS
{
    if (s_auto_ptr) s_auto_ptr->m_lockLog.Lock();
}

void CKXLogSys::AfterFork(bool bChild) noexcept KX_NO_LOCK_ANALYSIS
{
    if (!s_auto_ptr) return;
    s_auto_ptr->m_lockLog.UnLock();
    if (bChild) s_auto_ptr->StartAnew();
}

// A fork's child has no writer, and lines and file are its parent's. The lock is a new one: the old one may
// be promised to a thread that waited for it in the parent.
void CKXLogSys::StartAnew() noexcept KX_NO_LOCK_ANALYSIS
{
    std::destroy_at(&m_lockLog);
    std::construct_at(&m_lockLog);
    kx::core::Queue::Free(m_listLog.Forget());
    m_bRunning = m_bWoken = false;
    m_pFlushes = nullptr; // on stacks that aren't there any more
    for (HANDLE* pHandle : {&m_hThread, &m_hWakeEvent, &m_hStopEvent})
        if (HANDLE hObject = std::exchange(*pHandle, nullptr)) CloseHandle(hObject);
    m_fileLog.Abort();
}

int CKXLogSys::Flush(unsigned long dwMilliseconds)
{
    FlushWait wait;
    wait.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (!wait.hEvent) return 0;
    {
        const CKXAutoLock lock(&m_lockLog);
        wait.nLines = m_listLog.Pushed();
        wait.bDone = m_bRunning && wait.nLines == m_listLog.HandedOver();
        if (m_bRunning && !wait.bDone) {
            wait.pNext = std::exchange(m_pFlushes, &wait);
            m_bWoken = true;
            SetEvent(m_hWakeEvent); // lines from before the start wait for it
        } else {
            SetEvent(wait.hEvent);
        }
    }
    constexpr unsigned long dwForever = INFINITE;
    WaitForSingleObject(wait.hEvent,
                        static_cast<DWORD>(dwMilliseconds < dwForever ? dwMilliseconds : dwForever));
    {
        const CKXAutoLock lock(&m_lockLog); // so that who sets the event has left it
        for (FlushWait** ppNext = &m_pFlushes; *ppNext; ppNext = &(*ppNext)->pNext) {
            if (*ppNext != &wait) continue;
            *ppNext = wait.pNext;
            break;
        }
    }
    CloseHandle(wait.hEvent);
    return wait.bDone && !wait.bLost;
}

// The log has stopped: whoever waits for it learns that.
void CKXLogSys::EndFlushes()
{
    const CKXAutoLock lock(&m_lockLog);
    while (FlushWait* pWait = m_pFlushes) {
        m_pFlushes = pWait->pNext;
        SetEvent(pWait->hEvent);
    }
}

void CKXLogSys::PushLog(LogLevel level, CString const& strLog)
{
    if (level < 1) return;
    PushLine({level, strLog.View()});
}

void CKXLogSys::PushLogEx(LogLevel level, char const* format, ...)
{
    if (level < 1 || !format) return;
    std::array<char, 1024> fixed;
    va_list args;
    va_list again;
    va_start(args, format);
    va_copy(again, args);
    const int length = std::vsnprintf(fixed.data(), fixed.size(), format, args);
    if (length < 0) {
        PushLine({level, format});
    } else if (static_cast<std::size_t>(length) < fixed.size()) {
        PushLine({level, {fixed.data(), static_cast<std::size_t>(length)}});
    } else {
        CString strMessage;
        strMessage.FormatV(format, again);
        PushLine({level, strMessage.View()});
    }
    va_end(again);
    va_end(args);
}

void CKXLogSys::PushLine(const kx::core::Line& line)
try {
    {
        const CKXAutoLock lock(&m_lockLog);
        m_listLog.Push(line.View());
        if (m_hWakeEvent && !std::exchange(m_bWoken, true)) SetEvent(m_hWakeEvent);
    }
    AwaitEnd();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

// In a process whose queue the crash reporter has read no push comes back, as its line would be lost, and
// nothing is written any more. Looked at behind the insertion: a line that was queued before is among those
// that were read.
void CKXLogSys::AwaitEnd() const
{
    while (Unguarded().IsClosed())
        Sleep(INFINITE);
}

int CKXLogSys::GetNextLog(CString& strLog)
{
    std::string_view line;
    if (!Unguarded().Next(line)) {
        const CKXAutoLock lock(&m_lockLog);
        if (!m_listLog.Look()) m_bWoken = false; // the next line wakes the writer
        if (!m_listLog.Next(line)) return 0;
    }
    if (strLog.GetLength() > KEPT_LENGTH) strLog.Empty();
    const auto nLength = static_cast<int>(line.size());
    line.copy(strLog.GetBuffer(nLength), line.size());
    strLog.ReleaseBuffer(nLength);
    return 1;
}

unsigned CKXLogSys::WriteLogThread(void* pParam)
{
    return pParam ? static_cast<CKXLogSys*>(pParam)->WriteLogThreadFunc() : 0;
}

unsigned CKXLogSys::WriteLogThreadFunc()
{
    const auto isStopped = [this] { return WaitForSingleObject(m_hStopEvent, 0) == WAIT_OBJECT_0; };
    while (WaitForSingleObject(m_hWakeEvent, INFINITE) == WAIT_OBJECT_0 && !isStopped()) {
        CString strLine;
        while (!isStopped() && WriteNext(strLine)) {
        }
        HandOver(false);
        if (isStopped()) break;
    }
    return 0;
}

// Writes the oldest line; false without one. A batch that has grown, or has failed, is handed over at once:
// its blocks are free for lines to come then.
bool CKXLogSys::WriteNext(CString& strLine)
{
    bool bLine = true;
    const bool bFirst = Unguarded().ReadBytes() == 0;
    const bool bWritten = kx::Guard([&] {
        bLine = GetNextLog(strLine) != 0;
        if (!bLine) return;
        if (bFirst && Unguarded().NeedsLineBreak()) m_fileLog.WriteString("\n");
        m_fileLog.WriteString(strLine);
    });
    if (!bWritten || Unguarded().ReadBytes() >= BATCH_BYTES) HandOver(!bWritten);
    return bLine;
}

// Gives the system what was taken off the queue, and tells who waits in Flush. How far it came where that
// fails, the file's length tells.
void CKXLogSys::HandOver(bool bFailed)
{
    if (Unguarded().ReadBytes() == 0) return;
    AwaitEnd();
    if (!kx::Guard([this] { m_fileLog.Flush(); })) bFailed = true;
    const std::uint64_t nLength = m_fileLog.GetPosition();
    kx::core::Block* pFreed = nullptr;
    {
        const CKXAutoLock lock(&m_lockLog);
        const auto written = bFailed ? m_listLog.WrittenIn(nLength) : kx::core::Queue::Written{};
        const std::uint64_t nFirstLost = m_listLog.HandedOver() + written.lines;
        pFreed = m_listLog.HandOver(nLength, written.bTorn);
        for (FlushWait** ppNext = &m_pFlushes; FlushWait* pWait = *ppNext;) {
            if (bFailed && nFirstLost < pWait->nLines) pWait->bLost = true;
            pWait->bDone = pWait->nLines <= m_listLog.HandedOver();
            if (!pWait->bDone) {
                ppNext = &pWait->pNext;
                continue;
            }
            *ppNext = pWait->pNext;
            SetEvent(pWait->hEvent);
        }
    }
    kx::core::Queue::Free(pFreed);
}
