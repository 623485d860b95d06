#pragma once

#include <KXCommonClass.h>
#include <condition_variable>
#include <httplib.h>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace client {

// The server that the sample downloads from and reports to: in this process, on 127.0.0.1 at a port that the
// system chooses.
class LocalServer
{
public:
    static constexpr std::size_t kLessonSize = 384 * 1024;

    // Runs until its end.
    LocalServer();
    LocalServer(const LocalServer&) = delete;
    LocalServer& operator=(const LocalServer&) = delete;
    ~LocalServer();

    // The lesson's URL, and that which reports are sent to.
    CString LessonUrl() const { return Url("/lesson"); }
    CString ReportUrl() const { return Url("/report"); }

    // Waits until that many reports have come: what they asked for, in order.
    std::vector<std::string> AwaitReports(std::size_t nCount);

private:
    CString Url(const char* pszPath) const;
    void AddHandlers();

    httplib::Server m_http;
    int m_nPort = 0;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<std::string> m_reports; // guarded by m_lock
    std::thread m_thread;
};

} // namespace client
