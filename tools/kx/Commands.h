#pragma once

#include "tools/kx/Arguments.h"

#include <filesystem>
#include <string>

// The commands of the tool: each takes what follows its name and gives the process's exit code.
namespace kx::tool {

int CheckSkin(Arguments& arguments);
int NewSkin(Arguments& arguments);
int PreviewSkin(Arguments& arguments);
int WatchSkin(Arguments& arguments);
int CheckLanguages(Arguments& arguments);
int NewLanguage(Arguments& arguments);
int PseudoLanguage(Arguments& arguments);
int ShowLog(Arguments& arguments);
int ShowReport(Arguments& arguments);

// Says that a command was called wrongly.
int Misused(const char* pszUsage);

// Writes a file anew with these bytes; false where that fails.
bool WriteFile(const std::filesystem::path& path, const std::string& content);

} // namespace kx::tool
