#include "KXLanResManager.h"
#include "platform/Host.h"
#include "tests/support/Check.h"

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
    pLans->SetCurrentLanFromReg("App", 0);
    Check(pLans->GetCurrentLanIndex() == 0, "with nothing saved the first is selected");
    Check(pLans->GetString("k") == "hidden", "a selection replaces the texts");
    return 0;
}
