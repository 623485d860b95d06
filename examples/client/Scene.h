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
bool ShowDownloads();
bool ShowSpelling();
bool ShowWordLists();
bool ShowCrash();
bool ShowServices();
bool ShowLog();

// The spelling test in a window, until it is closed; the program's exit code.
int RunSpelling();
// How a client is started whose only work is to crash, for ShowCrash; it doesn't return.
int Crash();

} // namespace client
