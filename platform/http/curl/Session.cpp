#include "platform/http/curl/Session.h"

#include "platform/PipeSignal.h"
#include "platform/http/curl/Transfer.h"
#include "platform/module/Door.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

DWORD ErrorOf(CURLcode code)
{
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return ERROR_INTERNET_TIMEOUT;
    case CURLE_URL_MALFORMAT:
        return ERROR_INTERNET_INVALID_URL;
    case CURLE_UNSUPPORTED_PROTOCOL: // a redirect's: a URL's own scheme is looked at before
    case CURLE_TOO_MANY_REDIRECTS:
        return ERROR_HTTP_REDIRECT_FAILED;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return ERROR_INTERNET_NAME_NOT_RESOLVED;
    case CURLE_COULDNT_CONNECT:
        return ERROR_INTERNET_CANNOT_CONNECT;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
        return ERROR_INTERNET_CONNECTION_ABORTED;
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return ERROR_INTERNET_CONNECTION_RESET;
    case CURLE_PEER_FAILED_VERIFICATION:
        return ERROR_INTERNET_INVALID_CA;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
        return ERROR_INTERNET_SECURITY_CHANNEL_ERROR;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WRITE_ERROR: // the callbacks here refuse headers alone
        return ERROR_HTTP_INVALID_SERVER_RESPONSE;
    default:
        return ERROR_INTERNET_INTERNAL_ERROR;
    }
}

} // namespace

void kx::http::curl::Throw(CURLcode code, unsigned long dwContext, const char* pszText)
{
    if (code == CURLE_OUT_OF_MEMORY) AfxThrowMemoryException();
    Throw(ErrorOf(code), dwContext, pszText && *pszText ? pszText : curl_easy_strerror(code));
}

void kx::http::curl::Throw(CURLMcode code, unsigned long dwContext)
{
    if (code == CURLM_OUT_OF_MEMORY) AfxThrowMemoryException();
    Throw(ERROR_INTERNET_INTERNAL_ERROR, dwContext, curl_multi_strerror(code));
}

void kx::http::curl::Throw(DWORD dwError, unsigned long dwContext, const char* pszText)
try {
    throw new CInternetException(dwError, dwContext, pszText);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

namespace kx::http::curl {

namespace {

void Initialize(unsigned long dwContext)
{
    static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (code != CURLE_OK) Throw(code, dwContext);
}

const char* Setting(const char* pszName)
{
    const char* pszValue = secure_getenv(pszName);
    return pszValue && *pszValue ? pszValue : nullptr;
}

void SetAuthorities(CURL* easy)
{
    const char* pszBundle = Setting("CURL_CA_BUNDLE");
    if (const char* pszFile = pszBundle ? pszBundle : Setting("SSL_CERT_FILE"))
        Set(easy, CURLOPT_CAINFO, pszFile);
    if (const char* pszDir = pszBundle ? nullptr : Setting("SSL_CERT_DIR")) Set(easy, CURLOPT_CAPATH, pszDir);
}

// Makes a handle with what all transfers have in common.
Easy MakeEasy(const char* pszAgent, bool bProxies)
{
    Easy owner(curl_easy_init());
    CURL* const easy = owner.get();
    if (!easy) AfxThrowMemoryException();
    if (*pszAgent) Set(easy, CURLOPT_USERAGENT, pszAgent);
    if (!bProxies) Set(easy, CURLOPT_PROXY, "");
    SetAuthorities(easy);
    Set(easy, CURLOPT_FOLLOWLOCATION, 1L);
    Set(easy, CURLOPT_MAXREDIRS, 10L);
    Set(easy, CURLOPT_PATH_AS_IS, 1L);
    Set(easy, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    Set(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(easy, CURLOPT_NOSIGNAL, 1L);
    Set(easy, CURLOPT_QUICK_EXIT, 1L); // a name server that is silent must not hold up Close
    Set(easy, CURLOPT_BUFFERSIZE, static_cast<long>(Transfer::kAhead));
    Set(easy, CURLOPT_HEADERFUNCTION, Transfer::OnHeader);
    Set(easy, CURLOPT_WRITEFUNCTION, Transfer::OnBody);
    return owner;
}

} // namespace

Session::Session(const char* pszAgent, bool bProxies, unsigned long dwContext)
    : m_agent(pszAgent ? pszAgent : ""), m_bProxies(bProxies)
{
    Initialize(dwContext);
    m_multi.reset(curl_multi_init());
    if (!m_multi) AfxThrowMemoryException();
    const sync::MutexLock lock(m_lock);
    m_wakeable = m_multi.get();
}

std::unique_ptr<http::Transfer> Session::Open(const char* pszUrl, unsigned long dwContext)
{
    auto transfer = std::make_unique<Transfer>(shared_from_this(), pszUrl, dwContext);
    transfer->Open();
    return transfer;
}

void Session::CheckOpen(unsigned long dwContext) const
{
    if (!m_multi) Throw(ERROR_INTERNET_INCORRECT_HANDLE_STATE, dwContext, "The session is closed.");
}

TransferHandle Session::Take(unsigned long dwContext)
{
    CheckOpen(dwContext);
    if (!m_idle) return {MakeEasy(m_agent.c_str(), m_bProxies), BlockBuffer(Transfer::kAhead)};
    TransferHandle handle = std::move(*m_idle);
    m_idle.reset();
    return handle;
}

void Session::GiveBack(TransferHandle handle) noexcept
{
    if (!m_multi || m_idle) return;
    handle.buffer.Clear();
    m_idle.emplace(std::move(handle));
}

void Session::Add(Transfer& transfer)
{
    m_transfers.push_back(&transfer);
    if (const CURLMcode code = curl_multi_add_handle(m_multi.get(), transfer.Handle()); code != CURLM_OK)
        Throw(code, transfer.Context());
}

void Session::Remove(Transfer& transfer) noexcept
{
    const NoPipeSignal guard;
    if (m_multi) curl_multi_remove_handle(m_multi.get(), transfer.Handle());
    std::erase(m_transfers, &transfer);
}

void Session::Perform(unsigned long dwContext)
{
    CheckOpen(dwContext);
    int nRunning = 0;
    const CURLMcode code = curl_multi_perform(m_multi.get(), &nRunning);
    TellEnded();
    if (code != CURLM_OK) Throw(code, dwContext);
}

void Session::TellEnded() noexcept
{
    int nLeft = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &nLeft)) {
        if (message->msg != CURLMSG_DONE) continue;
        const CURLcode result = message->data.result; // the message is gone with the next call
        if (auto* transfer = Get<Transfer*>(message->easy_handle, CURLINFO_PRIVATE)) transfer->OnEnd(result);
    }
}

void Session::Wait(time::Moment deadline) noexcept
{
    using std::chrono::milliseconds;
    // The host moves a virtual clock without telling a poll, which therefore looks up now and then.
    const auto longest = time::IsVirtual() ? milliseconds(10) : milliseconds(60'000);
    const auto left = std::chrono::ceil<milliseconds>(deadline - time::Now());
    const auto nTime = std::clamp(left, milliseconds(0), longest).count();
    curl_multi_poll(m_multi.get(), nullptr, 0, static_cast<int>(nTime), nullptr);
}

void Session::Close() noexcept
{
    const NoPipeSignal guard;
    while (!m_transfers.empty())
        m_transfers.back()->Abandon();
    m_idle.reset();
    {
        const sync::MutexLock lock(m_lock);
        m_wakeable = nullptr;
    }
    m_multi.reset();
}

void Session::Cancel() noexcept
{
    m_bCancelled = true;
    const sync::MutexLock lock(m_lock);
    if (m_wakeable) curl_multi_wakeup(m_wakeable);
}

namespace {

constexpr Functions kFunctions{
    [](const char* pszAgent, bool bProxies, unsigned long dwContext) -> std::shared_ptr<http::Session> {
        return std::make_shared<Session>(pszAgent, bProxies, dwContext);
    }};

} // namespace

} // namespace kx::http::curl

KX_MODULE_ENTRY(http, kx::http::curl::kFunctions)
