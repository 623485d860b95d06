#pragma once

#include "../KXExport.h"
#include "Exception.h"
#include "String.h"

#include <cstddef>
#include <cstdint>

// An open file, unbuffered. A closed object answers reads and writes with a CFileException* and everything
// else quietly. Not copyable. One thread at a time.
class KX_API CFile
{
public:
    // How a file is opened: one of the first three, one way to share, and others by |.
    enum OpenFlags : unsigned
    {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
    };
    // A position is counted from one of these.
    enum SeekPosition
    {
        begin = 0,
        current = 1,
        end = 2,
    };

    CFile() = default;
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;
    // Closes; what a buffer of a derived class still held is lost if it can't be written.
    virtual ~CFile();

    // Opens a path in the process's code page. modeCreate makes the file and empties an existing one, unless
    // modeNoTruncate stands beside it. Sharing is kept between this library's openers: a file open for
    // writing under shareDenyWrite, shareExclusive or shareCompat (which is exclusive) can't be opened for
    // writing again, by any process, nor is it emptied by the attempt. Readers are never turned away, and
    // only regular files and devices are opened. Non-zero on success; 0 otherwise, with the reason in
    // `*pError` unless that is null. An object that is open is closed first.
    virtual int Open(const char* pszFileName, unsigned nOpenFlags, CFileException* pError = nullptr);

    // Closes the file; nothing happens when it isn't open. Throws CFileException* when what was written
    // before didn't reach the file; it is closed all the same.
    virtual void Close();

    // Closes the file without a failure; what a buffer of a derived class still held is lost.
    virtual void Abort() noexcept;

    // Reads up to `nCount` bytes; returns how many, 0 at the end. Throws CFileException*.
    virtual std::size_t Read(void* pBuf, std::size_t nCount);
    // Writes all of it or throws CFileException*.
    virtual void Write(const void* pBuf, std::size_t nCount);
    // Hands buffered data to the system; throws CFileException*. Buffered data that failed is dropped.
    virtual void Flush();

    // Moves and returns the position in bytes; throws CFileException* for one before the start.
    virtual std::uint64_t Seek(std::int64_t nOff, unsigned nFrom);
    virtual std::uint64_t GetPosition() const;
    void SeekToBegin() { Seek(0, begin); }
    // The size in bytes; 0 for a closed file.
    virtual std::uint64_t GetLength() const;

    // Whether there is a file.
    bool IsOpen() const noexcept { return m_fd >= 0; }
    // The system's number of the open file, -1 for a closed one. The object's own to close.
    int GetDescriptor() const noexcept { return m_fd; }
    // The path that was opened, as given; empty for a closed file.
    const CString& GetFilePath() const noexcept { return m_strFileName; }

protected:
    // Throws a CFileException* for a system's error number.
    [[noreturn]] void Throw(int nErrno) const;

    // The descriptor, -1 without a file.
    int m_fd = -1;
    CString m_strFileName;

private:
    int CloseSystemFile() noexcept;

    int m_nProcess = 0; // that opened it
};
