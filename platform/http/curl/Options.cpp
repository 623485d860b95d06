#include "platform/http/curl/Options.h"

#include "platform/http/curl/Transfer.h"

#include <algorithm>
#include <cstdlib>

namespace {

struct FreeUrl
{
    void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
};
struct FreeText
{
    void operator()(char* psz) const noexcept { curl_free(psz); }
};

const char* Setting(const char* pszName)
{
    const char* pszValue = secure_getenv(pszName);
    return pszValue && *pszValue ? pszValue : nullptr;
}

void SetAuthorities(CURL* easy)
{
    const char* pszBundle = Setting("CURL_CA_BUNDLE");
    if (const char* pszFile = pszBundle ? pszBundle : Setting("SSL_CERT_FILE"))
        kx::http::curl::Set(easy, CURLOPT_CAINFO, pszFile);
    if (const char* pszDir = pszBundle ? nullptr : Setting("SSL_CERT_DIR"))
        kx::http::curl::Set(easy, CURLOPT_CAPATH, pszDir);
}

} // namespace

std::string kx::http::curl::ToWire(std::string_view url)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const std::size_t scheme = url.find("://");
    const std::size_t host = scheme == url.npos ? 0 : scheme + 3;
    const std::size_t path = std::min(url.find_first_of("/?#", host), url.size());
    std::string wire(url.substr(0, path)); // a host with a blank is none
    for (const char ch : url.substr(path)) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte > ' ' && byte != 0x7F)
            wire += ch;
        else
            wire.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return wire;
}

bool kx::http::curl::CheckUrl(const char* pszUrl, unsigned long dwContext)
{
    const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
    if (!url) AfxThrowMemoryException();
    const CURLUcode code = pszUrl ? curl_url_set(url.get(), CURLUPART_URL, pszUrl, CURLU_NON_SUPPORT_SCHEME)
                                  : CURLUE_MALFORMED_INPUT;
    if (code == CURLUE_OUT_OF_MEMORY) AfxThrowMemoryException();
    if (code == CURLUE_BAD_SCHEME)
        Throw(ERROR_INTERNET_UNRECOGNIZED_SCHEME, dwContext, "The URL has no scheme.");
    if (code != CURLUE_OK) Throw(ERROR_INTERNET_INVALID_URL, dwContext, curl_url_strerror(code));

    char* pszScheme = nullptr;
    if (curl_url_get(url.get(), CURLUPART_SCHEME, &pszScheme, 0) != CURLUE_OK) AfxThrowMemoryException();
    const std::unique_ptr<char, FreeText> owner(pszScheme);
    const std::string_view scheme = pszScheme;
    if (scheme != "http" && scheme != "https")
        Throw(ERROR_INTERNET_UNRECOGNIZED_SCHEME, dwContext, "Only http and https are fetched.");
    return scheme == "https";
}

kx::http::curl::Easy kx::http::curl::MakeEasy(const char* pszAgent, bool bProxies)
{
    Easy owner(curl_easy_init());
    CURL* const easy = owner.get();
    if (!easy) AfxThrowMemoryException();
    if (pszAgent && *pszAgent) Set(easy, CURLOPT_USERAGENT, pszAgent);
    if (!bProxies) Set(easy, CURLOPT_PROXY, "");
    SetAuthorities(easy);
    Set(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    Set(easy, CURLOPT_FOLLOWLOCATION, 1L);
    Set(easy, CURLOPT_MAXREDIRS, 10L);
    Set(easy, CURLOPT_PATH_AS_IS, 1L);
    Set(easy, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    Set(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(easy, CURLOPT_NOSIGNAL, 1L);
    Set(easy, CURLOPT_QUICK_EXIT, 1L); // a name server that is silent must not hold up Close
    Set(easy, CURLOPT_BUFFERSIZE, static_cast<long>(Transfer::kAhead));
    Set(easy, CURLOPT_HEADERFUNCTION, Transfer::OnHeader);
    Set(easy, CURLOPT_WRITEFUNCTION, Transfer::OnBody);
    return owner;
}
