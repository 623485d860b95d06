#pragma once

#include "File.h"

#include <memory>

// A text file, buffered in both directions; otherwise as CFile. Line ends are LF on disk. What is written
// reaches the system when the buffer of 64 KiB is full, at Flush, Seek, a change to reading, and Close; a
// text that fits the buffer goes there in one piece.
class KX_API CStdioFile : public CFile
{
public:
    CStdioFile() = default;
    // Writes what is buffered, and closes.
    ~CStdioFile() override;

    int Open(const char* pszFileName, unsigned nOpenFlags, CFileException* pError = nullptr) override;
    void Close() override;
    void Abort() noexcept override;
    // Delivers the bytes as they stand, `nCount` of them unless the file ends before.
    std::size_t Read(void* pBuf, std::size_t nCount) override;
    void Write(const void* pBuf, std::size_t nCount) override;
    void Flush() override;
    std::uint64_t Seek(std::int64_t nOff, unsigned nFrom) override;
    std::uint64_t GetPosition() const override;
    std::uint64_t GetLength() const override;

    // Writes a text as it stands; throws CFileException*.
    void WriteString(const char* psz);
    void WriteString(const CString& str)
    {
        Write(str.GetString(), static_cast<std::size_t>(str.GetLength()));
    }

    // The next line of any length, without its LF or CR LF; a last line without one counts. Non-zero while
    // there was a line; the text is empty afterwards. Throws CFileException*, and std::bad_alloc for a line
    // that is too long for a CString.
    int ReadString(CString& strLine);

private:
    void NeedBuffer();
    bool Fill();
    void StartReading();
    void StartWriting();
    void GiveBack();
    int WriteOut() noexcept;
    std::size_t Buffered() const noexcept { return m_bWriting ? 0 : m_nEnd - m_nPos; }
    std::size_t Pending() const noexcept { return m_bWriting ? m_nPos : 0; }

    std::unique_ptr<char[]> m_buffer; // read ahead, or not yet written
    std::size_t m_nPos = 0;           // the next byte to deliver, or the end of what is to be written
    std::size_t m_nEnd = 0;           // the end of what was read ahead
    bool m_bWriting = false;          // the buffer holds bytes to write
};
