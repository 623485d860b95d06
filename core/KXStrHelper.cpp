#include "KXStrHelper.h"

#include "platform/Exception.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

int CKXStrHelper::Split(const CString& strText, const CString& strDelim, std::vector<CString>& vecOut)
try {
    std::vector<CString> pieces; // apart, since the text or the delimiter may be one of the vector's own
    const char* const pszDelim = strDelim;
    const int nDelim = static_cast<int>(std::strlen(pszDelim));
    int start = 0;
    while (nDelim > 0) {
        const int found = strText.Find(pszDelim, start);
        if (found < 0) break;
        pieces.push_back(strText.Mid(start, found - start));
        start = found + nDelim;
    }
    if (start < strText.GetLength()) pieces.push_back(strText.Mid(start));
    std::move(pieces.begin(), pieces.end(), std::back_inserter(vecOut));
    return static_cast<int>(vecOut.size());
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

COleDateTime CKXStrHelper::String2DateTime(const CString& strTime)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    // The widths keep each number far from overflow.
    std::sscanf(strTime, "%04d-%02d-%02d %02d:%02d:%02d", &year, &month, &day, &hour, &minute, &second);
    return COleDateTime(year, month, day, hour, minute, second);
}
