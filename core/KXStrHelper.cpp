#include "KXStrHelper.h"

#include <cstdio>

int CKXStrHelper::Split(const CString& strText, const CString& strDelim, std::vector<CString>& vecOut)
{
    const CString text(strText), delim(strDelim); // either may be one of the vector's own strings
    int start = 0;
    while (!delim.IsEmpty()) {
        const int found = text.Find(delim, start);
        if (found < 0) break;
        vecOut.push_back(text.Mid(start, found - start));
        start = found + delim.GetLength();
    }
    if (start < text.GetLength()) vecOut.push_back(text.Mid(start));
    return static_cast<int>(vecOut.size());
}

COleDateTime CKXStrHelper::String2DateTime(const CString& strTime)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    // The widths keep each number far from overflow.
    std::sscanf(strTime, "%04d-%02d-%02d %02d:%02d:%02d", &year, &month, &day, &hour, &minute, &second);
    return COleDateTime(year, month, day, hour, minute, second);
}
