#include "tests/platform/http/Fetch.h"
#include "tests/support/HttpServer.h"
#include "tests/support/RawServer.h"

#include <sys/socket.h>

namespace {

using test::Fetch;

// A server with a certificate of its own making.
struct Secure : testing::Test
{
    void SetUp() override
    {
        const std::string command =
            "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes "
            "-days 2 -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 -keyout " +
            key + " -out " + certificate + " 2>/dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0);
        const auto handlers = [this](httplib::Server& http) {
            http.Get("/", [](const auto&, auto& response) { response.set_content("secret", "text/plain"); });
            http.Get("/leave", [this](const auto&, auto& response) { response.set_redirect(plain.Url()); });
            http.Get("/stay", [](const auto&, auto& response) { response.set_redirect("/"); });
        };
        server.emplace(handlers, std::make_unique<httplib::SSLServer>(certificate.c_str(), key.c_str()));
    }
    ~Secure() override
    {
        unsetenv("SSL_CERT_FILE");
        unsetenv("CURL_CA_BUNDLE");
    }
    std::string Url(std::string_view path) const { return server->Url(path, "https"); }

    test::TempDir dir;
    const std::string key = dir.Path("key.pem");
    const std::string certificate = dir.Path("certificate.pem");
    test::RawServer plain{test::RawServer::Answering("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nopen")};
    std::optional<test::HttpServer> server;
};

TEST_F(Secure, TrustsWhomTheSystemOrTheHostTrusts)
{
    const auto refused = Fetch(Url("/"));
    EXPECT_EQ(refused.error, ERROR_INTERNET_INVALID_CA);
    EXPECT_EQ(refused.body, "");
    setenv("CURL_CA_BUNDLE", "", 1); // an empty one is none
    setenv("SSL_CERT_FILE", certificate.c_str(), 1);
    EXPECT_EQ(Fetch(Url("/")).body, "secret");
    EXPECT_EQ(Fetch("https://localhost:" + std::to_string(server->Port()) + "/").error,
              ERROR_INTERNET_INVALID_CA);
    setenv("CURL_CA_BUNDLE", dir.Path("none").c_str(), 1); // comes first
    EXPECT_EQ(Fetch(Url("/")).error, ERROR_INTERNET_SECURITY_CHANNEL_ERROR);
}

TEST_F(Secure, IsNotLeftByARedirect)
{
    setenv("SSL_CERT_FILE", certificate.c_str(), 1);
    EXPECT_EQ(Fetch(Url("/stay")).body, "secret");
    EXPECT_EQ(Fetch(Url("/leave")).error, ERROR_HTTP_REDIRECT_FAILED);
    EXPECT_EQ(plain.Connections(), 0);
    test::RawServer entrance(test::RawServer::Answering("HTTP/1.1 302 Found\r\nLocation: " + Url("/") +
                                                        "\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_EQ(Fetch(entrance.Url()).body, "secret");
}

TEST(SecureHello, OffersHttp11Alone)
{
    std::string hello(4096, '\0');
    {
        const test::RawServer server([&](test::Peer& peer) {
            const ssize_t nRead = recv(peer.Socket(), hello.data(), hello.size(), 0);
            hello.resize(nRead > 0 ? static_cast<std::size_t>(nRead) : 0);
        });
        Fetch("https://" + server.Host() + "/");
    }
    EXPECT_THAT(hello, testing::HasSubstr(std::string("\0\x09\x08http/1.1", 11))); // a list of one
}

// The goodbye to a server that is gone must not end the process.
TEST_F(Secure, OutlivesAServerThatIsGone)
{
    setenv("SSL_CERT_FILE", certificate.c_str(), 1);
    CInternetSession session;
    EXPECT_EQ(Fetch(session, Url("/")).body, "secret");
    const std::string url = Url("/");
    server.reset();
    EXPECT_EQ(Fetch(session, url).error, ERROR_INTERNET_CANNOT_CONNECT);
    session.Close();
}

} // namespace
