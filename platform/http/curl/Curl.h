#pragma once

#include "include/platform/Internet.h"

#include <curl/curl.h>
#include <memory>

namespace kx::http::curl {

// Throw the framework's exception for what libcurl reports, with its text unless there is a better one.
[[noreturn]] void Throw(CURLcode code, unsigned long dwContext, const char* pszText = nullptr);
[[noreturn]] void Throw(CURLMcode code, unsigned long dwContext);

// For what this layer itself refuses.
[[noreturn]] void Throw(DWORD dwError, unsigned long dwContext, const char* pszText);

struct CloseEasy
{
    void operator()(CURL* easy) const noexcept { curl_easy_cleanup(easy); }
};
struct CloseMulti
{
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
};
using Easy = std::unique_ptr<CURL, CloseEasy>;
using Multi = std::unique_ptr<CURLM, CloseMulti>;

// Sets an option or throws for lack of memory.
template <class Value>
void Set(CURL* easy, CURLoption option, Value value)
{
    if (const CURLcode code = curl_easy_setopt(easy, option, value); code != CURLE_OK) Throw(code, 0);
}

// A fact about a transfer; `T()` where there is none.
template <class T>
T Get(CURL* easy, CURLINFO info) noexcept
{
    T value{};
    curl_easy_getinfo(easy, info, &value);
    return value;
}

} // namespace kx::http::curl
