#pragma once

// The framework's exceptions. They are thrown by pointer; who catches one ends it with Delete.

#include "../KXExport.h"
#include "String.h"

class KX_API CException
{
public:
    CException() = default;
    CException(const CException&) noexcept {} // a copy is its owner's
    // Copies nothing: an exception keeps how it was made.
    CException& operator=(const CException&) noexcept { return *this; }
    // Ends the exception.
    virtual ~CException();

    // Writes the failure's text, cut to `nMax` - 1 bytes and ended. 0 without a text; the buffer is then
    // the empty string. `pHelpId` may be null and becomes 0.
    virtual int GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId = nullptr) const;

    // Frees an exception that was thrown.
    void Delete()
    {
        if (!m_bLasting) delete this;
    }

protected:
    bool m_bLasting = false; // nobody's to free
};

// Lack of memory. What is thrown was there before memory became short.
class KX_API CMemoryException : public CException
{
public:
    CMemoryException() = default;
    // One that Delete leaves alone.
    explicit CMemoryException(bool bLasting) { m_bLasting = bLasting; }

    int GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId = nullptr) const override;
};

// An argument out of its range.
class KX_API CInvalidArgException : public CException
{
public:
    int GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId = nullptr) const override;
};

// A file operation that failed: why, the system's error number, and the file.
class KX_API CFileException : public CException
{
public:
    // The cause that kept a file from being opened, read or written.
    enum Cause
    {
        none = 0,
        genericException = 1,
        fileNotFound = 2,
        badPath = 3,
        tooManyOpenFiles = 4,
        accessDenied = 5,
        invalidFile = 6,
        badSeek = 9,
        hardIO = 10,
        sharingViolation = 11,
        diskFull = 13,
        endOfFile = 14,
    };

    // Takes the cause, the system's number and the file's name.
    explicit CFileException(int nCause = none, int nOsError = 0, const char* pszFileName = nullptr)
        : m_cause(nCause), m_lOsError(nOsError), m_strFileName(pszFileName)
    {
    }

    int GetErrorMessage(char* pszError, UINT nMax, UINT* pHelpId = nullptr) const override;

    int m_cause;     // a Cause
    long m_lOsError; // errno of the failed call
    // The file's name as it was given.
    CString m_strFileName;
};

// The framework's way to throw.
[[noreturn]] KX_API void AfxThrowMemoryException();
[[noreturn]] KX_API void AfxThrowInvalidArgException();
[[noreturn]] KX_API void AfxThrowFileException(int nCause, int nOsError = -1,
                                               const char* pszFileName = nullptr);
