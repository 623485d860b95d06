#include "include/platform/Internet.h"

#include "platform/http/Functions.h"
#include "platform/module/Door.h"
#include "platform/text/CharWalk.h"

#include <new>
#include <utility>

KX_DOOR(http, kx::http::Functions);

int CInternetException::GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId) const
{
    if (pHelpId) *pHelpId = 0;
    if (pszError) kx::text::CopyCut(m_strText.View(), pszError, nMax);
    return pszError && nMax > 0 && !m_strText.IsEmpty();
}

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
try {
    if (!m_transfer)
        throw new CInternetException(ERROR_INTERNET_INCORRECT_HANDLE_STATE, 0, "The file is closed.");
    return static_cast<UINT>(m_transfer->Read(pBuf, nCount));
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
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
    if (const auto* functions = g_door.Open())
        m_session = functions->makeSession(pszAgent, bProxies, dwContext);
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
    if (!m_session)
        throw new CInternetException(ERROR_INTERNET_INTERNAL_ERROR, dwContext,
                                     "The module for HTTP can't be used.");
    return std::make_unique<CHttpFile>(m_session->Open(pszURL, dwContext)).release();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void CInternetSession::Close() noexcept
{
    if (m_session) m_session->Close();
}

void CInternetSession::Cancel() noexcept
{
    if (m_session) m_session->Cancel();
}
