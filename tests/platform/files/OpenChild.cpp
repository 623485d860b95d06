// OpenChild PATH FLAGS: another process opens a file, and exits with the cause of the failure or 0.

#include "include/platform/File.h"

#include <cstdlib>

int main(int, char** argv)
{
    CFile file;
    CFileException failure;
    file.Open(argv[1], static_cast<unsigned>(std::strtoul(argv[2], nullptr, 0)), &failure);
    return failure.m_cause;
}
