#include "tools/KXCrashReport/Upload.h"

#include <cstdlib>
#include <curl/curl.h>
#include <memory>
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

} // namespace

bool Upload(const CommandLine& line, const ReportFiles& files)
{
    const char* pszUrl = std::getenv("KX_CRASH_URL");
    if (!pszUrl || !*pszUrl || curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) return false;
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), curl_easy_cleanup);
    if (!curl) return false;
    const std::unique_ptr<curl_mime, decltype(&curl_mime_free)> form(curl_mime_init(curl.get()),
                                                                     curl_mime_free);
    AddText(form.get(), "app", line.app);
    AddText(form.get(), "contact", line.contact);
    const bool bDump = AddFile(form.get(), "dump", files.dump);
    const bool bText = AddFile(form.get(), "report", files.text);
    if (!bDump && !bText) return false;
    curl_easy_setopt(curl.get(), CURLOPT_URL, pszUrl);
    curl_easy_setopt(curl.get(), CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl.get(), CURLOPT_MIMEPOST, form.get());
    curl_easy_setopt(curl.get(), CURLOPT_CONNECTTIMEOUT, 10L);
    curl_easy_setopt(curl.get(), CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, Ignore);
    return curl_easy_perform(curl.get()) == CURLE_OK;
}

} // namespace kx::report
