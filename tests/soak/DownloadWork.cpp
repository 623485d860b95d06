#include "KXHttpDownloadMgr.h"
#include "tests/soak/Soak.h"
#include "tests/support/RawServer.h"

namespace {

// A manager of its own for each round: the first broken transfer ends its worker for good.
class Manager : public CKXHttpDownloadMgr
{
};

struct Ends
{
    std::mutex lock;
    std::condition_variable changed;
    std::set<unsigned> ended;
} ends;

int Tell(unsigned uCode, unsigned, const CString&, const CString&, unsigned long, unsigned long,
         unsigned uParam)
{
    if (uCode != WM_KXDOWNLOADENDED) return 0;
    const std::lock_guard lock(ends.lock);
    ends.ended.insert(uParam);
    ends.changed.notify_all();
    return 0;
}

std::string Body(int nBytes)
{
    std::string body;
    for (int n = 0; n < nBytes; ++n)
        body += static_cast<char>('a' + (n * 7 + nBytes) % 26);
    return body;
}

// Serves "/KIND/BYTES": the good kinds whole, the bad ones never.
void Serve(test::Peer& peer)
{
    for (std::string request; !(request = peer.Request()).empty();) {
        char kind[16] = "";
        int nBytes = 0;
        if (std::sscanf(request.c_str(), "GET /%15[a-z]/%d", kind, &nBytes) != 2) return;
        const std::string body = Body(nBytes), ok = "HTTP/1.1 200 OK\r\n";
        const std::string length = "Content-Length: " + std::to_string(nBytes) + "\r\n\r\n";
        const std::string endless = ok + "Content-Length: 99999999\r\n\r\n";
        char size[16];
        std::snprintf(size, sizeof(size), "%x\r\n", nBytes);
        const std::map<std::string_view, std::string> answers{
            {"whole", ok + length + body},
            {"error", "HTTP/1.1 500 Broken\r\n" + length + body},
            {"pieces", ok + "Transfer-Encoding: chunked\r\n\r\n" + (nBytes > 0 ? size + body + "\r\n" : "") +
                           "0\r\n\r\n"},
            {"cut", endless + body},
            {"reset", endless + body},
            {"noise", body + "\r\n\r\n"},
        };
        const std::string_view what = kind;
        if (!peer.Send(answers.at(what))) return;
        if (what == "reset") peer.Reset();
        if (what == "cut" || what == "reset" || what == "noise") return;
    }
}

} // namespace

soak::Figures soak::RunDownloads(Turn turn, const test::TempDir& dir)
{
    const test::RawServer server(Serve);
    const char* const good[] = {"whole", "pieces", "error"};
    const char* const bad[] = {"cut", "reset", "noise"};
    Figures figures;
    while (turn.Goes()) {
        const int nGood = 1 + turn.Below(8);
        ends.ended.clear(); // of a bad download that the last manager's end cut short, too
        Manager manager;
        std::vector<int> sizes;
        const auto add = [&](const char* pszKind, int nBytes) {
            const std::string name = "load" + std::to_string(sizes.size());
            const std::string url = server.Url("/" + std::string(pszKind) + "/" + std::to_string(nBytes));
            manager.AddTask(url.c_str(), dir.Win(name), Tell, static_cast<unsigned>(sizes.size()));
            sizes.push_back(nBytes);
        };
        for (int n = 0; n < nGood; ++n)
            add(good[turn.Below(3)], turn.Below(20'000));
        add(bad[turn.Below(3)], turn.Below(5'000));
        add("whole", 10); // which is never served
        std::unique_lock lock(ends.lock);
        ends.changed.wait_for(lock, std::chrono::seconds(30),
                              [&] { return ends.ended.size() >= static_cast<std::size_t>(nGood); });
        for (unsigned n = 0; n < static_cast<unsigned>(nGood); ++n)
            figures.Need(ends.ended.contains(n) && dir.Read("load" + std::to_string(n)) == Body(sizes[n]),
                         "download " + std::to_string(n) + " of " + std::to_string(sizes[n]) + " bytes");
        figures.Need(ends.ended.size() == static_cast<std::size_t>(nGood), "a failed download's silence");
        figures.operations += static_cast<std::size_t>(nGood);
        ++figures.faults;
    }
    return figures;
}
