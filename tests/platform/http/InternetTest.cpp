#include "tests/platform/http/Fetch.h"
#include "tests/support/RawServer.h"

namespace {

using namespace test;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Case
{
    const char* name;
    std::string response; // after which the server hangs up
    std::optional<unsigned long> length;
    std::string body;
    DWORD error = 0;
    bool opened = true;
};

constexpr std::nullopt_t kNone = std::nullopt; // no length is told
const std::vector<Case> kCases = {
    {"length", kOk + "Content-Length: 5\r\n\r\nhello", 5, "hello"},
    {"empty", kOk + "Content-Length: 0\r\n\r\n", 0, ""},
    {"chunked", kOk + "Transfer-Encoding: chunked\r\n\r\n3\r\nhel\r\n2\r\nlo\r\n0\r\n\r\n", {}, "hello"},
    {"chunked with a length too",
     kOk + "Content-Length: 99\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nhi\r\n0\r\n\r\n", kNone, "hi"},
    {"until the end", kOk + "\r\nhello", kNone, "hello"},
    {"length beyond 32 bits", kOk + "Content-Length: 5000000000\r\n\r\nhello", 5'000'000'000, "hello",
     ERROR_INTERNET_CONNECTION_ABORTED},
    {"cut short", kOk + "Content-Length: 9\r\n\r\nhello", 9, "hello", ERROR_INTERNET_CONNECTION_ABORTED},
    {"cut in a chunk", kOk + "Transfer-Encoding: chunked\r\n\r\n9\r\nhello", kNone, "hello",
     ERROR_INTERNET_CONNECTION_ABORTED},
    {"more than announced", kOk + "Content-Length: 2\r\n\r\nhello", 2, "he"},
    {"length that is none", kOk + "Content-Length: many\r\n\r\nhello", kNone, "",
     ERROR_HTTP_INVALID_SERVER_RESPONSE, false},
    {"error page", "HTTP/1.1 404 No\r\nContent-Length: 4\r\n\r\ngone", 4, "gone"},
    {"asking for a name", "HTTP/1.1 401 No\r\nWWW-Authenticate: Basic\r\nContent-Length: 3\r\n\r\nwho", 3,
     "who"},
    {"no content", "HTTP/1.1 204 None\r\n\r\n", 0, ""},
    {"interim response", "HTTP/1.1 103 Hints\r\nLink: </x>\r\n\r\n" + kOk + "Content-Length: 2\r\n\r\nhi", 2,
     "hi"},
    {"moved nowhere", "HTTP/1.1 301 Moved\r\nContent-Length: 2\r\n\r\nhi", 2, "hi"},
    {"packed stays packed", kOk + "Content-Encoding: gzip\r\nContent-Length: 4\r\n\r\n\x1F\x8B\x08z", 4,
     "\x1F\x8B\x08z"},
    {"nothing", "", {}, "", ERROR_INTERNET_CONNECTION_ABORTED, false},
    {"no HTTP", "hello, this is another protocol\r\n\r\n", {}, "", ERROR_HTTP_INVALID_SERVER_RESPONSE, false},
};

TEST(Internet, DeliversWhatTheServerSends)
{
    for (const auto& [name, response, length, body, error, opened] : kCases) {
        RawServer server(RawServer::Answering(response, true));
        EXPECT_THAT(Fetch(server.Url()), testing::FieldsAre(length, body, error, opened)) << name;
    }
}

std::string Redirect(const std::string& to)
{
    return "HTTP/1.1 302 Found\r\nlocation: " + to + "\r\nContent-Length: 6\r\n\r\nlook! ";
}

TEST(Internet, FollowsRedirectsToHttpAlone)
{
    RawServer other(RawServer::Answering(kOk + "Content-Length: 3\r\n\r\nend"));
    std::string location;
    std::atomic<int> nAsked = 0;
    RawServer server([&](Peer& peer) {
        for (std::string request; !(request = peer.Request()).empty();) {
            ++nAsked;
            peer.Send(request.starts_with("GET /next ") ? kOk + "Content-Length: 2\r\n\r\nhi"
                                                        : Redirect(location));
        }
    });
    const auto fetch = [&](const std::string& to) {
        location = to;
        return Fetch(server.Url("/from"));
    };
    EXPECT_EQ(fetch("/next").body, "hi");
    EXPECT_EQ(fetch(other.Url()).length, 3u);
    for (const char* pszTo :
         {"file:///etc/hostname", "ftp://127.0.0.1/x", "gopher://127.0.0.1:1/x", "/from"}) {
        nAsked = 0;
        const auto result = fetch(pszTo);
        EXPECT_EQ(result.error, ERROR_HTTP_REDIRECT_FAILED) << pszTo;
        EXPECT_EQ(result.body, "") << pszTo;
    }
    EXPECT_EQ(nAsked, 11); // ten times on
}

// Answers with what it was asked.
void Echo(Peer& peer)
{
    for (std::string request; !(request = peer.Request()).empty();)
        peer.Send(kOk + "Content-Length: " + std::to_string(request.size()) + "\r\n\r\n" + request);
}

TEST(Internet, SendsTheUrlAsItIs)
{
    RawServer server(Echo);
    const std::string path = "/a/../b%20c/?\xD6\xD0\xCE\xC4&x='\"<>{}|\\^`&y=%zz&userid=";
    const std::string request = Fetch(server.Url(path) + "#part").body;
    EXPECT_EQ(request.substr(0, request.find('\n')), "GET " + path + " HTTP/1.1\r");
    EXPECT_THAT(Fetch(server.Url("/\xD6\xD0?")).body, HasSubstr("GET /%d6%d0? HTTP/1.1\r\n"));
    EXPECT_THAT(Fetch(server.Url("/a b?v=1.0 beta\r\nX: 1\t\x7F ")).body,
                HasSubstr("GET /a%20b?v=1.0%20beta%0D%0AX:%201%09%7F%20 HTTP/1.1\r\n"));
    EXPECT_THAT(request, HasSubstr("\r\nHost: " + server.Host() + "\r\n"));
    EXPECT_THAT(request, Not(HasSubstr("User-Agent")));
    EXPECT_THAT(request, Not(HasSubstr("Accept-Encoding")));
    CInternetSession named("reader/2");
    EXPECT_THAT(Fetch(named, server.Url()).body, HasSubstr("\r\nUser-Agent: reader/2\r\n"));
}

TEST(Internet, RefusesUrlsThatItCannotSendAndTellsWhy)
{
    RawServer server(Echo);
    const std::string host = server.Host();
    const std::vector<std::pair<std::string, DWORD>> urls = {
        {"", ERROR_INTERNET_UNRECOGNIZED_SCHEME},
        {"abc&optypeval=3", ERROR_INTERNET_UNRECOGNIZED_SCHEME},
        {host + "/x", ERROR_INTERNET_INVALID_URL},
        {"file:///etc/hostname", ERROR_INTERNET_UNRECOGNIZED_SCHEME},
        {"ftp://" + host + "/x", ERROR_INTERNET_UNRECOGNIZED_SCHEME},
        {"http://", ERROR_INTERNET_INVALID_URL},
        {"http://127.0.0 .1/", ERROR_INTERNET_INVALID_URL},
        {"http://127.0.0.1:99999/", ERROR_INTERNET_INVALID_URL},
        {std::string(9'000'000, 'a'), ERROR_INTERNET_INVALID_URL},
    };
    for (const auto& [url, error] : urls)
        EXPECT_EQ(Fetch(url).error, error) << url.substr(0, 80);
    CInternetSession session;
    EXPECT_EQ(ErrorOf([&] { session.OpenURL(nullptr); }), ERROR_INTERNET_INVALID_URL);
    EXPECT_EQ(server.Connections(), 0);
    const std::string gone = RawServer(Echo).Url();
    const auto failure = FailureOf([&] { session.OpenURL(gone.c_str(), 7); });
    EXPECT_EQ(failure.error, ERROR_INTERNET_CANNOT_CONNECT);
    EXPECT_EQ(failure.context, 7u);
    EXPECT_THAT(failure.why, HasSubstr("127.0.0.1"));
}

// A server may end it between two files at any time.
TEST(Internet, KeepsOneConnectionUntilItEnds)
{
    RawServer server(Echo);
    CInternetSession session;
    for (int n = 0; n < 5; ++n)
        EXPECT_EQ(Fetch(session, server.Url()).error, 0u);
    EXPECT_EQ(server.Connections(), 1);
    Open(session, server.Url("/long"))->Close(); // not read to its end
    EXPECT_THAT(Fetch(session, server.Url("/next")).body, StartsWith("GET /next "));

    RawServer ending(RawServer::Answering(kOk + "Content-Length: 2\r\n\r\nhi", true));
    for (int n = 0; n < 3; ++n)
        EXPECT_EQ(Fetch(session, ending.Url()).body, "hi");
    EXPECT_EQ(ending.Connections(), 3);
}

TEST(Internet, KeepsNamesAndPasswordsToTheirHost)
{
    RawServer other(Echo);
    RawServer server([&](Peer& peer) {
        for (std::string request; !(request = peer.Request()).empty();)
            peer.Send(request.find("Authorization: Basic bWU6cHc=") != std::string::npos
                          ? Redirect(other.Url())
                          : kOk + "Content-Length: " + std::to_string(request.size()) + "\r\n\r\n" + request);
    });
    CInternetSession session;
    for (const std::string& url : {"http://me:pw@" + server.Host() + "/", server.Url(), other.Url()})
        EXPECT_THAT(Fetch(session, url).body, Not(HasSubstr("Authorization"))) << url;
}

TEST(Internet, UsesTheProxyOfTheEnvironment)
{
    RawServer proxy(Echo);
    RawServer server(RawServer::Answering(kOk + "Content-Length: 2\r\n\r\nhi"));
    setenv("http_proxy", ("http://" + proxy.Host()).c_str(), 1);
    EXPECT_THAT(Fetch("http://somewhere.test/x").body, HasSubstr("GET http://somewhere.test/x HTTP/1.1"));
    {
        CInternetSession direct(nullptr, 1, INTERNET_OPEN_TYPE_DIRECT);
        EXPECT_EQ(Fetch(direct, server.Url()).body, "hi");
    }
    setenv("no_proxy", "127.0.0.1", 1);
    EXPECT_EQ(Fetch(server.Url()).body, "hi");
    RawServer secure([](Peer& peer) { // its own answer is none of what was asked for
        peer.Send(peer.Request().starts_with("CONNECT") ? kOk + "\r\n" : Redirect("https://somewhere.test/"));
    });
    for (const char* pszName : {"http_proxy", "https_proxy"})
        setenv(pszName, ("http://" + secure.Host()).c_str(), 1);
    EXPECT_FALSE(Fetch("http://somewhere.test/").opened);
    for (const char* pszName : {"http_proxy", "https_proxy", "no_proxy"})
        unsetenv(pszName);
}

TEST(Internet, RefusesWhatItDoesNotOffer)
{
    const auto refuses = [](auto call) {
        try {
            call();
            return false;
        } catch (CInvalidArgException* exception) {
            exception->Delete();
            return true;
        }
    };
    CInternetSession session;
    EXPECT_TRUE(refuses([&] { session.OpenURL("http://127.0.0.1/", 1, 0, "X: y\r\n", 6); }));
    EXPECT_TRUE(refuses([] { CInternetSession proxied(nullptr, 1, 3, "proxy"); }));
    RawServer server(Echo);
    const auto file = Open(session, server.Url());
    unsigned long number = 5;
    EXPECT_FALSE(file->QueryInfo(19, number));
    EXPECT_EQ(number, 5u);
    file->Close();
    const auto failure = FailureOf([&] { file->Read(&number, 1); });
    EXPECT_EQ(failure.error, ERROR_INTERNET_INCORRECT_HANDLE_STATE);
    EXPECT_EQ(failure.context, 0u);
}

} // namespace
