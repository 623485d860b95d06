#include "KXLogSys.h"

#include "KXAutoLock.h"
#include "core/LogLine.h"
#include "platform/Debug.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <new>
#include <utility>

CKXLogSys* CKXLogSys::s_pInstance = nullptr;

namespace {

// Nodes with their buffers go round between who pushes and the writer, as neither the heap's lock nor its
// memory is then touched for a line: so many are spare at least before the writer frees any, it hands so many
// back at a time, and a longer line's buffer is freed.
constexpr std::size_t SPARE_LINES = 4096;
constexpr std::size_t SPENT_LINES = 256;
constexpr int SPARE_LENGTH = 1024;

// What can't be written, for a full disk or a lack of memory, is lost, and the writer goes on.
template <class Step>
void Try(Step step) noexcept
{
    try {
        step();
    } catch (CException* pException) {
        pException->Delete();
    } catch (const std::bad_alloc&) {
    }
}

} // namespace

CKXLogSys* CKXLogSys::GetSingletonPtr()
{
    if (!s_pInstance)
        s_pInstance = new (std::nothrow) CKXLogSys; // owned by s_auto_ptr from its constructor on
    return s_pInstance;
}

CKXLogSys::CKXLogSys()
{
    s_auto_ptr.reset(this);
    OutputDebugStringA("CKXLogSys Construction!\n");
}

CKXLogSys::~CKXLogSys()
{
    OutputDebugStringA("CKXLogSys Deconstruction!\n");
    if (m_hThread) Uninitialize(); // a writer left running must not outlive what it works on
}

int CKXLogSys::Initialize(CString const& strFilePath)
{
    if (m_hWakeEvent) return 0;
    if (!m_fileLog.Open(strFilePath, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite)) return 0;
    m_hStopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE hWakeEvent = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    {
        const CKXAutoLock lock(&m_lockLog); // lines may be pushed meanwhile
        m_hWakeEvent = hWakeEvent;
    }
    StartThread();
    return 1;
}

void CKXLogSys::Uninitialize()
{
    StopThread();
    for (HANDLE* pEvent : {&m_hWakeEvent, &m_hStopEvent})
        if (HANDLE hEvent = std::exchange(*pEvent, nullptr)) CloseHandle(hEvent);
    Try([this] { m_fileLog.Close(); });
}

int CKXLogSys::StartThread()
{
    if (m_hThread) return 1;
    m_hThread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, WriteLogThread, this, 0, nullptr));
    m_dwProcess = GetCurrentProcessId();
    return 1;
}

int CKXLogSys::StopThread()
{
    if (!m_hThread) return 1;
    if (m_dwProcess != GetCurrentProcessId()) { // a fork has neither the thread nor its lines
        CloseHandle(std::exchange(m_hThread, nullptr));
        m_fileLog.Abort();
        return 1;
    }
    SetEvent(m_hStopEvent); // first, so that the writer, once awake, finds it
    SetEvent(m_hWakeEvent);
    WaitForSingleObject(m_hThread, INFINITE);
    CloseHandle(std::exchange(m_hThread, nullptr));
    return 1;
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

// What takes time is done before the lock: the line is formatted, and its node allocated if none was spare.
void CKXLogSys::PushLine(const kx::log::Line& line)
{
    if (PushIntoSpare(line)) return;
    std::list<CString> node(1);
    line.CopyTo(node.front());
    const CKXAutoLock lock(&m_lockLog);
    m_listLog.splice(m_listLog.end(), node);
    SetEvent(m_hWakeEvent);
}

bool CKXLogSys::PushIntoSpare(const kx::log::Line& line)
{
    const CKXAutoLock lock(&m_lockLog);
    if (m_listSpare.empty()) return false;
    line.CopyTo(m_listSpare.front());
    m_listLog.splice(m_listLog.end(), m_listSpare, m_listSpare.begin());
    SetEvent(m_hWakeEvent);
    return true;
}

int CKXLogSys::GetNextLog(CString& strLog)
{
    if (m_listTaken.empty() || m_listSpent.size() >= SPENT_LINES) Exchange();
    if (m_listTaken.empty()) return 0;
    if (strLog.GetLength() > SPARE_LENGTH) strLog.Empty();
    strLog = std::move(m_listTaken.front()); // and the node has the buffer of the line before
    m_listSpent.splice(m_listSpent.begin(), m_listTaken, m_listTaken.begin());
    return 1;
}

// Takes over the queue, once the part taken before is written, for the nodes that are spent.
void CKXLogSys::Exchange()
{
    {
        const CKXAutoLock lock(&m_lockLog);
        if (m_listTaken.empty()) m_listTaken.swap(m_listLog);
        if (m_listSpare.size() < SPARE_LINES) m_listSpare.splice(m_listSpare.begin(), m_listSpent);
    }
    m_listSpent.clear();
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
        while (!isStopped() && GetNextLog(strLine))
            Try([&] { m_fileLog.WriteString(strLine); });
        Try([this] { m_fileLog.Flush(); });
        if (isStopped()) break;
    }
    GiveBack();
    return 0;
}

// What was taken but not written goes back to the head of the queue, where a later start finds it.
void CKXLogSys::GiveBack()
{
    {
        const CKXAutoLock lock(&m_lockLog);
        m_listLog.splice(m_listLog.begin(), m_listTaken);
        m_listSpent.splice(m_listSpent.begin(), m_listSpare);
    }
    m_listSpent.clear();
}
