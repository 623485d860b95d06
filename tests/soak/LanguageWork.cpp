#include "KXLanResManager.h"
#include "tests/soak/Soak.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kReaders = 3;
constexpr int kKeys = 200;

std::string Texts(const std::string& language)
{
    std::string text;
    for (int n = 0; n < kKeys; ++n)
        text += "KEY" + std::to_string(n) + " = " + language + std::to_string(n) + "\r\n";
    return text;
}

// A key that is missing while a selection runs is its own text.
bool IsText(const CString& strText, const CString& strNumber)
{
    return strText == "One" + strNumber || strText == "Two" + strNumber || strText == "KEY" + strNumber;
}

} // namespace

soak::Figures soak::RunLanguages(Turn turn, const test::TempDir& dir)
{
    for (const std::string id : {"One", "Two"}) {
        dir.Write("Soaked/" + id + "/Lan.ini", "[Language]\r\nLanguage=" + id + "\r\n");
        dir.Write("Soaked/" + id + "/Data.txt", Texts(id));
    }
    CKXLanResManager* const pLanguages = CKXLanResManager::GetSingletonPtr();
    Figures figures;
    figures.Need(pLanguages->Initialize("Soaked"), "the languages");
    std::atomic<std::uint64_t> reads{0}, wrong{0};
    {
        std::vector<std::jthread> readers;
        for (int nReader = 0; nReader < kReaders; ++nReader)
            readers.emplace_back([&, own = turn]() mutable {
                for (; own.Goes(); ++reads) {
                    CString strNumber;
                    strNumber.Format("%d", own.Below(kKeys));
                    wrong += !IsText(pLanguages->GetString("KEY" + strNumber), strNumber);
                }
            });
        for (; turn.Goes(); ++figures.operations) {
            const CString strId = figures.operations % 2 ? "One" : "Two";
            pLanguages->SetCurrentLan(strId, 0);
            figures.Need(pLanguages->GetString("KEY7") == strId + "7", "the language selected");
        }
    }
    figures.operations += reads;
    figures.Need(wrong == 0, std::to_string(wrong) + " texts read");
    return figures;
}
