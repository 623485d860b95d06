#pragma once

#include <KXCommonClass.h>
#include <cstdio>
#include <platform/Host.h>

// The place of an example's files: beside its executable.
inline CString Beside(const char* pszName)
{
    return CKXFileSystem::GetInstancePtr()->GetAppPath() + pszName;
}

// Starts the layer of pictures, as a client's main does, for as long as this lives.
struct Pictures
{
    Pictures()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
    }
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;
    ~Pictures() { Gdiplus::GdiplusShutdown(nToken); }

    std::uintptr_t nToken = 0;
};
