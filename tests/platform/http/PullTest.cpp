#include "tests/platform/http/Fetch.h"
#include "tests/support/RawServer.h"

namespace {

using namespace test;

// A server that sends a part of its answer and then nothing more.
struct SilentServer
{
    explicit SilentServer(std::string part) : raw(RawServer::Stalling(part, [this] { sent.release(); })) {}
    std::string Url() const { return raw.Url(); }

    std::counting_semaphore<> sent{0};
    const RawServer raw;
};

const std::vector<std::string> kSilences = {"", "HTTP/1.1 2", kOk + "Content-Length: 9\r\n\r\n",
                                            kOk + "Content-Length: 9\r\n\r\nhello"};

// Runs a fetch on another thread.
std::future<Fetched> Begin(CInternetSession& session, const std::string& url)
{
    return std::async(std::launch::async, [&session, url] { return Fetch(session, url); });
}

// Also one that could lead elsewhere, or names a place, and doesn't.
TEST(Pull, OpensBeforeTheBodyIsThere)
{
    for (const std::string& head : {kOk, std::string("HTTP/1.1 300 Choose\r\n"), kOk + "Location: /x\r\n"}) {
        std::binary_semaphore go{0};
        RawServer server([&](Peer& peer) {
            peer.Request();
            peer.Send(head + "Content-Length: 4\r\n\r\n");
            for (const char* pszPiece : {"a", "bc", "d"}) {
                go.acquire();
                peer.Send(pszPiece);
            }
        });
        CInternetSession session;
        const auto file = Open(session, server.Url());
        std::array<char, 2048> block;
        for (const UINT size : {1u, 2u, 1u, 0u}) {
            go.release();
            EXPECT_EQ(file->Read(block.data(), block.size()), size);
            EXPECT_EQ(file->Read(block.data(), 0), 0u);
        }
    }
}

TEST(Pull, ACancelWakesWhoWaitsAndLeavesWhatHasArrived)
{
    for (const std::string& part : kSilences) {
        SilentServer server(part);
        CInternetSession session;
        auto fetched = Begin(session, server.Url());
        server.sent.acquire();
        session.Cancel();
        const auto result = fetched.get();
        EXPECT_EQ(result.error, ERROR_INTERNET_OPERATION_CANCELLED) << part;
        EXPECT_EQ(Fetch(session, server.Url()).error, ERROR_INTERNET_OPERATION_CANCELLED);
    }
    SilentServer server(kSilences.back());
    CInternetSession session;
    const auto file = Open(session, server.Url());
    std::array<char, 2048> block;
    ASSERT_EQ(file->Read(block.data(), 2), 2u);
    session.Cancel();
    EXPECT_EQ(file->Read(block.data(), block.size()), 3u);
    EXPECT_EQ(ErrorOf([&] { file->Read(block.data(), 1); }), ERROR_INTERNET_OPERATION_CANCELLED);
}

// A new connection has times of its own to look up at, an old one has none.
TEST(Pull, ACancelWakesWhoWaitsOnAnOldConnection)
{
    std::binary_semaphore asked{0};
    RawServer server([&](Peer& peer) {
        peer.Request();
        peer.Send(kOk + "Content-Length: 0\r\n\r\n");
        peer.Request();
        asked.release();
        peer.Request();
    });
    CInternetSession session;
    EXPECT_EQ(Fetch(session, server.Url()).error, 0u);
    auto fetched = Begin(session, server.Url());
    asked.acquire();
    const auto begin = std::chrono::steady_clock::now();
    session.Cancel();
    EXPECT_EQ(fetched.get().error, ERROR_INTERNET_OPERATION_CANCELLED);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

TEST(Pull, AMinutesSilenceOfAServerIsAFailureAndOneOfItsReaderIsNone)
{
    const VirtualClock clock;
    for (const std::string& part : kSilences) {
        SilentServer server(part);
        CInternetSession session;
        auto fetched = Begin(session, server.Url());
        server.sent.acquire();
        while (fetched.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            KXHost::AdvanceClock(20'000);
        EXPECT_EQ(fetched.get().error, ERROR_INTERNET_TIMEOUT) << part;
    }
    const RawServer server(RawServer::Answering(kOk + "Content-Length: 5\r\n\r\nxxxxx"));
    CInternetSession session;
    const auto file = Open(session, server.Url());
    int nRead = 0;
    for (char byte; file->Read(&byte, 1) == 1; ++nRead)
        KXHost::AdvanceClock(59'000);
    EXPECT_EQ(nRead, 5);
}

TEST(Pull, ASessionThatClosesOrEndsEndsItsFiles)
{
    RawServer server(RawServer::Answering(kOk + "Content-Length: 3\r\n\r\nabc"));
    std::unique_ptr<CHttpFile> file = Open(*std::make_unique<CInternetSession>(), server.Url());
    std::array<char, 9> block;
    const auto read = [&] { file->Read(block.data(), 9); };
    EXPECT_EQ(ErrorOf(read), ERROR_INTERNET_INCORRECT_HANDLE_STATE);
    unsigned long length = 5;
    {
        CInternetSession session;
        file = Open(session, server.Url());
        session.Close();
        session.Close();
        session.Cancel();
        EXPECT_EQ(Fetch(session, server.Url()).error, ERROR_INTERNET_INCORRECT_HANDLE_STATE);
    }
    EXPECT_EQ(ErrorOf(read), ERROR_INTERNET_INCORRECT_HANDLE_STATE);
    file->Close();
    file->Close();
    EXPECT_FALSE(file->QueryInfo(HTTP_QUERY_CONTENT_LENGTH, length));
    EXPECT_EQ(ErrorOf(read), ERROR_INTERNET_INCORRECT_HANDLE_STATE);
}

// Bytes for a file that nobody reads stay with its server, also while another file moves on.
TEST(Pull, HoldsNoMoreThanABlockAhead)
{
    constexpr std::size_t kPiece = 64 * 1024;
    std::atomic<std::size_t> sent = 0;
    RawServer endless([&](Peer& peer) {
        peer.Request();
        peer.Send(kOk + "\r\n");
        while (peer.Send(std::string(kPiece, 'x')))
            sent += kPiece;
    });
    const std::string body(96 << 20, 'y');
    RawServer server([&](Peer& peer) {
        peer.Request();
        peer.Send(kOk + "\r\n");
        peer.Send(body);
    });
    CInternetSession session;
    const auto idle = Open(session, endless.Url());
    EXPECT_EQ(Fetch(session, server.Url()).body.size(), body.size());
    EXPECT_LT(sent, 16u << 20); // what the system's own buffers take
    std::array<char, 2048> block;
    const std::size_t before = sent;
    for (std::size_t got = 0; got < 32u << 20;) // and it goes on where it stopped
        got += idle->Read(block.data(), block.size());
    EXPECT_GT(sent, before);
}

TEST(Pull, TwoFilesOfASessionAreReadInTurns)
{
    std::string body;
    for (int n = 0; n < 100'000; ++n)
        body += std::to_string(n);
    const auto answering =
        RawServer::Answering(kOk + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    const RawServer one(answering), other(answering);
    CInternetSession session;
    const auto a = Open(session, one.Url()), b = Open(session, other.Url());
    std::string first, second;
    std::array<char, 3000> block;
    while (first.size() < body.size()) {
        first.append(block.data(), a->Read(block.data(), block.size()));
        second.append(block.data(), b->Read(block.data(), 1000));
    }
    ReadAll(*b, second);
    EXPECT_TRUE(first == body);
    EXPECT_TRUE(second == body);
}

TEST(Pull, EndsAnAnswerOfEndlessHeaders)
{
    const std::pair<std::string, std::string> answers[] = {
        {kOk, "X-More: " + std::string(1000, 'x') + "\r\n"}, {"", "HTTP/1.1 103 Wait\r\n\r\n"}};
    for (const auto& [begin, more] : answers) {
        const RawServer server([&](Peer& peer) {
            peer.Request();
            for (std::string part = begin; peer.Send(part);)
                part = more;
        });
        EXPECT_EQ(Fetch(server.Url()).error, ERROR_HTTP_INVALID_SERVER_RESPONSE) << more;
    }
    RawServer lines([](Peer& peer) {
        const std::string request = peer.Request();
        const auto nLength = static_cast<std::size_t>(std::stoi(request.substr(5)));
        peer.Send(kOk + "X-Long: " + std::string(nLength, 'x') + "\r\nContent-Length: 2\r\n\r\nok");
    });
    EXPECT_EQ(Fetch(lines.Url("/100000")).body, "ok");
    EXPECT_EQ(Fetch(lines.Url("/110000")).error, ERROR_HTTP_INVALID_SERVER_RESPONSE);
    RawServer sized([](Peer& peer) {
        const auto nBytes = static_cast<std::size_t>(std::stoi(peer.Request().substr(5)));
        std::string headers = kOk + "Content-Length: 2\r\n";
        while (nBytes - headers.size() > 2000)
            headers += "X-More: " + std::string(1000, 'x') + "\r\n";
        peer.Send(headers + "X-Last: " + std::string(nBytes - headers.size() - 12, 'x') + "\r\n\r\nok");
    });
    EXPECT_EQ(Fetch(sized.Url("/262144")).body, "ok");
    EXPECT_EQ(Fetch(sized.Url("/262145")).error, ERROR_HTTP_INVALID_SERVER_RESPONSE);
}

TEST(Pull, AConnectionThatBreaksOffIsAFailure)
{
    RawServer server([](Peer& peer) {
        peer.Request();
        peer.Reset();
    });
    EXPECT_EQ(Fetch(server.Url()).error, ERROR_INTERNET_CONNECTION_RESET);
}

} // namespace
