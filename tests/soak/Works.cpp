#include "KXCommonClass.h"

#include "include/platform/Host.h"
#include "tests/soak/Soak.h"
#include "tests/support/Child.h"
#include "tests/support/GdiPlus.h"
#include "tests/support/LogLines.h"

// ---- The log

soak::Figures soak::RunLog(Turn turn, const test::TempDir& dir)
{
    constexpr int kThreads = 8, kLines = 2'000; // of a thread in a round
    Figures figures;
    CKXLogSys* const pLog = CKXLogSys::GetSingletonPtr();
    while (turn.Goes()) {
        figures.Need(pLog->Initialize(dir.Win("soak.log")), "the log's file");
        {
            std::vector<std::jthread> threads;
            for (int nThread = 0; nThread < kThreads; ++nThread)
                threads.emplace_back([=] {
                    for (int n = 0; n < kLines; ++n)
                        pLog->PushLogEx(CKXLogSys::LogInfo, "%d %d", nThread, n);
                });
        }
        figures.Need(pLog->Flush(30'000), "a flush in thirty seconds");
        pLog->Uninitialize();
        const test::ThreadLines lines(dir.Read("soak.log"), kThreads);
        figures.Need(lines.wrong.empty(), "the log line in place of " + lines.wrong);
        for (const std::size_t nCount : lines.counts)
            figures.Need(nCount == kLines,
                         "log lines of a thread, of which " + std::to_string(nCount) + " are there");
        figures.operations += kThreads * kLines;
    }
    return figures;
}

// ---- Languages

soak::Figures soak::RunLanguages(Turn turn, const test::TempDir& dir)
{
    constexpr int kReaders = 3, kKeys = 200;
    for (const std::string id : {"One", "Two"}) {
        std::string texts;
        for (int n = 0; n < kKeys; ++n)
            texts += "KEY" + std::to_string(n) + " = " + id + std::to_string(n) + "\r\n";
        dir.Write("Soaked/" + id + "/Lan.ini", "[Language]\r\nLanguage=" + id + "\r\n");
        dir.Write("Soaked/" + id + "/Data.txt", texts);
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
                    const CString strNumber = std::to_string(own.Below(kKeys)).c_str();
                    const CString strText = pLanguages->GetString("KEY" + strNumber);
                    // A key that is missing while a selection runs is its own text.
                    wrong += strText != "One" + strNumber && strText != "Two" + strNumber &&
                             strText != "KEY" + strNumber;
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

// ---- Skins

soak::Figures soak::RunSkins(Turn turn, const test::TempDir& dir)
{
    const test::GdiPlus gdiPlus;
    CKXSkinResManager* const pSkins = CKXSkinResManager::GetSingletonPtr();
    Figures figures;
    while (turn.Goes()) {
        const CString strName = pSkins->GetSkinName(turn.Below(pSkins->GetSkinsTotal()));
        const std::string file = dir.Path("Skins/" + std::string(strName) + "/Common/Button/PushButton.bmp");
        const bool bShort = turn.Below(4) == 0 && std::filesystem::exists(file);
        if (bShort) std::filesystem::rename(file, file + ".away");
        pSkins->SetSkin(strName, 1);
        if (bShort) std::filesystem::rename(file + ".away", file);
        const CString strIni = pSkins->GetCurrentSkinPath() + "Skin.ini";
        const bool bLoaded = pSkins->GetBtnRes()->m_bmpPushButton.GetHBITMAP() != nullptr;
        figures.Need(pSkins->GetCurrentSkinName() == strName, "the skin's name");
        figures.Need(bLoaded != bShort || !std::filesystem::exists(file), "the skin's push button");
        figures.Need(pSkins->GetClrDef()->m_clrMenuSelectBk ==
                         CKXIniDataMgr::GetRGB(strIni, "COLOR", "MenuSelectBk", 1),
                     "the skin's colour");
        figures.faults += bShort;
        ++figures.operations;
    }
    pSkins->UnInitialize();
    return figures;
}

// ---- The registry

namespace {

std::string Get(const std::string& name)
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, "Shared", 0, KEY_READ, &hKey) != ERROR_SUCCESS) return {};
    std::string data(20'000, '\0');
    auto nSize = static_cast<DWORD>(data.size());
    const long error =
        RegQueryValueExA(hKey, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &nSize);
    RegCloseKey(hKey);
    return error == ERROR_SUCCESS ? data.substr(0, nSize) : std::string();
}

} // namespace

soak::Figures soak::RunRegistry(Turn turn, const test::TempDir& dir)
{
    constexpr int kValues = 5;
    const std::string file = dir.Path("registry.ini");
    KXHost::SetRegistryFile(file);
    Figures figures;
    for (int nRound = 0; turn.Goes(); ++nRound) {
        const std::string whole = "whole" + std::to_string(nRound % 50) + "_",
                          torn = "torn" + std::to_string(nRound % 50);
        test::Child writer("RegistryWriterChild", {file, whole, std::to_string(kValues)});
        test::Child victim("RegistryWriterChild", {file, torn, "0"}); // until it is killed
        figures.Need(writer.Wait() == 0, "a registry writer");
        std::this_thread::sleep_for(std::chrono::milliseconds(turn.Below(30)));
        victim.Kill();
        victim.Wait();
        for (int n = 0; n < kValues; ++n)
            figures.Need(Get(whole + std::to_string(n)) == std::to_string(n), "registry value " + whole);
        const std::string left = Get(torn);
        figures.Need(left.empty() || left == std::string(10'000, left[0]), "a killed writer's value, whole");
        figures.operations += kValues + 1;
        ++figures.faults;
    }
    return figures;
}
