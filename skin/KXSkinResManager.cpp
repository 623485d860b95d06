#include "KXSkinResManager.h"

#include "KXMessages.h"
#include "internal/Debug.h"
#include "internal/IniSnapshot.h"
#include "internal/WindowNotice.h"
#include "platform/Debug.h"
#include "platform/Exception.h"
#include "skin/SkinCheck.h"

#include <new>
#include <optional>

namespace {

void TellFinding(const kx::Finding& finding)
{
    if (finding.nLine > 0)
        kx::debug::Tell("skin", "%s:%d: %s", finding.strFile.GetString(), finding.nLine,
                        finding.strText.GetString());
    else
        kx::debug::Tell("skin", "%s %s", finding.strFile.GetString(), finding.strText.GetString());
}

} // namespace

CKXSkinResManager* CKXSkinResManager::s_pInstance = nullptr;

CKXSkinResManager* CKXSkinResManager::GetSingletonPtr()
{
    if (!s_pInstance)
        s_pInstance = new (std::nothrow) CKXSkinResManager; // owned by s_auto_ptr from its constructor on
    return s_pInstance;
}

// Owned only once nothing can throw any more: until then the memory is for who called `new`.
CKXSkinResManager::CKXSkinResManager()
{
    const auto* pFileSystem = CKXFileSystem::GetInstancePtr();
    if (!pFileSystem) AfxThrowMemoryException();
    m_strSkinsRoot = pFileSystem->GetAppPath() + "\\Skins\\";
    EnumSkins();
    s_auto_ptr.reset(this);
    OutputDebugStringA("CKXSkinResManager Construction!\n");
}

CKXSkinResManager::~CKXSkinResManager()
{
    OutputDebugStringA("CKXSkinResManager Deconstruction!\n");
}

void CKXSkinResManager::UnInitialize()
{
    m_OthRes.UnLoadRes();
}

int CKXSkinResManager::EnumSkins()
try {
    m_vecSkins.clear();
    CKXFileSystem::EnumDirs(m_strSkinsRoot, EnumDirCallback, reinterpret_cast<long>(this));
    return GetSkinsTotal();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXSkinResManager::EnumDirCallback(tagKXFileInfo* pInfo, long lParam)
{
    CString strProbe;
    strProbe.Format("%s%s\\skin.ini", pInfo->szPath, pInfo->FindData.cFileName);
    if (CKXFileSystem::FindFileInfo(strProbe, nullptr))
        reinterpret_cast<CKXSkinResManager*>(lParam)->m_vecSkins.emplace_back(pInfo->FindData.cFileName);
    return 1;
}

CString CKXSkinResManager::GetSkinName(int nIndex)
{
    const bool bInList = nIndex >= 0 && nIndex < GetSkinsTotal();
    return bInList ? m_vecSkins[static_cast<std::size_t>(nIndex)] : CString();
}

int CKXSkinResManager::SetSkin(int nIndex, int bNotify)
{
    if (nIndex < 0 || nIndex >= GetSkinsTotal()) return 0;
    if (nIndex == m_nCurrentSkin) return 1;
    return Select(nIndex, GetSkinName(nIndex), bNotify);
}

int CKXSkinResManager::SetSkin(const CString& strSkinName, int bNotify)
{
    for (int nIndex = 0; nIndex < GetSkinsTotal(); ++nIndex)
        if (GetSkinName(nIndex).CompareNoCase(strSkinName) == 0) return Select(nIndex, strSkinName, bNotify);
    return 0;
}

int CKXSkinResManager::Select(int nIndex, const CString& strName, int bNotify)
{
    m_nCurrentSkin = nIndex;
    m_strCurrentSkinPath = m_strSkinsRoot + strName + "\\";
    if (!LoadSkinResources()) return 0;
    if (bNotify) NotifySkinChanged();
    return 1;
}

int CKXSkinResManager::LoadSkinResources()
try {
    const CString strFile = m_strCurrentSkinPath + "Skin.ini";
    const kx::profile::IniSnapshot snapshot; // all values from one state of the file
    const bool bTell = kx::debug::Wants("skin");
    {
        std::optional<kx::debug::Quiet> quiet;
        if (bTell) quiet.emplace(); // the check tells of each file, and once
        m_WndRes.LoadRes(m_strCurrentSkinPath + "Common\\Window\\", strFile);
        m_BtnRes.LoadRes(m_strCurrentSkinPath + "Common\\Button\\", strFile);
        m_IMLRes.LoadRes(m_strCurrentSkinPath + "Common\\IMList\\", strFile);
        m_OthRes.LoadRes(m_strCurrentSkinPath + "Common\\Others\\", strFile);
        m_ClrDef.ReadColors(strFile);
    }
    if (bTell) kx::skin::CheckSkin(m_strCurrentSkinPath, TellFinding);
    return 1;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXSkinResManager::NotifySkinChanged()
{
    if (m_pfnSkinChanged) m_pfnSkinChanged(m_strCurrentSkinPath);
    kx::WalkDesktop(WndEnumProc, this);
    return 1;
}

int CKXSkinResManager::WndEnumProc(HWND hWnd, long)
{
    kx::TellOwnWindow(hWnd, WM_KXSKINCHANGED);
    return 1;
}

int CKXSkinResManager::GetTitleBarAdjust()
{
    return m_WndRes.m_nTitleHeight - GetSystemMetrics(SM_CYCAPTION) - GetSystemMetrics(SM_CYFRAME);
}
