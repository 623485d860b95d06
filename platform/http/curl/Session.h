#pragma once

#include "include/platform/Internet.h"
#include "platform/http/Functions.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Clock.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kx::http::curl {

// Throw the framework's exception for what libcurl reports, with its text unless there is a better one.
[[noreturn]] void Throw(CURLcode code, unsigned long dwContext, const char* pszText = nullptr);
[[noreturn]] void Throw(CURLMcode code, unsigned long dwContext);

// For what this layer itself refuses.
[[noreturn]] void Throw(DWORD dwError, unsigned long dwContext, const char* pszText);

struct CloseEasy
{
    void operator()(CURL* easy) const noexcept { curl_easy_cleanup(easy); }
};
struct CloseMulti
{
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
};
using Easy = std::unique_ptr<CURL, CloseEasy>;
using Multi = std::unique_ptr<CURLM, CloseMulti>;

// Sets an option or throws for lack of memory.
template <class Value>
void Set(CURL* easy, CURLoption option, Value value)
{
    if (const CURLcode code = curl_easy_setopt(easy, option, value); code != CURLE_OK) Throw(code, 0);
}

// A fact about a transfer; `T()` where there is none.
template <class T>
T Get(CURL* easy, CURLINFO info) noexcept
{
    T value{};
    curl_easy_getinfo(easy, info, &value);
    return value;
}

class Transfer;

// A buffer of fixed size that is filled at its end and emptied from its front.
class BlockBuffer
{
public:
    explicit BlockBuffer(std::size_t nSize)
        : m_block(std::make_unique_for_overwrite<char[]>(nSize)), m_nSize(nSize)
    {
    }

    bool IsEmpty() const noexcept { return m_nBegin == m_nEnd; }
    void Clear() noexcept { m_nBegin = m_nEnd = 0; }

    // Takes all of it, or nothing if it doesn't fit.
    bool Put(std::string_view bytes) noexcept
    {
        if (IsEmpty()) Clear();
        if (bytes.size() > m_nSize - m_nEnd) return false;
        std::memcpy(m_block.get() + m_nEnd, bytes.data(), bytes.size());
        m_nEnd += bytes.size();
        return true;
    }

    // Moves up to `nCount` bytes out; how many.
    std::size_t Take(void* pBuf, std::size_t nCount) noexcept
    {
        const std::size_t n = std::min(nCount, m_nEnd - m_nBegin);
        std::memcpy(pBuf, m_block.get() + m_nBegin, n);
        m_nBegin += n;
        return n;
    }

private:
    std::unique_ptr<char[]> m_block;
    std::size_t m_nSize;
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
};

// The handles that a transfer works with. One is kept for the next transfer, with its connections in the
// session.
struct TransferHandle
{
    Easy easy;
    BlockBuffer buffer;
};

// The connections of a CInternetSession and the transfers on them. All of them move on whenever one is
// waited for; what comes for one that nobody reads stays with the server once its buffer is full.
class Session final : public http::Session, public std::enable_shared_from_this<Session>
{
public:
    Session(const char* pszAgent, bool bProxies, unsigned long dwContext);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() override { Close(); }

    std::unique_ptr<http::Transfer> Open(const char* pszUrl, unsigned long dwContext) override;
    void Close() noexcept override;
    void Cancel() noexcept override;

    // Throw ERROR_INTERNET_INCORRECT_HANDLE_STATE once it is closed.
    TransferHandle Take(unsigned long dwContext);
    void Add(Transfer& transfer);

    // The transfer's end, whether it came to one or not.
    void Remove(Transfer& transfer) noexcept;
    void GiveBack(TransferHandle handle) noexcept;

    // Does what can be done without waiting, and tells those transfers that have ended.
    void Perform(unsigned long dwContext);
    // Waits until there is something to do, the clock has come to the deadline, or Cancel; also returns for
    // no reason.
    void Wait(time::Moment deadline) noexcept;

    bool IsCancelled() const noexcept { return m_bCancelled; }

private:
    void TellEnded() noexcept;
    void CheckOpen(unsigned long dwContext) const;

    const std::string m_agent;
    const bool m_bProxies;
    sync::Mutex m_lock;                                // nothing else is locked while it is held
    CURLM* m_wakeable KX_GUARDED_BY(m_lock) = nullptr; // what Cancel, on any thread, wakes
    Multi m_multi;                                     // null once closed
    std::optional<TransferHandle> m_idle;
    std::vector<Transfer*> m_transfers;
    std::atomic<bool> m_bCancelled{false};
};

} // namespace kx::http::curl
