#include "Short.h"

#include <vector>

// The small helpers: a lock, text taken apart, numbers, chance, GUIDs, UTF-8, the debug channel.
namespace {

CKXCritSection lock;
int nWords = 0;

void CountWord()
{
    const CKXAutoLock guard(&lock); // to the end of the function
    ++nWords;
}

} // namespace

int main()
{
    CKXRandom::Init(); // once, at a client's start
    std::vector<CString> words;
    CKXStrHelper::Split("harbour|voyage|remote", "|", words);
    for (const CString& strWord : words) {
        CountWord();
        KXPrintDebugStr("word %s\n", strWord.GetString()); // seen with KX_DEBUG=1
    }
    CString strTyped = "  voyage ";
    strTyped.TrimLeft().TrimRight().MakeUpper();
    const int nWord = CKXRandom::GetRandom(0, 2);

    std::vector<int> numbers;
    CKXNum::ApartNums("lesson 12, page 3", numbers);
    const COleDateTime when = CKXStrHelper::String2DateTime("2009-03-14 08:05:09");

    COleDateTime lesson; // a day later, at ten
    lesson.SetDateTime(when.GetYear(), when.GetMonth(), when.GetDay() + 1, 10, 0, 0);
    std::printf("%.2f days from %02d:%02d:%02d on\n", lesson.GetDays() - when.GetDays(), when.GetHour(),
                when.GetMinute(), when.GetSecond());
    lesson = COleDateTime::FromTime(1'268'524'800); // a server's stamp, of a year later, in the user's zone
    if (lesson < when) lesson.SetStatus(COleDateTime::null); // over: there is none

    CString strId;
    CreateGUIDString(strId);
    GUID id;
    String2GUID(strId, id);
    CString strAgain;
    GUID2String(id, strAgain);

    // A pack of resources that a client may have; without it they are the executable's.
    const HMODULE hPack = LoadLibraryA("winter.pack");
    if (hPack) AfxSetResourceHandle(hPack);
    FreeLibrary(hPack);

    const CKXAutoResHandle resources(
        nullptr); // resources are looked up in the executable, to the end of the scope
    const CString strHello = KXText::FromUtf8("你好"); // in the code page of the process, 936
    std::printf("%s: %d words, %s\n", KXText::ToUtf8(strHello).c_str(), nWords, strId.GetString());
    return nWords == 3 && strTyped == "VOYAGE" && nWord <= 2 && numbers.size() == 2 &&
                   when.GetStatus() == COleDateTime::valid && lesson.GetStatus() == COleDateTime::valid &&
                   strAgain == strId && strHello.GetLength() == 4
               ? 0
               : 1;
}
