#pragma once

#include "platform/http/curl/Curl.h"

#include <string>
#include <string_view>

namespace kx::http::curl {

// An URL with blanks and control characters behind its host percent-encoded, which a request line can't hold.
std::string ToWire(std::string_view url);

// Whether an URL may be fetched and is one that can be sent; throws CInternetException* if not. True for
// `https`.
bool CheckUrl(const char* pszUrl, unsigned long dwContext);

// Makes a handle with what all transfers have in common.
Easy MakeEasy(const char* pszAgent, bool bProxies);

} // namespace kx::http::curl
