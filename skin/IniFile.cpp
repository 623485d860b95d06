#include "skin/IniFile.h"

#include "internal/CheckedFile.h"
#include "internal/Trim.h"
#include "platform/CodePage.h"
#include "platform/Exception.h"

#include <new>
#include <string_view>
#include <utility>

namespace kx::skin {

namespace {

constexpr std::size_t kMostLines = 100'000;
constexpr std::size_t kMostBytes = 16 << 20; // of INI files that are read
constexpr std::string_view kMark = "\xEF\xBB\xBF";

// A piece of a line, with its place there.
struct Piece
{
    std::string_view text;
    std::size_t at = 0;

    Piece Part(std::size_t from, std::size_t count = std::string_view::npos) const
    {
        return {text.substr(from, count), at + from};
    }
    Piece Trimmed() const
    {
        const std::string_view inner = text::Trim(text);
        return Part(static_cast<std::size_t>(inner.data() - text.data()), inner.size());
    }
    Piece Unquoted() const
    {
        const bool bQuoted =
            text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
        return bQuoted ? Part(1, text.size() - 2) : *this;
    }
};

int ColumnOf(std::string_view line, std::size_t at)
{
    const int nBytes = static_cast<int>(at);
    return 1 + (nBytes > 0 ? MultiByteToWideChar(CP_ACP, 0, line.data(), nBytes, nullptr, 0) : 0);
}

} // namespace

bool ReadIniLines(const CString& strFile, std::vector<IniLine>& lines, bool& bAll)
try {
    CheckedFile file;
    if (file.Open(strFile, kMostBytes) != CheckedFile::Outcome::Read) return false;
    CString strSection;
    std::string_view all;
    for (int nLine = 1; file.Next(all); ++nLine) {
        bAll = lines.size() < kMostLines;
        if (!bAll) break;
        const bool bMark = nLine == 1 && all.starts_with(kMark);
        const Piece line = Piece{all, 0}.Part(bMark ? kMark.size() : 0).Trimmed();
        if (line.text.empty() || line.text[0] == ';') continue;
        IniLine found;
        found.nLine = nLine;
        Piece name = line;
        if (line.text[0] == '[') {
            const int nEnd =
                CString(line.text.data(), static_cast<int>(line.text.size())).Find(']'); // by characters
            name = nEnd < 0 ? line.Part(1) : line.Part(1, static_cast<std::size_t>(nEnd) - 1);
            strSection = name.text;
            found.bSection = true;
        } else if (const std::size_t nEqual = line.text.find('='); nEqual != line.text.npos) {
            name = line.Part(0, nEqual).Trimmed();
            const Piece value = line.Part(nEqual + 1).Trimmed().Unquoted();
            found.bAssigns = true;
            found.strKey = name.text;
            found.strValue = value.text;
            found.nValueColumn = ColumnOf(all, value.at);
        } else {
            found.strValue = line.text;
        }
        found.strSection = strSection;
        found.nColumn = ColumnOf(all, name.at);
        lines.push_back(std::move(found));
    }
    return true;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
} catch (CFileException* pException) {
    pException->Delete();
    return false;
}

} // namespace kx::skin
