#include "LocalServer.h"

#include <algorithm>

client::LocalServer::LocalServer()
{
    AddHandlers();
    m_nPort = m_http.bind_to_any_port("127.0.0.1");
    m_thread = std::thread([this] { m_http.listen_after_bind(); });
    while (!m_http.is_running())
        std::this_thread::yield();
}

client::LocalServer::~LocalServer()
{
    m_http.stop();
    m_thread.join();
}

void client::LocalServer::AddHandlers()
{
    m_http.set_tcp_nodelay(true);
    m_http.set_keep_alive_timeout(1); // second: for so long its end waits for a connection that is idle
    m_http.Get("/lesson", [](const httplib::Request&, httplib::Response& response) {
        const auto send = [](std::size_t, std::size_t nLeft, httplib::DataSink& sink) {
            static const std::string piece(4096, 'w');
            return sink.write(piece.data(), std::min(nLeft, piece.size()));
        };
        response.set_content_provider(kLessonSize, "application/octet-stream", send);
    });
    m_http.Get("/report", [this](const httplib::Request& request, httplib::Response&) {
        const std::lock_guard lock(m_lock);
        m_reports.push_back(request.target);
        m_changed.notify_all();
    });
}

CString client::LocalServer::Url(const char* pszPath) const
{
    CString strUrl;
    strUrl.Format("http://127.0.0.1:%d%s", m_nPort, pszPath);
    return strUrl;
}

std::vector<std::string> client::LocalServer::AwaitReports(std::size_t nCount)
{
    std::unique_lock lock(m_lock);
    m_changed.wait(lock, [&] { return m_reports.size() >= nCount; });
    return m_reports;
}
