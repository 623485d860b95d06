// Checks the languages below a directory: each by itself, and against one that has all texts.

#include "language/LanguageCheck.h"
#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"
#include "tools/kx/Languages.h"

#include <KXText.h>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <glob.h>
#include <map>
#include <set>
#include <sstream>

namespace kx::tool {

namespace fs = std::filesystem;
using language::Text;

std::vector<Language> ReadLanguages(const std::string& dir, const FindingSink& sink)
{
    std::vector<Language> languages;
    std::error_code error;
    std::vector<std::string> ids;
    for (fs::directory_iterator it(dir, error), end; !error && it != end; it.increment(error))
        if (it->is_directory(error) && ids.size() < 1000) ids.push_back(it->path().filename().string());
    std::sort(ids.begin(), ids.end());
    Progress progress;
    for (const std::string& id : ids) {
        progress.At("reading " + id);
        const CString strDir = LibraryPath(dir + "/" + id, true);
        if (strDir.IsEmpty()) continue;
        Language one{id, strDir, {}};
        one.bRead = language::ReadLanguage(strDir, one.texts, sink);
        languages.push_back(std::move(one));
    }
    return languages;
}

std::vector<Placeholder> PlaceholdersOf(std::string_view text)
{
    constexpr std::string_view kFlags = "-+#0123456789.*'$"; // no blank: "100% of" is a text
    constexpr std::string_view kLengths = "hlLqjzt";
    constexpr std::string_view kKinds = "diouxXeEfFgGaAcspn";
    std::vector<Placeholder> found;
    for (std::size_t at = text.find('%'); at < text.size(); at = text.find('%', at)) {
        std::size_t end = at + 1;
        while (end < text.size() && kFlags.find(text[end]) != kFlags.npos)
            ++end;
        while (end < text.size() && kLengths.find(text[end]) != kLengths.npos)
            ++end;
        const bool bKind = end < text.size() && kKinds.find(text[end]) != kKinds.npos;
        const bool bPercent = end < text.size() && text[end] == '%' && end == at + 1;
        if (bKind) {
            const std::string_view all = text.substr(at + 1, end - at);
            const std::size_t nNumber = all.find('$') + 1; // "1$", which argument it is; 0 without
            std::string kind(all.substr(0, nNumber));
            for (const char ch : all.substr(nNumber)) // sizes and flags may differ, what is passed may not
                if (ch == '*' || kLengths.find(ch) != kLengths.npos || kKinds.find(ch) != kKinds.npos)
                    kind += ch;
            found.push_back({at, end + 1 - at, kind});
        }
        at = bKind || bPercent ? end + 1 : at + 1;
    }
    return found;
}

namespace {

// The kinds of what is passed, in that order, which numbers may make another one than the text's.
std::vector<std::string> PassedTo(const CString& strText)
{
    std::vector<std::string> kinds;
    for (const Placeholder& one : PlaceholdersOf(strText))
        kinds.push_back(one.kind);
    if (!kinds.empty() && kinds[0].find('$') != std::string::npos) std::sort(kinds.begin(), kinds.end());
    return kinds;
}

std::string Listed(const std::vector<std::string>& kinds)
{
    std::string list;
    for (const std::string& kind : kinds)
        list += (list.empty() ? "%" : " %") + kind;
    return list.empty() ? "none" : list;
}

bool HasLetters(const CString& strText)
{
    const std::string_view text = strText;
    return std::any_of(text.begin(), text.end(), [](char ch) {
        return std::isalpha(static_cast<unsigned char>(ch)) != 0 || (ch & 0x80) != 0;
    });
}

class Comparison
{
public:
    Comparison(const Language& base, Findings& findings) : m_base(base), m_findings(findings)
    {
        for (const Text& text : base.texts)
            m_texts.emplace(text.strKey, &text);
    }

    void Compare(const Language& other)
    {
        const CString strData = other.strDir + "Data.txt";
        std::map<CString, const Text*> theirs;
        for (const Text& text : other.texts) {
            theirs.emplace(text.strKey, &text);
            const auto base = m_texts.find(text.strKey);
            if (base == m_texts.end())
                Tell(Severity::Warning, "language.left-over", strData, text,
                     "key " + text.strKey + " is not in " + CString(m_base.id.c_str()));
            else
                CompareTexts(*base->second, text, strData);
        }
        for (const Text& text : m_base.texts)
            if (!theirs.contains(text.strKey))
                m_findings.Add({Severity::Error, "language.missing", strData, 0, 0,
                                "lacks key " + text.strKey + ", line " + CString(std::to_string(text.nLine)) +
                                    " of " + CString(m_base.id.c_str())});
    }

private:
    void Tell(Severity severity, const char* pszRule, const CString& strFile, const Text& text,
              const CString& strText)
    {
        m_findings.Add({severity, pszRule, strFile, text.nLine, text.nColumn, strText});
    }

    void CompareTexts(const Text& base, const Text& text, const CString& strData)
    {
        if (base.strValue == text.strValue && HasLetters(base.strValue))
            Tell(Severity::Note, "language.untranslated", strData, text,
                 "key " + text.strKey + " has the text of " + CString(m_base.id.c_str()));
        const auto ours = PassedTo(base.strValue);
        const auto theirs = PassedTo(text.strValue);
        if (ours == theirs) return;
        Tell(Severity::Error, "language.placeholders", strData, text,
             "key " + text.strKey + " has the placeholders " + CString(Listed(theirs)) + ", and " +
                 CString(Listed(ours)) + " in " + CString(m_base.id.c_str()));
    }

    const Language& m_base;
    Findings& m_findings;
    std::map<CString, const Text*> m_texts;
};

// Texts in quotes that look like keys, with the first place of each.
struct Sources
{
    struct Place
    {
        std::string file;
        int nLine = 0;
    };
    std::map<std::string, Place> keys;

    void Read(const std::string& path)
    {
        constexpr std::uintmax_t kMostBytes = 16 << 20;
        std::error_code error;
        if (fs::file_size(path, error) > kMostBytes || error) return;
        std::ifstream file(path, std::ios::binary);
        std::string line;
        for (int nLine = 1; std::getline(file, line); ++nLine)
            for (std::size_t at = line.find("\"IDS_"); at != line.npos; at = line.find("\"IDS_", at + 1)) {
                std::size_t end = at + 1;
                while (end < line.size() &&
                       (std::isalnum(static_cast<unsigned char>(line[end])) != 0 || line[end] == '_'))
                    ++end;
                if (end < line.size() && line[end] == '"')
                    keys.emplace(line.substr(at + 1, end - at - 1), Place{path, nLine});
            }
    }
};

// False if the pattern names no file.
bool ReadSources(const std::string& pattern, Sources& sources)
{
    glob_t found{};
    const bool bAny = glob(pattern.c_str(), GLOB_BRACE, nullptr, &found) == 0;
    Progress progress;
    for (std::size_t n = 0; n < found.gl_pathc; ++n) {
        progress.At(std::string("reading ") + found.gl_pathv[n]);
        sources.Read(found.gl_pathv[n]);
    }
    globfree(&found);
    return bAny;
}

void CheckSources(const Sources& sources, const std::vector<Language>& languages, Findings& findings)
{
    std::set<std::string> known;
    for (const Language& one : languages)
        for (const Text& text : one.texts)
            known.emplace(text.strKey);
    for (const auto& [key, place] : sources.keys)
        if (!known.contains(key))
            findings.Add({Severity::Error, "language.no-text", LibraryPath(place.file, false), place.nLine, 0,
                          CString("no language has key ") + key.c_str() + ", which is asked for here"});
    std::set<std::string> told;
    for (const Language& one : languages)
        for (const Text& text : one.texts)
            if (std::string(text.strKey).starts_with("IDS_") &&
                !sources.keys.contains(std::string(text.strKey)) && told.emplace(text.strKey).second)
                findings.Add({Severity::Note, "language.never-asked", one.strDir + "Data.txt", text.nLine, 0,
                              "no source asks for key " + text.strKey});
}

} // namespace

int CheckLanguages(Arguments& arguments)
{
    const bool bJson = arguments.Flag("--json");
    const auto baseId = arguments.Value("--base");
    const auto pattern = arguments.Value("--sources");
    const auto dir = arguments.Word();
    if (!dir || !arguments.Rest().empty())
        return Misused("kx language check DIR [--base ID] [--sources GLOB] [--json]");
    if (!fs::is_directory(*dir)) return Complain("there is no directory " + *dir);
    Findings findings;
    const auto languages = ReadLanguages(*dir, findings.Sink());
    if (languages.empty()) return Complain("there is no language below " + *dir);
    const auto base = baseId ? std::find_if(languages.begin(), languages.end(),
                                            [&](const Language& one) { return one.id == *baseId; })
                             : languages.begin();
    if (base == languages.end()) return Complain("there is no language " + *baseId + " below " + *dir);
    Sources sources;
    if (pattern && !ReadSources(*pattern, sources)) return Complain("no file matches " + *pattern);
    {
        Progress progress;
        Comparison comparison(*base, findings);
        for (const Language& one : languages) {
            if (one.id == base->id || !one.bRead) continue;
            progress.At("comparing " + one.id);
            comparison.Compare(one);
        }
    }
    if (pattern) CheckSources(sources, languages, findings);
    return findings.Print(*dir, bJson);
}

} // namespace kx::tool
