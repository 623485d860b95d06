#include "include/KXExeFileInfo.h"
#include "include/platform/Host.h"
#include "tests/support/TempDir.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

TEST(KXExeFileInfo, ReadsAnExecutablesVersion)
{
    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&CKXExeFileInfo::GetFileInfo), &library), 0);
    CKXExeFileInfo::VersionInfo info{9, 9, 9, 9};
    ASSERT_EQ(CKXExeFileInfo::GetFileInfo(KXHost::FromSystemPath(library.dli_fname), info), 1);
    EXPECT_EQ(info.dwMajor, 1u);
    EXPECT_EQ(info.dwMinor, 0u);
    EXPECT_EQ(info.dwRevision, 0u);
    EXPECT_EQ(info.dwBuild, 0u);
}

TEST(KXExeFileInfo, WithoutAVersionNothingChanges)
{
    const test::TempDir dir;
    dir.Write("text", "MZ, but no image");
    for (const CString& path : {dir.Win("text"), dir.Win("absent"), dir.Win(), CString()}) {
        CKXExeFileInfo::VersionInfo info{6, 7, 8, 9};
        EXPECT_EQ(CKXExeFileInfo::GetFileInfo(path, info), 0);
        EXPECT_TRUE(info.dwMajor == 6 && info.dwMinor == 7 && info.dwRevision == 8 && info.dwBuild == 9);
    }
}

} // namespace
