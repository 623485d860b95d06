#pragma once

#include "File.h"

#include <vector>

// A text file, buffered in both directions. Line ends are LF on disk; a CR before an LF is dropped in
// reading. Otherwise as CFile.
class KX_API CStdioFile : public CFile
{
public:
    CStdioFile() = default;
    ~CStdioFile() override;

    int Open(const char* pszFileName, unsigned nOpenFlags, CFileException* pError = nullptr) override;
    void Close() override;
    std::size_t Read(void* pBuf, std::size_t nCount) override;
    void Write(const void* pBuf, std::size_t nCount) override;
    void Flush() override;
    std::uint64_t Seek(std::int64_t nOff, unsigned nFrom) override;
    std::uint64_t GetPosition() const override;
    std::uint64_t GetLength() const override;

    // Writes a text as it stands; throws CFileException*.
    void WriteString(const char* psz);
    void WriteString(const CString& str) { Write(str.GetString(), static_cast<std::size_t>(str.GetLength())); }

    // The next line of any length, without its LF or CR LF; a last line without one counts. Non-zero while
    // there was a line. Throws CFileException*.
    int ReadString(CString& strLine);

private:
    bool Fill();

    std::vector<char> m_buffer; // read ahead or not yet written
    std::size_t m_nPos = 0;     // the next byte to deliver
    std::size_t m_nEnd = 0;     // the end of what was read ahead
    bool m_bWriting = false;    // the buffer holds bytes to write
};
