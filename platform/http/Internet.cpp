#include "include/platform/Internet.h"

#include "platform/http/Session.h"
#include "platform/http/Transfer.h"

#include <new>

CHttpFile::CHttpFile(std::unique_ptr<kx::http::Transfer> transfer) noexcept : m_transfer(std::move(transfer))
{
}

CHttpFile::~CHttpFile() = default;

int CHttpFile::QueryInfo(DWORD dwInfoLevel, unsigned long& dwNumber) const
{
    if (dwInfoLevel != HTTP_QUERY_CONTENT_LENGTH || !m_transfer) return 0;
    const auto length = m_transfer->ContentLength();
    if (length) dwNumber = *length;
    return length.has_value();
}

UINT CHttpFile::Read(void* pBuf, UINT nCount)
{
    if (!m_transfer) kx::http::Throw(ERROR_INTERNET_INCORRECT_HANDLE_STATE, 0, "The file is closed.");
    return static_cast<UINT>(m_transfer->Read(pBuf, nCount));
}

void CHttpFile::Close() noexcept
{
    m_transfer.reset();
}

CInternetSession::CInternetSession(const char* pszAgent, unsigned long dwContext, DWORD dwAccessType,
                                   const char*, const char*, DWORD)
try {
    if (dwAccessType > INTERNET_OPEN_TYPE_DIRECT) AfxThrowInvalidArgException();
    const bool bProxies = dwAccessType == INTERNET_OPEN_TYPE_PRECONFIG;
    m_session = std::make_shared<kx::http::Session>(pszAgent, bProxies, dwContext);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

CInternetSession::~CInternetSession()
{
    Close();
}

CHttpFile* CInternetSession::OpenURL(const char* pszURL, unsigned long dwContext, DWORD,
                                     const char* pszHeaders, DWORD)
try {
    if (pszHeaders) AfxThrowInvalidArgException();
    auto transfer = std::make_unique<kx::http::Transfer>(m_session, pszURL, dwContext);
    transfer->Open();
    return std::make_unique<CHttpFile>(std::move(transfer)).release();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void CInternetSession::Close() noexcept
{
    m_session->Close();
}

void CInternetSession::Cancel() noexcept
{
    m_session->Cancel();
}
