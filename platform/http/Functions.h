#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

// The functions of the HTTP module. Failures are the exceptions of CInternetSession.

namespace kx::http {

// One file on its way. It may outlive its session, and then fails.
class Transfer
{
public:
    virtual ~Transfer() = default;
    // Waits for the next bytes of the body: how many, 0 at its end.
    virtual std::size_t Read(void* pBuf, std::size_t nCount) = 0;
    virtual std::optional<std::uint64_t> ContentLength() const noexcept = 0;
};

// The connections of a CInternetSession. Used by one thread at a time, but for Cancel.
class Session
{
public:
    virtual ~Session() = default;
    // Waits for the headers that count.
    virtual std::unique_ptr<Transfer> Open(const char* pszUrl, unsigned long dwContext) = 0;
    virtual void Close() noexcept = 0;
    virtual void Cancel() noexcept = 0;
};

struct Functions
{
    std::shared_ptr<Session> (*makeSession)(const char* pszAgent, bool bProxies, unsigned long dwContext);
};

} // namespace kx::http
