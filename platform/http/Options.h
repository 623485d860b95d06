#pragma once

#include "platform/http/Curl.h"

namespace kx::http {

// Whether an URL may be fetched and is one that can be sent; throws CInternetException* if not. True for
// `https`.
bool CheckUrl(const char* pszUrl, unsigned long dwContext);

// Makes a handle with what all transfers have in common.
Easy MakeEasy(const char* pszAgent, bool bProxies);

} // namespace kx::http
