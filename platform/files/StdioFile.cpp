#include "include/platform/StdioFile.h"

#include "platform/files/File.h"
#include "platform/files/WholeFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
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
    if (error) AfxThrowFileException(kx::files::CauseFromErrno(error), error, strFileName);
}

void CStdioFile::Abort() noexcept
{
    m_nPos = m_nEnd = 0;
    m_bWriting = false;
    CFile::Abort();
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
    return kx::files::WriteAll(m_fd, m_buffer.get(), nPending);
}

void CStdioFile::NeedBuffer()
{
    if (!m_buffer) m_buffer.reset(new (std::nothrow) char[kBlock]);
    if (!m_buffer) AfxThrowMemoryException();
}

void CStdioFile::StartReading()
{
    if (!m_bWriting) return;
    Flush();
    m_bWriting = false;
    m_nPos = m_nEnd = 0;
}

void CStdioFile::StartWriting()
{
    GiveBack();
    m_bWriting = true;
}

// Bytes that were read ahead count as not read: the file's own position is the caller's again.
void CStdioFile::GiveBack()
{
    if (m_bWriting) return;
    if (Buffered() > 0) lseek(m_fd, -static_cast<off_t>(Buffered()), SEEK_CUR);
    m_nPos = m_nEnd = 0;
}

bool CStdioFile::Fill()
{
    NeedBuffer();
    m_nPos = m_nEnd = 0;
    m_nEnd = CFile::Read(m_buffer.get(), kBlock);
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
        if (Buffered() == 0 && nCount - nDone >= kBlock) { // straight to its place
            const std::size_t nGot = CFile::Read(pch + nDone, nCount - nDone);
            if (nGot == 0) break;
            nDone += nGot;
            continue;
        }
        if (Buffered() == 0 && !Fill()) break;
        const std::size_t nPart = std::min(Buffered(), nCount - nDone);
        std::memcpy(pch + nDone, m_buffer.get() + m_nPos, nPart);
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
    NeedBuffer();
    if (nCount > 0) std::memcpy(m_buffer.get() + m_nPos, pBuf, nCount);
    m_nPos += nCount;
}

void CStdioFile::WriteString(const char* psz)
{
    Write(psz, psz ? std::strlen(psz) : 0);
}

int CStdioFile::ReadString(CString& strLine)
{
    strLine.Truncate(0);
    if (!IsOpen()) Throw(EBADF);
    StartReading();
    bool bAny = false;
    while (Buffered() > 0 || Fill()) {
        const std::string_view ahead(m_buffer.get() + m_nPos, Buffered());
        const std::size_t nEnd = ahead.find('\n');
        const bool bEnds = nEnd != ahead.npos;
        std::string_view piece = ahead.substr(0, nEnd);
        if (bEnds && piece.ends_with('\r'))
            piece.remove_suffix(1);
        else if (bEnds && piece.empty() && strLine.GetAt(strLine.GetLength() - 1) == '\r')
            strLine.Truncate(strLine.GetLength() - 1); // the CR came with the block before
        strLine.Append(piece);
        m_nPos += bEnds ? nEnd + 1 : ahead.size();
        bAny = true;
        if (bEnds) break;
    }
    return bAny;
}

std::uint64_t CStdioFile::Seek(std::int64_t nOff, unsigned nFrom)
{
    Flush();
    GiveBack();
    return CFile::Seek(nOff, nFrom);
}

std::uint64_t CStdioFile::GetPosition() const
{
    const std::uint64_t nPosition = CFile::GetPosition(); // always 0 for some devices
    return nPosition + Pending() - std::min<std::uint64_t>(nPosition, Buffered());
}

std::uint64_t CStdioFile::GetLength() const
{
    const std::uint64_t nLength = CFile::GetLength();
    return Pending() > 0 ? std::max(nLength, GetPosition()) : nLength;
}
