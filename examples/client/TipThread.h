#pragma once

#include <KXCommonClass.h>
#include <future>
#include <mutex>
#include <thread>

namespace client {

// A tip on a thread of its own: while it fades that thread waits, and the program's windows don't.
class TipThread
{
public:
    TipThread();
    TipThread(const TipThread&) = delete;
    TipThread& operator=(const TipThread&) = delete;
    // A tip that is up goes at once.
    ~TipThread();

    // Shows a text in place of the last one. A click on the tip takes the focus from all other threads'
    // windows: `hAsker` is posted `nGiveBack` then. Any thread.
    void Show(const CString& str, HWND hAsker, UINT nGiveBack);

private:
    class CWindow;
    void Run();

    std::promise<HWND> m_begun;
    std::mutex m_lock;
    CString m_strText; // guarded by the lock, as what follows
    HWND m_hAsker = nullptr;
    UINT m_nGiveBack = 0;
    std::thread m_thread;
    HWND m_hWnd;
};

} // namespace client
