#include "Short.h"

// Every client does this at its start: from here on a crash makes a report, where the marker file lies at the
// root of the drive and the reporter beside the client.
int main(int nArgs, char** args)
{
    static CKXCrashDumper& dumper = *new CKXCrashDumper; // never deleted: it serves to the end of the process
    dumper.Initialize("Trainer", Beside(""), "trainer", "-restarted", "ann@example.com", 0, 0);
    if (nArgs > 1 && CString(args[1]) == "crash") {
        volatile int* volatile pWord = nullptr;
        return *pWord;
    }
    std::printf("%s crash would crash\n", args[0]);
    return 0;
}
