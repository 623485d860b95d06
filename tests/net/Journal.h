#pragma once

#include "KXHttpDownloadMgr.h"

#include "tests/support/Test.h"

namespace test {

// A notification, as far as tests compare it.
struct Notice
{
    unsigned int code;
    unsigned int id;
    unsigned long total;
    unsigned long received;
    std::string url, file;
    bool operator==(const Notice&) const = default;
};

// Collects what the callback is told. One at a time: a callback has no room for a pointer.
class Journal : Fixed
{
public:
    Journal() { s_current = this; }
    ~Journal() { s_current = nullptr; }

    // The callback. The user's parameter is the first of the codes at which it does `act`, once it has
    // written down; 0 for none.
    static int Write(unsigned int code, unsigned int id, CString const& url, CString const& file,
                     unsigned long total, unsigned long received, unsigned int param)
    {
        Journal& self = *s_current;
        {
            const std::lock_guard lock(self.m_lock);
            self.m_notices.push_back({code, id, total, received, url.GetString(), file.GetString()});
        }
        self.m_changed.notify_all();
        if (param != 0 && code >= param && self.act) self.act(code);
        return 0;
    }

    void Await(unsigned int code, unsigned int id)
    {
        std::unique_lock lock(m_lock);
        m_changed.wait(lock, [&] {
            return std::ranges::any_of(m_notices,
                                       [&](const Notice& n) { return n.code == code && n.id == id; });
        });
    }
    // The notices of one task, or all.
    std::vector<Notice> Notices(unsigned int id = 0) const
    {
        const std::lock_guard lock(m_lock);
        std::vector<Notice> notices = m_notices;
        if (id != 0) std::erase_if(notices, [&](const Notice& n) { return n.id != id; });
        return notices;
    }
    // The codes of one task, a run of blocks as one.
    std::vector<unsigned int> Codes(unsigned int id) const
    {
        std::vector<unsigned int> codes;
        for (const Notice& notice : Notices(id))
            if (codes.empty() || codes.back() != notice.code) codes.push_back(notice.code);
        return codes;
    }

    std::function<void(unsigned int)> act;

private:
    static inline Journal* s_current = nullptr;
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<Notice> m_notices;
};

// A manager of a test's own, with its steps.
struct Manager : CKXHttpDownloadMgr
{
    Manager() = default;
    ~Manager() = default;
    using CKXHttpDownloadMgr::DownloadFunc;
    using CKXHttpDownloadMgr::GetNextTask;
    using CKXHttpDownloadMgr::Initialize;
    using CKXHttpDownloadMgr::StartDownload;
    using CKXHttpDownloadMgr::StopDownload;
    using CKXHttpDownloadMgr::Uninitialize;
};

} // namespace test
