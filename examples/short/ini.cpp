#include "Short.h"

// Typed values in an INI file, and the registry of the user.
int main()
{
    const CString strIni = Beside("ini.ini");
    const int nRuns = CKXIniDataMgr::GetInteger(strIni, "Trainer", "Runs", 0) + 1;
    CKXIniDataMgr::WriteInteger(strIni, "Trainer", "Runs", nRuns);
    CKXIniDataMgr::WriteRGB(strIni, "Trainer", "Ink", RGB(0, 96, 160));
    CKXIniDataMgr::WriteBoolean(strIni, "Trainer", "Sound", true);
    std::printf("run %d\n", nRuns);

    const bool bSame = CKXIniDataMgr::GetInteger(strIni, "TRAINER", "runs", 0) == nRuns &&
                       CKXIniDataMgr::GetRGB(strIni, "Trainer", "Ink", 0) == RGB(0, 96, 160) &&
                       CKXIniDataMgr::GetBoolean(strIni, "Trainer", "Sound", false);
    const bool bDefault = CKXIniDataMgr::GetDouble(strIni, "Trainer", "Speed", 1.5) == 1.5;

    // The registry is one file, which a host can put elsewhere.
    KXHost::SetRegistryFile(KXHost::ToSystemPath(Beside("registry.ini")));
    const bool bSaved = CKXLanResManager::SaveLanToReg("Trainer", "zh");
    return bSame && bDefault && bSaved ? 0 : 1;
}
