// Tells its executable's path on the standard error; with an argument it deletes that file first.
#include "include/platform/Module.h"
#include "tests/support/Standard.h"

int main(int argc, char** argv)
{
    if (argc > 1 && unlink(argv[1]) != 0) return 1;
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, sizeof(path));
    std::fputs(path, stderr);
}
