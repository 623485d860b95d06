#include "platform/files/File.h"

#include "include/platform/Error.h"
#include "platform/Immortal.h"
#include "platform/text/CharWalk.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>

namespace {

// The texts are cut to the caller's buffer; an empty one is none.
int Deliver(std::string_view text, char* pszError, UINT nMax, UINT* pHelpId)
{
    if (pHelpId) *pHelpId = 0;
    if (pszError) kx::text::CopyCut(text, pszError, nMax);
    return pszError && nMax > 0 && !text.empty();
}

const char* CauseText(int nCause)
{
    switch (nCause) {
    case CFileException::none:
        return nullptr;
    case CFileException::fileNotFound:
        return "The file was not found.";
    case CFileException::badPath:
        return "The path is invalid, or a directory of it doesn't exist.";
    case CFileException::tooManyOpenFiles:
        return "Too many files are open.";
    case CFileException::accessDenied:
        return "Access was denied.";
    case CFileException::invalidFile:
        return "The file is not open.";
    case CFileException::badSeek:
        return "There is no such position in the file.";
    case CFileException::hardIO:
        return "The device reported an error.";
    case CFileException::sharingViolation:
        return "The file is in use.";
    case CFileException::diskFull:
        return "The disk is full.";
    case CFileException::endOfFile:
        return "The file ended unexpectedly.";
    default:
        return "The file can't be used.";
    }
}

} // namespace

CException::~CException() = default;

int CException::GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId) const
{
    return Deliver({}, pszError, nMax, pHelpId);
}

int CMemoryException::GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId) const
{
    return Deliver("There is not enough memory.", pszError, nMax, pHelpId);
}

int CInvalidArgException::GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId) const
{
    return Deliver("An argument is invalid.", pszError, nMax, pHelpId);
}

int CFileException::GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId) const
{
    const char* pszCause = CauseText(m_cause);
    if (!pszCause) return Deliver({}, pszError, nMax, pHelpId);
    CString strText = m_strFileName.IsEmpty() ? CString() : m_strFileName + ": ";
    strText += pszCause;
    const bool bSystem = m_cause == genericException && m_lOsError > 0;
    if (const char* pszSystem = bSystem ? strerrordesc_np(static_cast<int>(m_lOsError)) : nullptr)
        strText.AppendFormat(" (%s)", pszSystem);
    return Deliver(strText.View(), pszError, nMax, pHelpId);
}

void AfxThrowMemoryException()
{
    static kx::Immortal<CMemoryException> exception(true);
    throw &exception.Get();
}

void AfxThrowInvalidArgException()
try {
    throw new CInvalidArgException;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void AfxThrowFileException(int nCause, int nOsError, const char* pszFileName)
try {
    throw new CFileException(nCause, nOsError, pszFileName);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int kx::files::CauseFromErrno(int nErrno) noexcept
{
    switch (nErrno) {
    case 0:
        return CFileException::none;
    case ENOENT:
        return CFileException::fileNotFound;
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case EINVAL:
    case EILSEQ:
        return CFileException::badPath;
    case EMFILE:
    case ENFILE:
        return CFileException::tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
        return CFileException::accessDenied;
    case EBADF:
        return CFileException::invalidFile;
    case ESPIPE:
        return CFileException::badSeek;
    case EIO:
        return CFileException::hardIO;
    case EWOULDBLOCK:
        return CFileException::sharingViolation;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return CFileException::diskFull;
    default:
        return CFileException::genericException;
    }
}

CFileException kx::files::PathFailure(DWORD dwError, const char* pszPath)
{
    const int nErrno = dwError == ERROR_FILENAME_EXCED_RANGE ? ENAMETOOLONG
                       : dwError == ERROR_INVALID_NAME       ? EILSEQ
                                                             : ENOENT;
    return CFileException(CFileException::badPath, nErrno, pszPath);
}
