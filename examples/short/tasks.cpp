#include "Short.h"

#include <platform/Sync.h>

// A thread for tasks: one after the other, each deleted after its run.
namespace {

struct Sum : tagKXCommonTask
{
    Sum(int nTo, int& nInto, HANDLE hEvent)
        : tagKXCommonTask(Run, "sum"), nLast(nTo), nResult(nInto), hDone(hEvent)
    {
    }

    static int Run(tagKXCommonTask* pTask, HANDLE)
    {
        auto& sum = *static_cast<Sum*>(pTask);
        for (int n = 1; n <= sum.nLast; ++n)
            sum.nResult += n;
        SetEvent(sum.hDone);
        return 0;
    }

    int nLast;
    int& nResult;
    HANDLE hDone;
};

} // namespace

int main()
{
    const HANDLE hDone = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    CKXCommonTaskThread thread;
    thread.Initialize();

    int nResult = 0;
    thread.AddTask(new Sum(100, nResult, hDone)); // the thread's from here on
    WaitForSingleObject(hDone, INFINITE);

    thread.UnInitialize();
    CloseHandle(hDone);
    std::printf("1 + 2 + ... + 100 = %d\n", nResult);
    return nResult == 5050 ? 0 : 1;
}
