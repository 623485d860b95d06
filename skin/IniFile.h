#pragma once

#include "platform/String.h"

#include <vector>

namespace kx::skin {

// A line of an INI file that isn't empty and no remark, with white space and quotes taken off as reading
// takes them.
struct IniLine
{
    CString strSection;   // empty before the first
    CString strKey;       // empty for a section's own line, and for one without "="
    CString strValue;     // for one without "=" all of it
    int nLine = 0;        // from 1
    int nColumn = 0;      // of the key or the section's name, in characters from 1
    int nValueColumn = 0; // of the value
    bool bSection = false;
    bool bAssigns = false;
};

// The file's lines as they stand, of which `bAll` is false where only the first 100,000 came; nothing, and
// false, for a file that can't be read or is larger than INI files may be. Throws nothing but for lack of
// memory.
bool ReadIniLines(const CString& strFile, std::vector<IniLine>& lines, bool& bAll);

} // namespace kx::skin
