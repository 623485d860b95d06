#include "platform/http/curl/Transfer.h"

#include "platform/PipeSignal.h"
#include "platform/text/CharWalk.h"

#include <memory>
#include <string>
#include <utility>

namespace kx::http::curl {

namespace {

struct FreeUrl
{
    void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
};
struct FreeText
{
    void operator()(char* psz) const noexcept { curl_free(psz); }
};

// An URL with its blanks and control characters percent-encoded, since neither a request line nor a host may
// hold them.
std::string ToWire(std::string_view url)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string wire;
    for (const char ch : url) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte > ' ' && byte != 0x7F)
            wire += ch;
        else
            wire.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return wire;
}

// Whether an URL may be fetched and is one that can be sent; throws CInternetException* if not. True for
// `https`.
bool CheckUrl(const char* pszUrl, unsigned long dwContext)
{
    const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
    if (!url) AfxThrowMemoryException();
    const CURLUcode code = pszUrl ? curl_url_set(url.get(), CURLUPART_URL, pszUrl, CURLU_NON_SUPPORT_SCHEME)
                                  : CURLUE_MALFORMED_INPUT;
    if (code == CURLUE_OUT_OF_MEMORY) AfxThrowMemoryException();
    if (code == CURLUE_BAD_SCHEME)
        Throw(ERROR_INTERNET_UNRECOGNIZED_SCHEME, dwContext, "The URL has no scheme.");
    if (code != CURLUE_OK) Throw(ERROR_INTERNET_INVALID_URL, dwContext, curl_url_strerror(code));

    char* pszScheme = nullptr;
    if (curl_url_get(url.get(), CURLUPART_SCHEME, &pszScheme, 0) != CURLUE_OK) AfxThrowMemoryException();
    const std::unique_ptr<char, FreeText> owner(pszScheme);
    const std::string_view scheme = pszScheme;
    if (scheme != "http" && scheme != "https")
        Throw(ERROR_INTERNET_UNRECOGNIZED_SCHEME, dwContext, "Only http and https are fetched.");
    return scheme == "https";
}

} // namespace

Transfer::Transfer(std::shared_ptr<Session> session, const char* pszUrl, unsigned long dwContext)
    : m_session(std::move(session)), m_dwContext(dwContext)
{
    const std::string url = ToWire(pszUrl ? pszUrl : "");
    const bool bSecure = CheckUrl(pszUrl ? url.c_str() : nullptr, dwContext);
    m_handle = m_session->Take(dwContext);
    CURL* const easy = Handle();
    Set(easy, CURLOPT_URL, url.c_str());
    Set(easy, CURLOPT_REDIR_PROTOCOLS_STR, bSecure ? "https" : "http,https");
    Set(easy, CURLOPT_PRIVATE, this);
    Set(easy, CURLOPT_HEADERDATA, this);
    Set(easy, CURLOPT_WRITEDATA, this);
    Set(easy, CURLOPT_ERRORBUFFER, m_text.data());
    try {
        m_session->Add(*this);
    } catch (...) {
        m_session->Remove(*this);
        throw;
    }
}

Transfer::~Transfer()
{
    if (!m_handle) return;
    m_session->Remove(*this);
    curl_easy_setopt(Handle(), CURLOPT_ERRORBUFFER, nullptr);
    m_session->GiveBack(std::move(*m_handle));
}

void Transfer::Abandon() noexcept
{
    m_session->Remove(*this);
    m_handle.reset();
}

void Transfer::Open()
{
    DriveUntil([this] { return m_bOpen || m_result; });
    if (!m_bOpen && *m_result != CURLE_OK) ThrowResult();
}

std::size_t Transfer::Read(void* pBuf, std::size_t nCount)
{
    if (nCount == 0) return 0;
    if (!m_handle) Throw(ERROR_INTERNET_INCORRECT_HANDLE_STATE, m_dwContext, "The session is closed.");
    BlockBuffer& buffer = m_handle->buffer;
    if (buffer.IsEmpty()) DriveUntil([&] { return !buffer.IsEmpty() || m_result; });
    if (!buffer.IsEmpty()) return buffer.Take(pBuf, nCount);
    if (*m_result != CURLE_OK) ThrowResult();
    return 0;
}

std::optional<std::uint64_t> Transfer::ContentLength() const noexcept
{
    if (!m_handle) return std::nullopt;
    curl_off_t nLength = -1;
    curl_easy_getinfo(Handle(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &nLength);
    if (nLength < 0) return std::nullopt;
    return static_cast<std::uint64_t>(nLength);
}

// Only who can't go on without waiting is told of a cancellation: what has arrived is delivered.
template <class Ready>
void Transfer::DriveUntil(Ready ready)
{
    const NoPipeSignal guard;
    m_heard = time::Now();
    while (!ready()) {
        if (m_bPaused) Resume();
        m_session->Perform(m_dwContext);
        if (ready()) return;
        if (m_session->IsCancelled())
            Throw(ERROR_INTERNET_OPERATION_CANCELLED, m_dwContext, "The operation was cancelled.");
        if (time::Now() >= m_heard + kSilence)
            Throw(ERROR_INTERNET_TIMEOUT, m_dwContext, "The server was silent for too long.");
        m_session->Wait(m_heard + kSilence);
    }
}

void Transfer::Resume()
{
    m_bPaused = false;
    if (const CURLcode code = curl_easy_pause(Handle(), CURLPAUSE_CONT); code != CURLE_OK) m_result = code;
}

void Transfer::ThrowResult() const
{
    // No HTTP what came, or a line longer than libcurl holds, which it takes for a lack of memory.
    const bool bForeign = *m_result == CURLE_UNSUPPORTED_PROTOCOL && !m_bMoved;
    const bool bTooLong = *m_result == CURLE_OUT_OF_MEMORY && m_nHeaders > 0 && !m_bOpen;
    Throw(bForeign || bTooLong ? CURLE_WEIRD_SERVER_REPLY : *m_result, m_dwContext, m_text.data());
}

std::size_t Transfer::OnHeader(char* pch, std::size_t nSize, std::size_t nCount, void* pTransfer)
{
    const std::string_view line(pch, nSize * nCount);
    return static_cast<Transfer*>(pTransfer)->TakeHeader(line) ? line.size() : 0;
}

bool Transfer::TakeHeader(std::string_view line) noexcept
{
    constexpr std::string_view location = "location:";
    m_heard = time::Now();
    m_nHeaders += line.size();
    if (m_nHeaders > kMaxHeaders) return false;
    if (line.starts_with("HTTP/")) {
        m_bMoved = false;
    } else if (text::CompareNoCase(line.substr(0, location.size()), location) == 0) {
        m_bMoved = !text::Trim(line.substr(location.size())).empty();
    } else if (text::Trim(line).empty()) {
        const long nStatus = Get<long>(Handle(), CURLINFO_RESPONSE_CODE);
        const bool bFollowed = nStatus / 100 == 3 && m_bMoved;
        if (nStatus >= 200 && !bFollowed) m_bOpen = true;
    }
    return true;
}

std::size_t Transfer::OnBody(char* pch, std::size_t nSize, std::size_t nCount, void* pTransfer)
{
    auto& self = *static_cast<Transfer*>(pTransfer);
    const std::string_view bytes(pch, nSize * nCount);
    self.m_bOpen = true;
    self.m_bPaused = !self.m_handle->buffer.Put(bytes);
    return self.m_bPaused ? CURL_WRITEFUNC_PAUSE : bytes.size();
}

} // namespace kx::http::curl
