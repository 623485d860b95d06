// Another process. `exists PATH` and `list PATTERN` try it without special rights and exit with the last
// error or 0. `open PATH FLAGS` exits with the cause of the failure or 0; `hold PATH FLAGS FIFO` tells
// through the FIFO that it has tried and keeps the file until it is killed.

#include "include/platform/File.h"
#include "include/platform/FileSystem.h"

#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc < 3) return 100;
    const std::string_view command = argv[1];
    const unsigned flags = argc > 3 ? static_cast<unsigned>(std::strtoul(argv[3], nullptr, 0)) : 0;
    WIN32_FIND_DATAA data;
    if (command == "exists" || command == "list") {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) return 101;
        const bool bFound = command == "list" ? FindFirstFileA(argv[2], &data) != INVALID_HANDLE_VALUE
                                              : PathFileExistsA(argv[2]) != 0;
        return bFound ? 0 : static_cast<int>(GetLastError());
    }
    CFile file;
    CFileException failure;
    file.Open(argv[2], flags, &failure);
    if (command == "hold" && argc > 4) {
        close(open(argv[4], O_WRONLY)); // waits for the reader
        if (file.IsOpen()) pause();
    }
    return failure.m_cause;
}
