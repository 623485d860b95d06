#include "include/platform/StdioFile.h"

#include "platform/files/Exception.h"
#include "platform/files/OpenFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace {
constexpr std::size_t kBlock = std::size_t{64} << 10;
}

CStdioFile::~CStdioFile()
{
    WriteOut();
}

int CStdioFile::Open(const char* pszFileName, unsigned nOpenFlags, CFileException* pError)
{
    return CFile::Open(pszFileName, nOpenFlags, pError); // which closes by this class's Close
}

void CStdioFile::Close()
{
    const int error = WriteOut();
    const CString strFileName = m_strFileName;
    m_nPos = m_nEnd = 0;
    m_bWriting = false;
    CFile::Close();
    if (error) throw new CFileException(kx::CauseFromErrno(error), error, strFileName);
}

void CStdioFile::Flush()
{
    if (const int error = WriteOut()) Throw(error);
}

// Empties the buffer of what is to be written; what can't be written now is dropped, so that a full disk
// doesn't fill the memory too.
int CStdioFile::WriteOut() noexcept
{
    const std::size_t nPending = Pending();
    if (nPending == 0) return 0;
    m_nPos = 0;
    return kx::WriteAll(m_fd, m_buffer.data(), nPending);
}

void CStdioFile::StartReading()
{
    if (!m_bWriting) return;
    Flush();
    m_bWriting = false;
    m_nPos = m_nEnd = 0;
}

// What was read ahead is given back: writing goes on where reading stopped.
void CStdioFile::StartWriting()
{
    if (m_bWriting) return;
    if (Ahead() > 0) lseek(m_fd, -static_cast<off_t>(Ahead()), SEEK_CUR);
    m_nPos = m_nEnd = 0;
    m_bWriting = true;
}

bool CStdioFile::Fill()
{
    m_buffer.resize(kBlock);
    m_nPos = m_nEnd = 0;
    m_nEnd = CFile::Read(m_buffer.data(), kBlock);
    return m_nEnd > 0;
}

std::size_t CStdioFile::Read(void* pBuf, std::size_t nCount)
{
    if (!IsOpen()) Throw(EBADF);
    if (!pBuf && nCount > 0) Throw(EFAULT);
    StartReading();
    char* pch = static_cast<char*>(pBuf);
    std::size_t nDone = 0;
    while (nDone < nCount) {
        if (Ahead() == 0 && nCount - nDone >= kBlock) { // straight to its place
            const std::size_t nGot = CFile::Read(pch + nDone, nCount - nDone);
            if (nGot == 0) break;
            nDone += nGot;
            continue;
        }
        if (Ahead() == 0 && !Fill()) break;
        const std::size_t nPart = std::min(Ahead(), nCount - nDone);
        std::memcpy(pch + nDone, m_buffer.data() + m_nPos, nPart);
        m_nPos += nPart;
        nDone += nPart;
    }
    return nDone;
}

void CStdioFile::Write(const void* pBuf, std::size_t nCount)
{
    if (!IsOpen()) Throw(EBADF);
    if (!pBuf && nCount > 0) Throw(EFAULT);
    StartWriting();
    if (nCount > kBlock - m_nPos) Flush();
    if (nCount >= kBlock) return CFile::Write(pBuf, nCount);
    m_buffer.resize(kBlock);
    if (nCount > 0) std::memcpy(m_buffer.data() + m_nPos, pBuf, nCount);
    m_nPos += nCount;
}

void CStdioFile::WriteString(const char* psz)
{
    Write(psz, psz ? std::strlen(psz) : 0);
}

int CStdioFile::ReadString(CString& strLine)
{
    strLine.Empty();
    if (!IsOpen()) Throw(EBADF);
    StartReading();
    bool bAny = false;
    while (Ahead() > 0 || Fill()) {
        const std::string_view ahead(m_buffer.data() + m_nPos, Ahead());
        const std::size_t end = ahead.find('\n');
        strLine.Append(ahead.substr(0, end));
        m_nPos += std::min(end, ahead.size() - 1) + 1;
        bAny = true;
        if (end == ahead.npos) continue;
        const int nLast = strLine.GetLength() - 1;
        if (strLine.GetAt(nLast) == '\r') strLine = strLine.Left(nLast);
        break;
    }
    return bAny;
}

// From the current position means from where the caller is, not from where reading ahead has come to.
std::uint64_t CStdioFile::Seek(std::int64_t nOff, unsigned nFrom)
{
    Flush();
    if (nFrom == current && Ahead() > 0) {
        nOff += static_cast<std::int64_t>(GetPosition());
        nFrom = begin;
    }
    const std::uint64_t nPosition = CFile::Seek(nOff, nFrom);
    m_nPos = m_nEnd = 0;
    return nPosition;
}

std::uint64_t CStdioFile::GetPosition() const
{
    return CFile::GetPosition() - Ahead() + Pending();
}

std::uint64_t CStdioFile::GetLength() const
{
    const std::uint64_t nLength = CFile::GetLength();
    return Pending() > 0 ? std::max(nLength, GetPosition()) : nLength;
}
