#pragma once

// Fetching over HTTP and HTTPS, pulled block by block. A session keeps its connections between files, so one
// server is reached over one connection for as long as that keeps open.
//
// Only `http` and `https` are fetched, by GET in HTTP/1.1. Redirects are followed, at most ten
// and only to those two; from an `https` URL not to `http`. Servers' certificates are checked against the
// system's, or against the file or directory that CURL_CA_BUNDLE, SSL_CERT_FILE or SSL_CERT_DIR names.
// Proxies come from the environment (`http_proxy`, `https_proxy`, `all_proxy`, `no_proxy`). A user's name and
// password in a URL go to its host alone, not to another one that it redirects to. No compression is asked
// for and none undone; no cookies are kept. The status isn't looked at: an error page is a body like any
// other.
//
// Limits: a server that sends nothing for 60 seconds (looking up its name and connecting included) is a
// failure, and so are over 256 KiB of headers, and a line of over 100 KiB (libcurl's own limit). A file holds
// 64 KiB of the body ahead of its reader, and asks the server for more only while it is read.
//
// A session and its files are used by one thread at a time, but for Cancel. Failures are exceptions:
// CInternetException*, or CMemoryException* for lack of memory.

#include "../KXExport.h"
#include "Exception.h"
#include "String.h"
#include "Types.h"

#include <memory>

inline constexpr DWORD INTERNET_OPEN_TYPE_PRECONFIG = 0; // as the environment says
inline constexpr DWORD INTERNET_OPEN_TYPE_DIRECT = 1;    // without a proxy
// How a URL is opened, and what an answer is asked for.
inline constexpr DWORD INTERNET_FLAG_TRANSFER_ASCII = 1;
inline constexpr DWORD HTTP_QUERY_CONTENT_LENGTH = 5;

// Why a transfer failed: the number in a CInternetException.
inline constexpr DWORD ERROR_INTERNET_TIMEOUT = 12002;
inline constexpr DWORD ERROR_INTERNET_INTERNAL_ERROR = 12004;
inline constexpr DWORD ERROR_INTERNET_INVALID_URL = 12005;
inline constexpr DWORD ERROR_INTERNET_UNRECOGNIZED_SCHEME = 12006;
inline constexpr DWORD ERROR_INTERNET_NAME_NOT_RESOLVED = 12007;
inline constexpr DWORD ERROR_INTERNET_OPERATION_CANCELLED = 12017;
inline constexpr DWORD ERROR_INTERNET_INCORRECT_HANDLE_STATE = 12019;
inline constexpr DWORD ERROR_INTERNET_CANNOT_CONNECT = 12029;
inline constexpr DWORD ERROR_INTERNET_CONNECTION_ABORTED = 12030;
inline constexpr DWORD ERROR_INTERNET_CONNECTION_RESET = 12031;
inline constexpr DWORD ERROR_INTERNET_INVALID_CA = 12045;
inline constexpr DWORD ERROR_HTTP_INVALID_SERVER_RESPONSE = 12152;
inline constexpr DWORD ERROR_HTTP_REDIRECT_FAILED = 12156;
inline constexpr DWORD ERROR_INTERNET_SECURITY_CHANNEL_ERROR = 12157;

// A failure of a session, a URL or a file: one of the numbers above, the context that OpenURL was
// given (the session's for a failure of its own), and a text for people.
class KX_API CInternetException : public CException
{
public:
    // Takes the number, the session's context and a text for people.
    explicit CInternetException(DWORD dwError, unsigned long dwContext = 0, const char* pszText = nullptr)
        : m_dwError(dwError), m_dwContext(dwContext), m_strText(pszText)
    {
    }

    int GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId = nullptr) const override;

    // The arguments that it was made with.
    DWORD m_dwError;
    unsigned long m_dwContext;
    CString m_strText;
};

namespace kx::http {
class Session;
class Transfer;
} // namespace kx::http

// The body that a URL names, while it arrives. Made by CInternetSession::OpenURL; who called that deletes it.
// It may outlive its session, and then fails.
class KX_API CHttpFile
{
public:
    // Made by CInternetSession.
    explicit CHttpFile(std::unique_ptr<kx::http::Transfer> transfer) noexcept;
    CHttpFile(const CHttpFile&) = delete;
    CHttpFile& operator=(const CHttpFile&) = delete;
    ~CHttpFile(); // closes

    // With HTTP_QUERY_CONTENT_LENGTH: the body's size in bytes, as the server announced it. Non-zero on
    // success; 0, with the number untouched, where it announced none, for any other level and after Close.
    int QueryInfo(DWORD dwInfoLevel, unsigned long& dwNumber) const;

    // Waits for the next bytes of the body and delivers up to `nCount` of them: how many, 0 at its end.
    // Throws when the connection ends before the announced size, on every other failure of it, and after
    // Close; what arrived before is delivered first.
    UINT Read(void* pBuf, UINT nCount);

    // Ends the transfer, complete or not. A complete one leaves its connection to the session's next file.
    void Close() noexcept;

private:
    std::unique_ptr<kx::http::Transfer> m_transfer; // null once closed
};

// Opens URLs, one after the other or several at once.
class KX_API CInternetSession
{
public:
    // `pszAgent` is the User-Agent header, null or empty for none. `dwContext` comes back in the
    // exception that this one throws. The access type is one of the two above, anything else throws
    // CInvalidArgException*; proxy, bypass list and flags are accepted and ignored. Throws for lack of
    // memory.
    explicit CInternetSession(const char* pszAgent = nullptr, unsigned long dwContext = 1,
                              DWORD dwAccessType = INTERNET_OPEN_TYPE_PRECONFIG,
                              const char* pszProxyName = nullptr, const char* pszProxyBypass = nullptr,
                              DWORD dwFlags = 0);
    CInternetSession(const CInternetSession&) = delete;
    CInternetSession& operator=(const CInternetSession&) = delete;
    ~CInternetSession(); // closes

    // Asks for a URL and waits until its headers are there; those of a redirect don't count. The URL goes out
    // as it is, so its maker encodes what means something else as it stands: a fragment (`#...`) is left out,
    // and blanks and control characters behind the host, and bytes above 127 in the path, are
    // percent-encoded. One without a scheme or with another one is refused. Flags are accepted and ignored;
    // further headers aren't offered, so `pszHeaders` is null, or CInvalidArgException* is thrown. Never
    // null. Without the library's module for HTTP it throws ERROR_INTERNET_INTERNAL_ERROR.
    CHttpFile* OpenURL(const char* pszURL, unsigned long dwContext = 1,
                       DWORD dwFlags = INTERNET_FLAG_TRANSFER_ASCII, const char* pszHeaders = nullptr,
                       DWORD dwHeadersLength = 0);

    // Ends all connections; open files and later calls of OpenURL fail with
    // ERROR_INTERNET_INCORRECT_HANDLE_STATE.
    // A look-up of a name that is under way isn't waited for: it ends by itself on a thread of the HTTP
    // library's, when the system's resolver gives up.
    void Close() noexcept;

    // Lets the call that is waiting for a server fail at once with ERROR_INTERNET_OPERATION_CANCELLED, and
    // every later one that would have to. Any thread, at any time of the session's life.
    void Cancel() noexcept;

private:
    std::shared_ptr<kx::http::Session> m_session;
};
