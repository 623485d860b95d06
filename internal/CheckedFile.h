#pragma once

#include "include/platform/File.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace kx {

// A text file of an author's, as a check reads it: whole, but never without end, whatever its name leads to.
class CheckedFile
{
public:
    enum class Outcome
    {
        Read,
        Unreadable,
        TooLarge
    };

    // Throws CFileException* where a read fails, and std::bad_alloc.
    Outcome Open(const CString& strFile, std::size_t nMostBytes)
    {
        CFile file;
        if (!file.Open(strFile, CFile::modeRead | CFile::shareDenyNone)) return Outcome::Unreadable;
        constexpr std::size_t kBlock = 64 << 10;
        for (std::size_t nRead = 1; nRead > 0 && m_text.size() <= nMostBytes;) {
            const std::size_t nBefore = m_text.size();
            m_text.resize(nBefore + kBlock);
            nRead = file.Read(m_text.data() + nBefore, kBlock);
            m_text.resize(nBefore + nRead);
        }
        m_rest = m_text;
        return m_text.size() > nMostBytes ? Outcome::TooLarge : Outcome::Read;
    }

    // The next line, without its end; valid as long as this object. False behind the last.
    bool Next(std::string_view& line)
    {
        if (m_rest.empty()) return false;
        const std::size_t nEnd = m_rest.find('\n');
        line = m_rest.substr(0, nEnd);
        m_rest.remove_prefix(nEnd == m_rest.npos ? m_rest.size() : nEnd + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        return true;
    }

private:
    std::string m_text;
    std::string_view m_rest;
};

} // namespace kx
