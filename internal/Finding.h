#pragma once

#include "include/platform/String.h"

#include <functional>

// A finding of a check of an author's files.
namespace kx {

enum class Severity
{
    Error,   // something won't be there, or won't be what the author meant
    Warning, // it works, and hardly as meant
    Note     // worth knowing
};

struct Finding
{
    Severity severity = Severity::Error;
    const char* pszRule = ""; // a name for machines, as in "skin.missing-file"
    CString strFile;          // in the process's code page, as it was opened
    int nLine = 0;            // from 1; 0: the file as a whole
    int nColumn = 0;          // in characters, from 1; 0: the line as a whole
    CString strText;          // ASCII but for what it quotes
};

using FindingSink = std::function<void(const Finding&)>;

} // namespace kx
