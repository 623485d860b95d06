#pragma once

#include "KXExport.h"
#include "platform/OleDateTime.h"
#include "platform/String.h"

#include <vector>

// Texts taken apart. Any thread.
class KX_API CKXStrHelper
{
public:
    // Cuts a text at each place of the delimiter, appends the pieces to `vecOut`, which isn't emptied first,
    // and returns its size. Between two delimiters in a row, and before one at the very start, lies an empty
    // piece; behind one at the very end lies none, so an empty text adds nothing. Without the delimiter, or
    // with an empty one, the text is one piece. A delimiter is never found in the second byte of a character.
    static int Split(const CString& strText, const CString& strDelim, std::vector<CString>& vecOut);

    // Reads "%04d-%02d-%02d %02d:%02d:%02d"; what the text lacks counts as 0, so a date alone is its
    // midnight. The status is invalid unless there are such a day and time.
    static COleDateTime String2DateTime(const CString& strTime);
};
