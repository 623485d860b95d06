#pragma once

#include "platform/http/curl/Session.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace kx::http::curl {

// One file on its way: turns what libcurl pushes into what its reader pulls.
class Transfer final : public http::Transfer
{
public:
    // How much of the body is held ahead of the reader, at most.
    static constexpr std::size_t kAhead = 64 * 1024;

    // Throws what CInternetSession::OpenURL does.
    Transfer(std::shared_ptr<Session> session, const char* pszUrl, unsigned long dwContext);
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() override;

    // Waits for the headers that count.
    void Open();
    std::size_t Read(void* pBuf, std::size_t nCount) override;
    std::optional<std::uint64_t> ContentLength() const noexcept override;

    CURL* Handle() const noexcept { return m_handle->easy.get(); }
    unsigned long Context() const noexcept { return m_dwContext; }
    void OnEnd(CURLcode result) noexcept { m_result = result; }
    // The session closes: ends it, and lets later reads fail.
    void Abandon() noexcept;

    // libcurl's callbacks; the last argument is the transfer.
    static std::size_t OnHeader(char* pch, std::size_t nSize, std::size_t nCount, void* pTransfer);
    static std::size_t OnBody(char* pch, std::size_t nSize, std::size_t nCount, void* pTransfer);

private:
    static constexpr std::size_t kMaxHeaders = 256 * 1024;
    static constexpr std::chrono::seconds kSilence{60};

    template <class Ready>
    void DriveUntil(Ready ready);
    void Resume();
    bool TakeHeader(std::string_view line) noexcept;
    [[noreturn]] void ThrowResult() const;

    const std::shared_ptr<Session> m_session;
    const unsigned long m_dwContext;
    std::optional<TransferHandle> m_handle; // none once abandoned
    std::array<char, CURL_ERROR_SIZE> m_text{};
    std::optional<CURLcode> m_result; // once it has ended
    time::Moment m_heard{};           // when the server last sent something, or was first waited for
    std::size_t m_nHeaders = 0;
    bool m_bMoved = false;  // the headers that are arriving name another place
    bool m_bOpen = false;   // the headers that count are there
    bool m_bPaused = false; // something waits for room in the buffer
};

} // namespace kx::http::curl
