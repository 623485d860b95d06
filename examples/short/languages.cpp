#include "Short.h"

// The installed languages, and a text of each. They lie in `Languages` beside the executable.
int main()
{
    CKXLanResManager* pLanguages = CKXLanResManager::GetSingletonPtr();
    if (!pLanguages->Initialize("Languages")) return 1;

    int nDifferent = 0;
    CString strLast;
    for (int n = 0; n < pLanguages->GetLanCount(); ++n) {
        pLanguages->SetCurrentLan(pLanguages->GetLanID(n), 0); // 1 tells all windows of the change
        const CString strText = pLanguages->GetString("IDS_TITLE");
        std::printf("%s: %d bytes\n", pLanguages->GetLanID(n).GetString(), strText.GetLength());
        nDifferent += strText != strLast;
        strLast = strText;
    }
    const bool bOwnKey = pLanguages->GetString("IDS_NOWHERE") == "IDS_NOWHERE";
    return nDifferent == pLanguages->GetLanCount() && bOwnKey ? 0 : 1;
}
