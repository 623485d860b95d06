#include "KXLanResManager.h"

#include "KXAutoLock.h"
#include "KXFileSystem.h"
#include "KXIniDataMgr.h"
#include "KXMessages.h"
#include "internal/Debug.h"
#include "internal/FileSearch.h"
#include "internal/WindowNotice.h"
#include "language/StringTable.h"
#include "platform/Debug.h"
#include "platform/Exception.h"
#include "platform/Registry.h"

#include <array>
#include <new>
#include <string_view>

namespace {

constexpr char szSection[] = "Language";
constexpr char szKey[] = "Language";
constexpr DWORD dwAccess = KEY_READ | KEY_WRITE;

CString RegistryKey(const CString& strAppName)
{
    return "SOFTWARE\\Brightfern\\" + strAppName;
}

// The text of a registry value; empty for any other kind of value and for one that doesn't end in a NUL.
CString ReadRegText(HKEY hKey, const char* pszValue)
{
    std::array<char, 256> buffer;
    DWORD dwType = REG_NONE;
    DWORD cbData = static_cast<DWORD>(buffer.size());
    if (RegQueryValueExA(hKey, pszValue, nullptr, &dwType, reinterpret_cast<BYTE*>(buffer.data()), &cbData) !=
        ERROR_SUCCESS)
        return {};
    const bool bText = dwType == REG_SZ || dwType == REG_EXPAND_SZ;
    if (!bText || cbData == 0 || buffer[cbData - 1] != '\0') return {};
    return CString(buffer.data());
}

} // namespace

CKXLanResManager* CKXLanResManager::s_pInstance = nullptr;

CKXLanResManager* CKXLanResManager::GetSingletonPtr()
{
    if (!s_pInstance)
        s_pInstance = new (std::nothrow) CKXLanResManager; // owned by s_auto_ptr from its constructor on
    return s_pInstance;
}

CKXLanResManager::CKXLanResManager() : m_curLan("", "")
{
    s_auto_ptr.reset(this);
    OutputDebugStringA("CKXLanResManager Construction!\n");
}

CKXLanResManager::~CKXLanResManager()
{
    ClearLanData();
    OutputDebugStringA("CKXLanResManager Deconstruction!\n");
}

void CKXLanResManager::Uninitialize()
{
    ClearLanData();
}

int CKXLanResManager::Initialize(const CString& strLanDir)
try {
    {
        const CKXAutoLock lock(&m_csLans);
        m_vecLans.clear();
    }
    const auto* pFileSystem = CKXFileSystem::GetInstancePtr();
    if (!pFileSystem) return 0;
    m_strLanRoot = pFileSystem->GetAppPath() + strLanDir + "\\";

    WIN32_FIND_DATAA entry;
    kx::FileSearch search(m_strLanRoot + "*", entry);
    if (!search) {
        kx::debug::Tell("language", "%s can't be read: there is no language", m_strLanRoot.GetString());
        return 0;
    }
    int nResult = 0;
    do {
        const std::string_view name = entry.cFileName;
        if (!kx::IsDirectory(entry) || name == "." || name == "..") continue;
        KXLanguageItem item(entry.cFileName, "");
        if (!LoadLanProperty(m_strLanRoot + item.strID, item)) {
            kx::debug::Tell(
                "language",
                "%s%s is passed over: its Lan.ini isn't there or has no key Language in section [Language]",
                m_strLanRoot.GetString(), item.strID.GetString());
            continue;
        }
        const CKXAutoLock lock(&m_csLans);
        m_vecLans.push_back(std::move(item));
        nResult = 1;
    } while (search.Next());
    return nResult;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXLanResManager::LoadLanProperty(const CString& strLanPath, KXLanguageItem& item)
{
    item.strName = CKXIniDataMgr::GetString(strLanPath + "\\Lan.ini", szSection, szKey, "");
    return !item.strName.IsEmpty();
}

void CKXLanResManager::GetLans(std::vector<KXLanguageItem>& vecLans)
try {
    const CKXAutoLock lock(&m_csLans);
    vecLans = m_vecLans;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXLanResManager::GetLanCount()
{
    const CKXAutoLock lock(&m_csLans);
    return static_cast<int>(m_vecLans.size());
}

const KXLanguageItem* CKXLanResManager::FindLan(int nIndex)
{
    const bool bInList = nIndex >= 0 && static_cast<std::size_t>(nIndex) < m_vecLans.size();
    return bInList ? &m_vecLans[static_cast<std::size_t>(nIndex)] : nullptr;
}

CString CKXLanResManager::GetLanName(int nIndex)
{
    const CKXAutoLock lock(&m_csLans);
    const KXLanguageItem* pItem = FindLan(nIndex);
    return pItem ? pItem->strName : CString();
}

CString CKXLanResManager::GetLanID(int nIndex)
{
    const CKXAutoLock lock(&m_csLans);
    const KXLanguageItem* pItem = FindLan(nIndex);
    return pItem ? pItem->strID : CString();
}

int CKXLanResManager::SetCurrentLan(int nIndex, int bNotify)
{
    return nIndex == m_nCurLan ? 0 : Select(nIndex, bNotify);
}

int CKXLanResManager::SetCurrentLan(const CString& strLanID, int bNotify)
{
    int nFound = 0;
    {
        const CKXAutoLock lock(&m_csLans);
        const KXLanguageItem* pItem = FindLan(0);
        while (pItem && pItem->strID != strLanID)
            pItem = FindLan(++nFound);
        if (!pItem) return 0;
    }
    return Select(nFound, bNotify);
}

int CKXLanResManager::Select(int nIndex, int bNotify)
{
    {
        const CKXAutoLock lock(&m_csLans);
        const KXLanguageItem* pItem = FindLan(nIndex);
        if (!pItem) return 0;
        m_curLan = *pItem;
    }
    LoadLanData(); // a language without texts is selected all the same
    m_nCurLan = nIndex;
    if (bNotify) NotifyLanChanged();
    return 1;
}

void CKXLanResManager::SetCurrentLanFromIniFile(const CString& strIniFile, int bNotify)
{
    const CString strLanID = CKXIniDataMgr::GetString(strIniFile, szSection, szKey, "");
    if (strLanID.IsEmpty())
        SetCurrentLan(0, bNotify);
    else
        SetCurrentLan(strLanID, bNotify);
}

void CKXLanResManager::SetCurrentLanFromReg(const CString& strAppName, int bNotify)
{
    CString strLanID;
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, RegistryKey(strAppName), 0, dwAccess, &hKey) == ERROR_SUCCESS) {
        strLanID = ReadRegText(hKey, szKey);
        RegCloseKey(hKey);
    }
    if (strLanID.IsEmpty() || !SetCurrentLan(strLanID, bNotify)) SetCurrentLan(0, bNotify);
}

int CKXLanResManager::SaveLanToIniFile(const CString& strIniFile, const CString& strLanID)
{
    return CKXIniDataMgr::WriteString(strIniFile, szSection, szKey, strLanID);
}

int CKXLanResManager::SaveLanToReg(const CString& strAppName, const CString& strLanID)
{
    const CString strPath = RegistryKey(strAppName);
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, strPath, 0, dwAccess, &hKey) != ERROR_SUCCESS &&
        RegCreateKeyExA(HKEY_CURRENT_USER, strPath, 0, nullptr, 0, dwAccess, nullptr, &hKey, nullptr) !=
            ERROR_SUCCESS)
        return 0;
    const auto* pText = reinterpret_cast<const BYTE*>(strLanID.GetString());
    const long nError =
        RegSetValueExA(hKey, szKey, 0, REG_SZ, pText, static_cast<DWORD>(strLanID.GetLength()) + 1);
    RegCloseKey(hKey);
    return nError == ERROR_SUCCESS;
}

int CKXLanResManager::NotifyLanChanged()
{
    kx::WalkDesktop(WndEnumProc, this);
    return 1;
}

int CKXLanResManager::WndEnumProc(HWND hWnd, long)
{
    kx::TellOwnWindow(hWnd, WM_KXLANCHANGED);
    return 1;
}
