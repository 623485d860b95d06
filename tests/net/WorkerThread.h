#pragma once

#include "tests/support/Standard.h"

namespace test {

// The download worker, known once a callback has called Note.
class WorkerThread
{
public:
    void Note() { m_id = gettid(); }
    // Waits until it has ended by itself.
    void AwaitEnd() const
    {
        while (m_id == 0)
            std::this_thread::yield();
        const std::string entry = "/proc/self/task/" + std::to_string(m_id);
        while (access(entry.c_str(), F_OK) == 0)
            std::this_thread::yield();
    }

private:
    std::atomic<pid_t> m_id{0};
};

} // namespace test
