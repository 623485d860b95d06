#pragma once

#include "KXFileSystem.h"
#include "platform/Host.h"
#include "tests/support/TempDir.h"

#include <gtest/gtest.h>

namespace test {

// The directory of the executable, as far as the library is told: one for the process, made before the file
// system's singleton looks.
inline const TempDir& AppDir()
{
    static const TempDir dir;
    static const bool told = [] {
        KXHost::SetExecutablePath(dir.Path("app"));
        return CKXFileSystem::GetInstancePtr() != nullptr;
    }();
    EXPECT_TRUE(told);
    return dir;
}

} // namespace test
