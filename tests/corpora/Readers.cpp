#include "tests/corpora/Readers.h"

#include "include/KXCommonClass.h"
#include "tests/support/Com.h"

namespace fs = std::filesystem;

namespace corpora {

namespace {

constexpr int kMostElements = 10'000;
constexpr std::size_t kMostKeys = 10'000;

bool IsListed(const fs::path& file, const char* pszList)
{
    std::ifstream list(file.parent_path() / pszList);
    for (std::string line; std::getline(list, line);)
        if (line == file.filename()) return true;
    return false;
}

void Walk(CKXXmlDomElement element, int& nLeft)
{
    if (!element.IsValid() || --nLeft < 0) return;
    element.GetText();
    for (const CKXXmlDomElement& child : element.GetChilds("*"))
        Walk(child, nLeft);
}

Outcome ReadDocument(const fs::path& file)
{
    const test::Com com;
    CKXXmlDomDocument document;
    if (!document.Load(ToPlatform(file).c_str()))
        return IsListed(file, "accepted.txt")
                   ? Outcome{Verdict::Wrong, "listed as accepted"}
                   : Outcome{Verdict::Refused, "not well-formed, or beyond a limit"};
    int nLeft = kMostElements;
    Walk(document.GetDocumentElement(), nLeft);
    return IsListed(file, "refused.txt") ? Outcome{Verdict::Wrong, "listed as refused"} : Outcome{};
}

// Every key, found as the file's lines have it.
Outcome ReadIni(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    const std::string path = ToPlatform(file);
    std::string section;
    std::size_t nKeys = 0, nFound = 0;
    for (std::string line; std::getline(in, line) && nKeys < kMostKeys;) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::size_t nClose = line.find(']');
        if (!line.empty() && line[0] == '[' && nClose != std::string::npos)
            section = line.substr(1, nClose - 1);
        const std::size_t nEquals = line.find('=');
        if (nEquals == std::string::npos || line[0] == ';' || line[0] == '[') continue;
        char value[4096];
        SetLastError(ERROR_SUCCESS);
        GetPrivateProfileStringA(section.c_str(), line.substr(0, nEquals).c_str(), "", value, sizeof value,
                                 path.c_str());
        ++nKeys;
        nFound += GetLastError() == ERROR_SUCCESS;
    }
    if (nFound > 0) return {};
    return {Verdict::Refused, nKeys == 0 ? "no key" : "none of its keys is found"};
}

Outcome ReadBinary(const fs::path& file)
{
    const std::string path = ToPlatform(file);
    const DWORD nSize = GetFileVersionInfoSizeA(path.c_str(), nullptr);
    std::vector<char> block(nSize);
    const bool bVersion = nSize > 0 && GetFileVersionInfoA(path.c_str(), 0, nSize, block.data()) != 0;
    const HMODULE hModule = LoadLibraryA(path.c_str());
    if (hModule) FreeLibrary(hModule);
    if (bVersion || hModule) return {};
    return {Verdict::Refused, "neither a version nor resources"};
}

} // namespace

std::string ToPlatform(const fs::path& file)
{
    std::string path = "C:" + fs::absolute(file).string();
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

Outcome Read(const fs::path& file, const fs::path& saved)
{
    const auto isOneOf = [&](std::initializer_list<const char*> all) {
        return std::ranges::any_of(
            all, [&](const char* psz) { return strcasecmp(psz, file.extension().c_str()) == 0; });
    };
    if (isOneOf({".bmp", ".png", ".jpg", ".jpeg", ".gif", ".tif", ".tiff", ".ico"}))
        return ReadPicture(file, saved);
    if (isOneOf({".xml", ".xhtml", ".xsd", ".xsl", ".rng", ".rdf", ".svg", ".html", ".htm", ".sct"}))
        return ReadDocument(file);
    if (isOneOf({".ini", ".inf", ".cfg"})) return ReadIni(file);
    std::string head(16, '\0');
    std::ifstream(file, std::ios::binary).read(head.data(), 16);
    const bool bBinary =
        head.starts_with("MZ") || head.starts_with("\177ELF") || head.starts_with("GVariant");
    return bBinary ? ReadBinary(file) : Outcome{Verdict::Unknown};
}

} // namespace corpora
