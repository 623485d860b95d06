#include "KXStatSender.h"
#include "platform/Host.h" // ahead of what the HTTP server brings, whose macros would change its names
#include "platform/Registry.h"
#include "tests/support/HttpServer.h"
#include "tests/support/Registry.h"
#include "tests/support/Test.h"

namespace {

using testing::MatchesRegex;

struct Sender : CKXStatSender
{
    Sender() = default;
    ~Sender() = default;
    using CKXStatSender::ReadUserId;
    using CKXStatSender::SaveUserId;
};

struct Stats : testing::Test
{
    Stats() { KXHost::SetRegistryFile(dir.Path("registry.ini")); }
    ~Stats() override { KXHost::SetRegistryFile(""); }

    // The targets of the next requests that the server gets.
    std::vector<std::string> Take(std::size_t nCount)
    {
        std::unique_lock lock(m_lock);
        m_changed.wait(lock, [&] { return m_targets.size() >= nCount; });
        return std::exchange(m_targets, {});
    }
    std::string Base() const { return server.Url("/stat"); }
    // The id that this sender reports with.
    std::string IdOf(Sender& sender)
    {
        sender.Initialize(Base().c_str(), "1");
        sender.Report("id", 0);
        const std::string target = Take(1).front(), begin = "/stat?userid=";
        return target.substr(begin.size(), target.find('&') - begin.size());
    }
    static void Store(DWORD type, std::string_view data)
    {
        test::StoreValue("Software\\norvale\\setup", "PCGUID", type, data);
    }

    test::TempDir dir;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<std::string> m_targets;
    test::HttpServer server{[this](httplib::Server& http) {
        http.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            const std::lock_guard lock(m_lock);
            if (request.path == "/stat") m_targets.push_back(request.target);
            m_changed.notify_all();
            response.set_content("thanks", "text/plain");
            return httplib::Server::HandlerResponse::Handled;
        });
    }};
};

const std::string kHex = "^[0-9A-F]{12}4[0-9A-F]{3}[89AB][0-9A-F]{15}$"; // a random GUID

TEST_F(Stats, ReportsInOrderWithTheCallersTextsAsTheyAre)
{
    Store(REG_SZ, std::string_view("me", 3));
    Sender sender;
    sender.Initialize(Base().c_str(), "2.6%20b");
    sender.Report("abc", 3);
    sender.UnInitialize();
    Sender copy(sender);
    copy.Report("\xD6\xD0&x=1", -2147483647 - 1);
    copy = sender;
    copy.Report("", 0);
    EXPECT_THAT(Take(3),
                testing::ElementsAre("/stat?userid=me&ver=2.6%20b&optype=abc&optypeval=3",
                                     "/stat?userid=me&ver=2.6%20b&optype=\xD6\xD0&x=1&optypeval=-2147483648",
                                     "/stat?userid=me&ver=2.6%20b&optype=&optypeval=0"));
}

TEST_F(Stats, TheIdIsMadeOnceAndKeptWhereItCanBe)
{
    Sender first;
    CString stored;
    EXPECT_FALSE(first.ReadUserId(stored));
    const std::string id = IdOf(first);
    EXPECT_THAT(id, MatchesRegex(kHex));
    EXPECT_TRUE(first.ReadUserId(stored));
    EXPECT_EQ(stored, id.c_str());
    const int nHandles = KXHost::LiveHandles(); // among which are the last report's, for a while
    for (int n = 0; n < 100; ++n)
        first.ReadUserId(stored);
    EXPECT_LT(KXHost::LiveHandles(), nHandles + 50);
    Sender second;
    EXPECT_EQ(IdOf(second), id);
    EXPECT_TRUE(second.SaveUserId("another"));
    EXPECT_EQ(IdOf(second), "another");
    KXHost::SetRegistryFile(dir.Path("another.ini"));
    EXPECT_NE(IdOf(second), id);
    KXHost::SetRegistryFile("/proc/none/registry.ini");
    EXPECT_FALSE(second.SaveUserId("x"));
    EXPECT_THAT(IdOf(second), MatchesRegex(kHex));
}

TEST_F(Stats, AnIdThatIsNoneIsReplaced)
{
    const std::string longest(99, 'l');
    // The stored value and the id that is told; empty for a new one.
    const std::tuple<DWORD, std::string, std::string> cases[] = {
        {REG_SZ, std::string("xxxx\0", 5), "xxxx"},
        {REG_EXPAND_SZ, std::string("any%20thing\0", 12), "any%20thing"},
        {REG_SZ, longest + '\0', longest},
        {REG_SZ, std::string("two\0ends\0", 9), "two"},
        {REG_SZ, longest + std::string("l\0", 2), ""},
        {REG_SZ, std::string("\0", 1), ""},
        {REG_SZ, "", ""},
        {REG_SZ, "no end", ""},
        {REG_BINARY, std::string("bytes\0", 6), ""},
        {REG_DWORD, std::string("\1\0\0\0", 4), ""},
    };
    for (const auto& [type, data, kept] : cases) {
        Store(type, data);
        Sender sender;
        const std::string id = IdOf(sender);
        EXPECT_THAT(id, MatchesRegex(kept.empty() ? kHex : "^" + kept + "$"));
        Sender next;
        EXPECT_EQ(IdOf(next), id);
    }
}

// Each process reports with the id that it has made; the one that stays is one of theirs.
TEST_F(Stats, ProcessesMayStartTogetherForTheFirstTime)
{
    constexpr std::size_t nChildren = 6;
    const std::vector<std::string> env{"XDG_CONFIG_HOME=" + dir.Path("config")};
    const auto start = [&] { return std::make_unique<test::Child>("StatChild", std::vector{Base()}, env); };
    std::vector<std::unique_ptr<test::Child>> children;
    for (std::size_t n = 0; n < nChildren; ++n)
        children.push_back(start());
    for (auto& child : children)
        EXPECT_EQ(child->Wait(), 0);
    const auto together = Take(nChildren);
    for (const std::string& target : together)
        EXPECT_THAT(target, MatchesRegex("^/stat\\?userid=[0-9A-F]{32}&ver=7&optype=start&optypeval=1$"));
    for (int n = 0; n < 2; ++n) {
        EXPECT_EQ(start()->Wait(), 0);
        EXPECT_THAT(together, testing::Contains(Take(1).front()));
    }
}

// Without Initialize there is no URL: the report fails, and what comes after it isn't sent.
TEST_F(Stats, AReportBeforeInitializeIsAFailedTask)
{
    test::Child child("StatChild", {Base(), "early"});
    EXPECT_EQ(child.Wait(), 0);
    const std::lock_guard lock(m_lock);
    EXPECT_THAT(m_targets, testing::ElementsAre());
}

} // namespace
