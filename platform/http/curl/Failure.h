#pragma once

#include "include/platform/Internet.h"

#include <curl/curl.h>

namespace kx::http::curl {

// Throw the framework's exception for what libcurl reports, with its text unless there is a better one.
[[noreturn]] void Throw(CURLcode code, unsigned long dwContext, const char* pszText = nullptr);
[[noreturn]] void Throw(CURLMcode code, unsigned long dwContext);

// For what this layer itself refuses.
[[noreturn]] void Throw(DWORD dwError, unsigned long dwContext, const char* pszText);

} // namespace kx::http::curl
