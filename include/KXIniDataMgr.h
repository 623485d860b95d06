#pragma once

#include "KXExport.h"
#include "platform/String.h"
#include "platform/Time.h"

// Typed values in INI files. Every operation names a file, a section and a key and goes straight to the
// platform's profile service (platform/Profile.h, which tells what a file looks like and how it is written);
// nothing is kept here and no file stays open.
//
// Readers see what any process wrote before the call. They give their default without a file, section or key
// and for an empty value, and don't tell that they did. Of a longer value they see the first 255 bytes.
// Writers give non-zero on success, and 0 where the file can't be written or the section, key or text can't
// be stored. Numbers are written and read with a decimal point in every locale. Nothing is thrown but for
// lack of memory. Any thread, and a fork's child (platform/Sync.h says what else such a child may call).
class KX_API CKXIniDataMgr
{
public:
    // The number at the text's start, what follows it ignored; 0 for a text that begins with none. A number
    // beyond `int` gives the nearest `int`.
    static int GetInteger(const char* pszFile, const char* pszSection, const char* pszKey, int nDefault);
    // The same if it is at least `nMin` and at most `nMax`, else the default, which may lie outside.
    static int GetInteger(const char* pszFile, const char* pszSection, const char* pszKey, int nDefault,
                          int nMin, int nMax);
    static int WriteInteger(const char* pszFile, const char* pszSection, const char* pszKey, int nValue);

    // The text as found. A null default is the empty string.
    static CString GetString(const char* pszFile, const char* pszSection, const char* pszKey,
                             const char* pszDefault);
    // The text is stored as it stands. White space at its ends, or a pair of quotes around it, doesn't come
    // back in reading: put the whole in quotes to keep it. A text with a line break is refused. Null removes
    // the key.
    static int WriteString(const char* pszFile, const char* pszSection, const char* pszKey,
                           const char* pszValue);

    // The number at the text's start, as `atof` takes it; 0 for a text that begins with none.
    static float GetFloat(const char* pszFile, const char* pszSection, const char* pszKey, float fDefault);
    static double GetDouble(const char* pszFile, const char* pszSection, const char* pszKey, double dDefault);
    // Stored with six digits behind the point. A value of more than 255 characters then (1e248 and beyond)
    // couldn't be read back and is refused.
    static int WriteFloat(const char* pszFile, const char* pszSection, const char* pszKey, float fValue);
    static int WriteDouble(const char* pszFile, const char* pszSection, const char* pszKey, double dValue);

    // Whether the text is "true" in any casing; every other text is false.
    static bool GetBoolean(const char* pszFile, const char* pszSection, const char* pszKey, bool bDefault);
    // The same as 1 and 0. The default is given back as it is.
    static int GetBOOL(const char* pszFile, const char* pszSection, const char* pszKey, int bDefault);
    // Stored as TRUE or FALSE.
    static int WriteBoolean(const char* pszFile, const char* pszSection, const char* pszKey, bool bValue);
    static int WriteBOOL(const char* pszFile, const char* pszSection, const char* pszKey, int bValue);

    // A colour, red in the lowest byte, then green, then blue: the three numbers in the text, whatever stands
    // between them. The default for any other count of numbers or one above 255.
    static unsigned long GetRGB(const char* pszFile, const char* pszSection, const char* pszKey,
                                unsigned long clrDefault);
    // Stored as RGB(r,g,b); the higher bytes of the value are lost.
    static int WriteRGB(const char* pszFile, const char* pszSection, const char* pszKey,
                        unsigned long clrValue);

    // An IP address, its first number in the highest of four bytes: the four numbers in the text, by the
    // rules of GetRGB.
    static unsigned long GetIPAddress(const char* pszFile, const char* pszSection, const char* pszKey,
                                      unsigned long dwDefault);
    // Stored as IP(a.b.c.d).
    static int WriteIPAddress(const char* pszFile, const char* pszSection, const char* pszKey,
                              unsigned long dwValue);

    // An instant, written as local time, "2009-03-14 08:05:09". The default where one of the six numbers
    // lacks or is out of its range (the year from 1900, the day to 31). A day that the month lacks carries
    // over into the next month.
    static CTime GetDateTime(const char* pszFile, const char* pszSection, const char* pszKey,
                             CTime timeDefault);
    // An instant that has no local time is stored as the empty text.
    static int WriteDateTime(const char* pszFile, const char* pszSection, const char* pszKey,
                             CTime timeValue);
};
