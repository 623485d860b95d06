#include "tools/KXCrashReport/Upload.h"

#include <arpa/inet.h>
#include <cstdlib>
#include <curl/curl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace kx::report {

namespace {

void AddText(curl_mime* form, const char* pszName, const std::string& text)
{
    curl_mimepart* part = curl_mime_addpart(form);
    curl_mime_name(part, pszName);
    curl_mime_data(part, text.data(), text.size());
}

bool AddFile(curl_mime* form, const char* pszName, const std::string& path)
{
    if (access(path.c_str(), R_OK) != 0) return false;
    curl_mimepart* part = curl_mime_addpart(form);
    curl_mime_name(part, pszName);
    return curl_mime_filedata(part, path.c_str()) == CURLE_OK;
}

std::size_t Ignore(char*, std::size_t size, std::size_t count, void*)
{
    return size * count;
}

std::string Part(CURLU* url, CURLUPart part)
{
    char* pszPart = nullptr;
    if (curl_url_get(url, part, &pszPart, 0) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> text(pszPart, curl_free);
    return text.get();
}

bool IsLoopback(const std::string& host)
{
    in_addr address{};
    return host == "localhost" || host == "[::1]" ||
           (inet_pton(AF_INET, host.c_str(), &address) == 1 && ntohl(address.s_addr) >> 24 == 127);
}

// A dump holds what the program had in memory: nobody on the way is to read it, unless that was asked for.
bool MayGoTo(CURLU* url)
{
    const std::string scheme = Part(url, CURLUPART_SCHEME);
    const char* pszPlain = std::getenv("KX_CRASH_PLAIN");
    return scheme == "https" || (scheme == "http" && (IsLoopback(Part(url, CURLUPART_HOST)) ||
                                                      (pszPlain && std::string_view(pszPlain) == "1")));
}

// Only a server that says so has taken the files.
bool IsTaken(CURL* curl)
{
    long nCode = 0;
    return curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &nCode) == CURLE_OK && nCode / 100 == 2;
}

} // namespace

bool Upload(const CommandLine& line, const ReportFiles& files)
{
    const char* pszUrl = std::getenv("KX_CRASH_URL");
    if (!pszUrl || !*pszUrl || curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) return false;
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), curl_easy_cleanup);
    if (!curl || curl_url_set(url.get(), CURLUPART_URL, pszUrl, CURLU_DEFAULT_SCHEME) != CURLUE_OK ||
        !MayGoTo(url.get()))
        return false;
    const std::unique_ptr<curl_mime, decltype(&curl_mime_free)> form(curl_mime_init(curl.get()),
                                                                     curl_mime_free);
    AddText(form.get(), "app", line.app);
    AddText(form.get(), "contact", line.contact);
    const bool bDump = AddFile(form.get(), "dump", files.dump);
    const bool bText = AddFile(form.get(), "report", files.text);
    if (!bDump && !bText) return false;
    curl_easy_setopt(curl.get(), CURLOPT_CURLU, url.get());
    if (IsLoopback(Part(url.get(), CURLUPART_HOST))) curl_easy_setopt(curl.get(), CURLOPT_NOPROXY, "*");
    curl_easy_setopt(curl.get(), CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl.get(), CURLOPT_MIMEPOST, form.get());
    curl_easy_setopt(curl.get(), CURLOPT_CONNECTTIMEOUT, 10L);
    curl_easy_setopt(curl.get(), CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, Ignore);
    return curl_easy_perform(curl.get()) == CURLE_OK && IsTaken(curl.get());
}

} // namespace kx::report
