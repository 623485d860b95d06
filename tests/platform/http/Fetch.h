#pragma once

#include "include/platform/Internet.h"

#include "tests/support/Test.h"

namespace test {

inline const std::string kOk = "HTTP/1.1 200 OK\r\n";

// The outcome of fetching a URL.
struct Fetched
{
    std::optional<unsigned long> length; // as announced
    std::string body;
    DWORD error = 0; // of the exception that ended it
    bool opened = false;
};

struct Failure
{
    DWORD error = 0; // 0: none
    std::uintptr_t context = 0;
    std::string why;
};

// Takes what a call throws, which tells why.
template <class Call>
Failure FailureOf(Call call)
{
    try {
        call();
        return {};
    } catch (CInternetException* exception) {
        std::array<char, 200> why{};
        UINT help = 9;
        EXPECT_TRUE(exception->GetErrorMessage(why.data(), why.size(), &help)) << exception->m_dwError;
        EXPECT_EQ(help, 0u);
        EXPECT_FALSE(exception->GetErrorMessage(why.data(), 0, nullptr));
        EXPECT_TRUE(exception->GetErrorMessage(&why.back(), 1));
        const Failure failure{exception->m_dwError, exception->m_dwContext, why.data()};
        exception->Delete();
        return failure;
    }
}

template <class Call>
DWORD ErrorOf(Call call)
{
    return FailureOf(call).error;
}

inline std::unique_ptr<CHttpFile> Open(CInternetSession& session, const std::string& url)
{
    return std::unique_ptr<CHttpFile>(session.OpenURL(url.c_str(), 7));
}

inline void ReadAll(CHttpFile& file, std::string& body)
{
    std::array<char, 2048> block;
    while (const UINT got = file.Read(block.data(), block.size()))
        body.append(block.data(), got);
}

inline Fetched Fetch(CInternetSession& session, const std::string& url)
{
    Fetched result;
    result.error = ErrorOf([&] {
        const auto file = Open(session, url);
        result.opened = true;
        unsigned long length = 0;
        if (file->QueryInfo(HTTP_QUERY_CONTENT_LENGTH, length)) result.length = length;
        ReadAll(*file, result.body);
    });
    return result;
}

inline Fetched Fetch(const std::string& url)
{
    CInternetSession session;
    return Fetch(session, url);
}

} // namespace test
