#include "language/LanguageCheck.h"

#include "KXIniDataMgr.h"
#include "internal/CheckedFile.h"
#include "internal/Trim.h"
#include "internal/Wide.h"
#include "platform/CodePage.h"
#include "platform/Exception.h"

#include <algorithm>
#include <climits>
#include <new>
#include <string>
#include <unordered_map>

namespace kx::language {

namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::size_t kMostBytes = 64 << 20;
constexpr char16_t kNoCharacter = u'\xFFFD';

using text::Trim;

bool IsAscii(std::string_view text)
{
    return std::none_of(text.begin(), text.end(), [](char ch) { return (ch & 0x80) != 0; });
}

// Whether a text that isn't all ASCII is UTF-8.
bool IsUtf8(std::string_view text)
{
    return !IsAscii(text) && Widen(CP_UTF8, text).find(kNoCharacter) == std::u16string::npos;
}

class Reader
{
public:
    Reader(const CString& strDir, std::vector<Text>& texts, const FindingSink& sink)
        : m_strLan(strDir + "Lan.ini"), m_strData(strDir + "Data.txt"), m_texts(texts), m_sink(sink)
    {
    }

    bool Run()
    {
        if (CKXIniDataMgr::GetString(m_strLan, "Language", "Language", "").IsEmpty())
            m_sink(
                {Severity::Error, "language.no-name", m_strLan, 0, 0,
                 "isn't there or has no key Language in section [Language]: the directory is passed over"});
        CheckedFile file;
        const auto outcome = file.Open(m_strData, kMostBytes);
        if (outcome != CheckedFile::Outcome::Read) {
            const bool bLarge = outcome == CheckedFile::Outcome::TooLarge;
            m_sink({Severity::Error, bLarge ? "language.too-large" : "language.no-data", m_strData, 0, 0,
                    bLarge ? "is larger than 64 MiB and wasn't looked at"
                           : "can't be read: every text is its key"});
            return false;
        }
        std::string_view line;
        for (m_nLine = 1; file.Next(line); ++m_nLine)
            Read(line);
        if (m_nUtf8 > 0 && m_nUtf8 == m_nForeign)
            m_sink({Severity::Error, "language.utf-8", m_strData, 0, 0,
                    "seems to be UTF-8, and is read in another code page"});
        return true;
    }

private:
    void Tell(Severity severity, const char* pszRule, int nColumn, const CString& strText) const
    {
        m_sink({severity, pszRule, m_strData, m_nLine, nColumn, strText});
    }

    void Read(std::string_view line)
    {
        if (m_nLine == 1 && line.starts_with(kMark))
            Tell(Severity::Error, "language.mark", 1,
                 "begins with a mark of UTF-8, which becomes part of the first key");
        CheckCodePage(line);
        const auto split = SplitLine(line);
        if (!split) {
            const std::string_view text = Trim(line);
            if (!text.empty() && text[0] != '[' && text[0] != ';')
                Tell(Severity::Warning, "language.no-key", 1, "has no \"=\" and is passed over");
            return;
        }
        const auto nValue = static_cast<std::size_t>(split->value.data() - line.data());
        Text text{CString(split->key), CString(split->value), m_nLine, ColumnOf(line, nValue)};
        if (CheckKey(text)) {
            CheckEscapes(text);
            m_texts.push_back(std::move(text));
        }
    }

    // Whether the text counts.
    bool CheckKey(const Text& text)
    {
        const CString& strKey = text.strKey;
        CString strText;
        if (strKey.IsEmpty()) {
            Tell(Severity::Warning, "language.empty-key", 1, "has nothing before its \"=\"");
            return false;
        }
        const auto [place, bNew] = m_places.emplace(strKey, m_nLine);
        if (!bNew) {
            strText.Format("key %s stands at line %d already, and that text is taken", strKey.GetString(),
                           place->second);
            Tell(Severity::Warning, "language.key-twice", 1, strText);
            return false;
        }
        const std::u16string wide = Widen(CP_ACP, strKey);
        if (wide.find_first_of(u" \t\x00A0\x3000\xFEFF") != std::u16string::npos) {
            strText.Format("key \"%s\" has a blank in it", strKey.GetString());
            Tell(Severity::Warning, "language.blank-in-key", 1, strText);
        }
        if (text.strValue.IsEmpty()) {
            strText.Format("key %s has an empty text", strKey.GetString());
            Tell(Severity::Note, "language.empty-text", text.nColumn, strText);
        }
        return true;
    }

    // In code page 936 a backslash is never the second byte of a letter that the files of today have, but it
    // may be: only one that begins a character counts.
    void CheckEscapes(const Text& text) const
    {
        for (int n = text.strValue.Find('\\'); n >= 0; n = text.strValue.Find('\\', n + 1)) {
            const char ch = text.strValue[n + 1];
            if (ch == 'n' || ch == 't' || text.strValue.Mid(n, 4) == "\\r\\n") continue;
            CString strText;
            strText.Format("\"%s\" is no escape, which are \\n, \\r\\n and \\t, and is shown as it stands",
                           text.strValue.Mid(n, 2).GetString());
            Tell(Severity::Warning, "language.escape",
                 text.nColumn + ColumnOf(text.strValue, static_cast<std::size_t>(n)) - 1, strText);
        }
    }

    void CheckCodePage(std::string_view line)
    {
        if (IsAscii(line)) return;
        ++m_nForeign;
        if (GetACP() != CP_UTF8 && IsUtf8(line)) ++m_nUtf8;
        const std::size_t at = Widen(CP_ACP, line).find(kNoCharacter);
        if (at == std::u16string::npos) return;
        CString strText;
        strText.Format("has bytes here that are no character of code page %u", GetACP());
        Tell(Severity::Error, "language.code-page", static_cast<int>(at) + 1, strText);
    }

    static int ColumnOf(std::string_view line, std::size_t at)
    {
        return static_cast<int>(Widen(CP_ACP, line.substr(0, at)).size()) + 1;
    }

    const CString m_strLan;
    const CString m_strData;
    std::vector<Text>& m_texts;
    const FindingSink& m_sink;
    std::unordered_map<CString, int> m_places;
    int m_nLine = 0;
    int m_nForeign = 0; // lines that aren't ASCII
    int m_nUtf8 = 0;    // those that would be UTF-8
};

} // namespace

std::optional<DataLine> SplitLine(std::string_view line)
{
    const std::size_t nEqual = line.find('='); // never the second byte of a letter
    if (nEqual == line.npos) return std::nullopt;
    return DataLine{Trim(line.substr(0, nEqual)), Trim(line.substr(nEqual + 1))};
}

bool ReadLanguage(const CString& strDir, std::vector<Text>& texts, const FindingSink& sink)
try {
    return Reader(strDir, texts, sink).Run();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
} catch (CFileException* pException) {
    pException->Delete();
    sink({Severity::Error, "language.no-data", strDir + "Data.txt", 0, 0, "can't be read to its end"});
    return false;
}

} // namespace kx::language
