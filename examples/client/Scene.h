#pragma once

#include <string>

#include <KXCommonClass.h>

namespace client {

// One part of the show. Run prints what it does; false when something went wrong.
struct Scene
{
    const char* title;
    bool (*Run)();
};

bool ShowPaths();
bool ShowLanguages();
bool ShowDrawing();
bool ShowPictures();
bool ShowSkins();
bool ShowLog();

// A text of the library, which is in the process's code page, as the terminal's UTF-8.
std::string Utf8(const CString& str);

} // namespace client
