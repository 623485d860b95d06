#include "platform/http/curl/Session.h"

#include "platform/PipeSignal.h"
#include "platform/http/curl/Options.h"
#include "platform/http/curl/Transfer.h"
#include "platform/module/Door.h"

#include <algorithm>
#include <chrono>

namespace {

void Initialize(unsigned long dwContext)
{
    static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (code != CURLE_OK) kx::http::curl::Throw(code, dwContext);
}

} // namespace

namespace kx::http::curl {

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
