#include "tools/kx/Findings.h"

#include <KXText.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <platform/CodePage.h>
#include <platform/Host.h>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace kx::tool {

namespace {

// A printable text as the inside of a JSON string.
std::string JsonText(std::string_view text)
{
    std::string json;
    for (const char ch : text) {
        if (ch == '"' || ch == '\\') json += '\\';
        json += ch == '\t' ? ' ' : ch;
    }
    return json;
}

// A path of the library as people write it, below the tree that was checked.
std::string Shown(const CString& strFile, const std::filesystem::path& root)
{
    const std::string path = KXHost::ToSystemPath(strFile);
    if (path.empty()) return KXText::ToUtf8(strFile);
    // By the names alone: what a link leads to isn't what its author looks for.
    const auto relative = std::filesystem::path(path).lexically_relative(root);
    return relative.empty() ? path : relative.string();
}

const char* Plural(std::size_t n)
{
    return n == 1 ? "" : "s";
}

} // namespace

const char* NameOf(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    default:
        return "note";
    }
}

std::string Printable(std::string_view text)
{
    std::u16string wide(text.size(), u'\0'); // a byte never becomes more than one unit
    const int nUnits = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    std::string printable(3 * static_cast<std::size_t>(nUnits), '\0');
    const int nBytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), nUnits, printable.data(),
                                           static_cast<int>(printable.size()), nullptr, nullptr);
    printable.resize(static_cast<std::size_t>(nBytes));
    std::replace_if(
        printable.begin(), printable.end(),
        [](char ch) { return static_cast<unsigned char>(ch) < ' ' ? ch != '\t' : ch == '\x7F'; }, '?');
    return printable;
}

FindingSink Findings::Sink()
{
    return [this](const Finding& finding) { m_all.push_back(finding); };
}

bool Findings::HasErrors() const
{
    return std::any_of(m_all.begin(), m_all.end(),
                       [](const Finding& finding) { return finding.severity == Severity::Error; });
}

int Findings::Print(const std::string& strDir, bool bJson)
{
    const auto root = std::filesystem::absolute(strDir).lexically_normal();
    std::stable_sort(m_all.begin(), m_all.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.strFile, a.nLine, a.nColumn) < std::tie(b.strFile, b.nLine, b.nColumn);
    });
    std::array<std::size_t, 3> counts{};
    std::string out = bJson ? "{\"findings\":[" : "";
    std::string file;
    const CString* pLast = nullptr; // whose name `file` is
    for (const Finding& finding : m_all) {
        if (!pLast || *pLast != finding.strFile) file = Printable(Shown(finding.strFile, root));
        pLast = &finding.strFile;
        const std::string text = Printable(KXText::ToUtf8(finding.strText));
        const char* const pszName = NameOf(finding.severity);
        if (bJson) {
            if (out.back() == '}') out += ',';
            out += "{\"file\":\"" + JsonText(file) + "\",\"line\":" + std::to_string(finding.nLine) +
                   ",\"column\":" + std::to_string(finding.nColumn) + ",\"severity\":\"" + pszName +
                   "\",\"rule\":\"" + finding.pszRule + "\",\"text\":\"" + JsonText(text) + "\"}";
        } else {
            out += file + ":";
            if (finding.nLine > 0) out += std::to_string(finding.nLine) + ":";
            if (finding.nColumn > 0) out += std::to_string(finding.nColumn) + ":";
            out += std::string(" ") + pszName + ": " + text + " [" + finding.pszRule + "]\n";
        }
        ++counts[static_cast<std::size_t>(finding.severity)];
    }
    const auto& [nErrors, nWarnings, nNotes] = counts;
    if (bJson)
        out += "],\"errors\":" + std::to_string(nErrors) + ",\"warnings\":" + std::to_string(nWarnings) +
               ",\"notes\":" + std::to_string(nNotes) + "}\n";
    else
        out += std::to_string(nErrors) + " error" + Plural(nErrors) + ", " + std::to_string(nWarnings) +
               " warning" + Plural(nWarnings) + ", " + std::to_string(nNotes) + " note" + Plural(nNotes) +
               "\n";
    if (std::fwrite(out.data(), 1, out.size(), stdout) != out.size() || std::fflush(stdout) != 0)
        return Complain("the findings can't be written");
    return nErrors + nWarnings > 0 ? Found : Clean;
}

Progress::Progress()
    : m_bTerminal(isatty(STDERR_FILENO) != 0), m_next(Clock::now() + std::chrono::milliseconds(400))
{
}

Progress::~Progress()
{
    if (m_bWritten) std::fputs("\r\033[K", stderr);
}

void Progress::At(const std::string& what)
{
    if (!m_bTerminal || Clock::now() < m_next) return;
    std::fprintf(stderr, "\r\033[K%.70s", Printable(what).c_str());
    m_bWritten = true;
    m_next = Clock::now() + std::chrono::milliseconds(100);
}

CString LibraryPath(const std::string& path, bool bDirectory)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error).lexically_normal();
    CString strPath = error ? CString() : KXHost::FromSystemPath(absolute.string());
    if (bDirectory && !strPath.IsEmpty() && strPath.ReverseFind('\\') != strPath.GetLength() - 1)
        strPath += '\\';
    return strPath;
}

int Complain(const std::string& text)
{
    std::fprintf(stderr, "kx: %s\n", text.c_str());
    return Failed;
}

} // namespace kx::tool
