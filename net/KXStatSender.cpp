#include "KXStatSender.h"

#include "KXGuid.h"
#include "KXHttpDownloadMgr.h"
#include "platform/Registry.h"

#include <array>

namespace {

constexpr char szKey[] = "Software\\norvale\\setup";
constexpr char szValue[] = "PCGUID";

// The key, open for reading and writing, made where it lacks; null where it can't be made, which reads and
// writes refuse.
class SetupKey
{
public:
    SetupKey()
    {
        constexpr DWORD dwAccess = KEY_READ | KEY_WRITE;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, szKey, 0, dwAccess, &m_hKey) == ERROR_SUCCESS) return;
        RegCreateKeyExA(HKEY_CURRENT_USER, szKey, 0, nullptr, 0, dwAccess, nullptr, &m_hKey, nullptr);
    }
    SetupKey(const SetupKey&) = delete;
    SetupKey& operator=(const SetupKey&) = delete;
    ~SetupKey()
    {
        if (m_hKey) RegCloseKey(m_hKey);
    }
    HKEY Get() const { return m_hKey; }

private:
    HKEY m_hKey = nullptr;
};

CString MakeUserId()
{
    CString strId;
    if (!CreateGUIDString(strId)) return "xxxx";
    strId.Replace("-", "");
    return strId;
}

} // namespace

CKXStatSender& CKXStatSender::Instance()
{
    static CKXStatSender instance;
    return instance;
}

CKXStatSender::CKXStatSender() = default;
CKXStatSender::CKXStatSender(CKXStatSender const&) = default;
CKXStatSender& CKXStatSender::operator=(CKXStatSender const&) = default;
CKXStatSender::~CKXStatSender() = default;

void CKXStatSender::Initialize(CString const& strBaseUrl, CString const& strVersion)
{
    CString strId;
    if (!ReadUserId(strId) || strId.IsEmpty()) {
        strId = MakeUserId();
        SaveUserId(strId); // where that fails, the id is this run's alone
    }
    m_strUrlPrefix.Format("%s?userid=%s&ver=%s&optype=", strBaseUrl.GetString(), strId.GetString(),
                          strVersion.GetString());
}

bool CKXStatSender::ReadUserId(CString& strId)
{
    const SetupKey key;
    std::array<char, 100> text;
    DWORD dwType = REG_NONE;
    DWORD cb = text.size();
    auto* pText = reinterpret_cast<BYTE*>(text.data());
    if (RegQueryValueExA(key.Get(), szValue, nullptr, &dwType, pText, &cb) != ERROR_SUCCESS) return false;
    const bool bText = dwType == REG_SZ || dwType == REG_EXPAND_SZ;
    if (!bText || cb == 0 || text[cb - 1] != '\0') return false;
    strId = text.data();
    return true;
}

bool CKXStatSender::SaveUserId(CString const& strId)
{
    const SetupKey key;
    const auto* pText = reinterpret_cast<const BYTE*>(strId.GetString());
    const auto cb = static_cast<DWORD>(strId.GetLength()) + 1;
    return RegSetValueExA(key.Get(), szValue, 0, REG_SZ, pText, cb) == ERROR_SUCCESS;
}

void CKXStatSender::Report(CString const& strOpType, int nOpTypeVal)
{
    CString strUrl;
    strUrl.Format("%s%s&optypeval=%d", m_strUrlPrefix.GetString(), strOpType.GetString(), nOpTypeVal);
    CKXHttpDownloadMgr::Instance().AddTask(strUrl, "", nullptr);
}
