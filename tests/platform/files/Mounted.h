#pragma once

#include "include/platform/File.h"
#include "include/platform/FileSystem.h"
#include "tests/support/Test.h"

namespace test {

// A temporary directory that is the drive `X:` for the time of its scope.
struct Mounted : TempDir
{
    explicit Mounted(KXHost::Drive drive = {})
    {
        drive.strRoot = Path();
        KXHost::MountDrive('X', drive);
    }
    ~Mounted() { KXHost::UnmountDrive('X'); }

    // The file that a path of the library names, relative to the drive's root; "?" for a path elsewhere.
    std::string Named(const char* pszPath) const
    {
        const std::string path = KXHost::ToSystemPath(pszPath);
        return path == Path() ? "/" : path.starts_with(Path() + "/") ? path.substr(Path().size()) : "?";
    }
    // The library's path of an entry by its UTF-8 name.
    CString Of(std::string_view relative) const { return KXHost::FromSystemPath(Path(relative)); }
};

// Tests on a drive `X:` of their own, which may change the current directory.
struct OnDrive : testing::Test
{
    ~OnDrive() override
    {
        std::error_code ignored;
        std::filesystem::current_path(old, ignored);
    }

    const std::filesystem::path old = std::filesystem::current_path();
    const Mounted drive;
};

// The failure of an operation that throws; the cause `none` for success.
inline CFileException FailureOf(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (CFileException* pException) {
        const CFileException failure = *pException;
        pException->Delete();
        return failure;
    }
    return CFileException();
}

inline int CauseOf(const std::function<void()>& operation)
{
    return FailureOf(operation).m_cause;
}

} // namespace test
