#include "KXLanResManager.h"
#include "platform/Host.h"
#include "tests/support/Check.h"
#include "tests/support/ShortMemory.h"

using test::Check;

// Tries the state before a language is selected. Arguments: the executable's path, the language root below
// it.
int main(int, char** argv)
{
    KXHost::SetExecutablePath(argv[1]);
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    const auto isFresh = [pLans] {
        return pLans->GetCurrentLanIndex() == -1 && pLans->GetCurrentLan().strID.IsEmpty() &&
               pLans->GetCurrentLan().strName.IsEmpty();
    };
    Check(isFresh(), "nothing is selected");
    Check(pLans->GetString("k") == "k", "a key is its own text");
    Check(pLans->SetCurrentLan(0, 1) == 0, "there is nothing to select by position");
    pLans->SetCurrentLanFromReg("App", 1);
    pLans->SetCurrentLanFromIniFile("C:\\none.ini", 1);
    Check(isFresh(), "nor by what was saved");
    Check(pLans->Initialize(argv[2]) == 1 && isFresh(), "listing selects nothing");
    pLans->InsertString("k", "by hand");
    Check(pLans->GetString("k") == "by hand", "texts can be added before a selection");
    pLans->SetCurrentLanFromReg("App", 1);
    Check(pLans->GetCurrentLanIndex() == 0, "with nothing saved the first is selected");
    Check(pLans->GetString("k") == "hidden", "a selection replaces the texts");
    // Each allocation of a load fails once, until there are no more.
    long nTold = 0;
    for (int n = 0; nTold == n; ++n) {
        shortage::g_nLeft = n;
        pLans->SetCurrentLan(1 - n % 2, 0);
        shortage::g_nLeft = -1;
        for (const auto& box : KXHost::TakeMessageBoxes())
            nTold += box.strText == "There is not enough memory.";
    }
    Check(nTold > 4 && nTold == shortage::g_nFailed, "a load that lacks memory says so");
    return 0;
}
