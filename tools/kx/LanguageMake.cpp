// Makes languages out of another: one to translate, and one that shows what a layout can't hold.

#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"
#include "tools/kx/Languages.h"

#include <KXText.h>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <platform/StdioFile.h>

namespace kx::tool {

namespace {

namespace fs = std::filesystem;

// In UTF-8, as letters that look alike; others stay.
const char* Accented(char ch)
{
    constexpr const char* kLower[] = {"à", "b", "c", "d", "é", "f", "g", "h", "ì", "j", "k", "l", "m",
                                      "n", "ò", "p", "q", "r", "s", "t", "ù", "v", "w", "x", "y", "z"};
    return ch >= 'a' && ch <= 'z' ? kLower[ch - 'a'] : nullptr;
}

// The text a third longer, with accents and in brackets, so that one sees what is cut off and what isn't
// translated at all. Placeholders and escapes stay.
CString Pseudo(const CString& strText)
{
    const std::string_view text = strText;
    std::string utf8 = "[";
    const auto placeholders = PlaceholdersOf(text);
    auto next = placeholders.begin();
    int nLetters = 0;
    for (std::size_t n = 0; n < text.size();) {
        std::size_t nKept = 0;
        if (next != placeholders.end() && next->at == n)
            nKept = (next++)->length;
        else if (text[n] == '\\' || (text[n] == '%' && n + 1 < text.size()))
            nKept = std::min<std::size_t>(2, text.size() - n);
        else if ((text[n] & 0x80) != 0) // up to the next ASCII byte; a second byte may look like one
            nKept = std::min<std::size_t>(2, text.size() - n);
        if (nKept > 0) {
            utf8 += KXText::ToUtf8(text.substr(n, nKept));
            n += nKept;
            continue;
        }
        const char* const pszAccented = Accented(text[n]);
        utf8 += pszAccented ? std::string(pszAccented) : std::string(1, text[n]);
        nLetters += pszAccented ? 1 : 0;
        ++n;
    }
    for (int n = 0; n < nLetters; n += 9)
        utf8 += " ooo";
    return KXText::FromUtf8(utf8 + "]");
}

// The lines of the base with other texts; what isn't a text of it stays as it is, remarks too.
int Make(Arguments& arguments, const char* pszUsage, const CString& strSuffix,
         const std::function<CString(const CString&)>& change)
{
    const auto from = arguments.Value("--from");
    const auto id = arguments.Word();
    const auto dir = arguments.Word();
    if (!id || !from || !dir || !arguments.Rest().empty()) return Misused(pszUsage);
    if (id->empty() || id->find_first_of("/\\") != id->npos || *id == "." || *id == "..")
        return Complain("an identifier is the name of a directory, not " + *id);
    const fs::path target = fs::path(*dir) / *id;
    std::error_code error;
    if (fs::exists(target, error)) return Complain("there is something at " + target.string());
    const auto languages = ReadLanguages(*dir, [](const Finding&) {});
    const auto base = std::find_if(languages.begin(), languages.end(),
                                   [&](const Language& one) { return one.id == *from; });
    if (base == languages.end()) return Complain("there is no language " + *from + " below " + *dir);
    if (base->texts.empty()) return Complain(*from + " has no texts");
    CStdioFile lines;
    if (!lines.Open(base->strDir + "Data.txt", CFile::modeRead | CFile::shareDenyNone))
        return Complain(*from + " can't be read");
    auto text = base->texts.begin();
    std::string data;
    CString strLine;
    for (int nLine = 1; lines.ReadString(strLine); ++nLine) {
        if (text != base->texts.end() && nLine == text->nLine) {
            strLine = text->strKey + " = " + change(text->strValue);
            ++text;
        }
        data.append(strLine.TrimRight()).append("\r\n");
    }
    const std::string name(KXText::FromUtf8(*id) + strSuffix);
    fs::create_directory(target, error);
    if (error || !WriteFile(target / "Lan.ini", "[Language]\r\nLanguage=" + name + "\r\n") ||
        !WriteFile(target / "Data.txt", data))
        return Complain("can't write into " + target.string());
    return Clean;
}

} // namespace

int NewLanguage(Arguments& arguments)
{
    return Make(arguments, "kx language new ID --from ID DIR", "", [](const CString& str) { return str; });
}

int PseudoLanguage(Arguments& arguments)
{
    return Make(arguments, "kx language pseudo ID --from ID DIR", " (pseudo)", Pseudo);
}

} // namespace kx::tool
