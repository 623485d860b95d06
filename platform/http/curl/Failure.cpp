#include "platform/http/curl/Curl.h"

namespace {

DWORD ErrorOf(CURLcode code)
{
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return ERROR_INTERNET_TIMEOUT;
    case CURLE_URL_MALFORMAT:
        return ERROR_INTERNET_INVALID_URL;
    case CURLE_UNSUPPORTED_PROTOCOL: // a redirect's: a URL's own scheme is looked at before
    case CURLE_TOO_MANY_REDIRECTS:
        return ERROR_HTTP_REDIRECT_FAILED;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return ERROR_INTERNET_NAME_NOT_RESOLVED;
    case CURLE_COULDNT_CONNECT:
        return ERROR_INTERNET_CANNOT_CONNECT;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
        return ERROR_INTERNET_CONNECTION_ABORTED;
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return ERROR_INTERNET_CONNECTION_RESET;
    case CURLE_PEER_FAILED_VERIFICATION:
        return ERROR_INTERNET_INVALID_CA;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
        return ERROR_INTERNET_SECURITY_CHANNEL_ERROR;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WRITE_ERROR: // the callbacks here refuse headers alone
        return ERROR_HTTP_INVALID_SERVER_RESPONSE;
    default:
        return ERROR_INTERNET_INTERNAL_ERROR;
    }
}

} // namespace

void kx::http::curl::Throw(CURLcode code, unsigned long dwContext, const char* pszText)
{
    if (code == CURLE_OUT_OF_MEMORY) AfxThrowMemoryException();
    Throw(ErrorOf(code), dwContext, pszText && *pszText ? pszText : curl_easy_strerror(code));
}

void kx::http::curl::Throw(CURLMcode code, unsigned long dwContext)
{
    if (code == CURLM_OUT_OF_MEMORY) AfxThrowMemoryException();
    Throw(ERROR_INTERNET_INTERNAL_ERROR, dwContext, curl_multi_strerror(code));
}

void kx::http::curl::Throw(DWORD dwError, unsigned long dwContext, const char* pszText)
{
    throw new CInternetException(dwError, dwContext, pszText);
}
