// The table of texts of CKXLanResManager.

#include "KXAutoLock.h"
#include "KXLanResManager.h"
#include "platform/MessageBox.h"
#include "platform/StdioFile.h"

#include <array>
#include <new>
#include <utility>

namespace {

void ShowFailure(const CException& exception)
{
    std::array<char, 1024> text;
    if (exception.GetErrorMessage(text.data(), static_cast<UINT>(text.size()))) AfxMessageBox(text.data(), 0, 0);
}

// In this order, each over the whole value: what one makes, the next may see.
void ReplaceEscapes(CString& strValue)
{
    if (strValue.View().find('\\') == std::string_view::npos) return;
    strValue.Replace("\\r\\n", "\r\n");
    strValue.Replace("\\n", "\r\n");
    strValue.Replace("\\t", "\t");
}

} // namespace

CString CKXLanResManager::GetString(const CString& strKey)
{
    const HashedKey key(strKey);
    const CKXAutoLock lock(&m_csData);
    const auto found = m_mapStrings.find(key);
    return found != m_mapStrings.end() ? found->second : strKey;
}

void CKXLanResManager::InsertString(const CString& strKey, CString strValue)
{
    ReplaceEscapes(strValue);
    Insert(strKey, std::move(strValue));
}

void CKXLanResManager::Insert(CString strKey, CString strValue)
{
    const CKXAutoLock lock(&m_csData);
    m_mapStrings.try_emplace(std::move(strKey), std::move(strValue));
}

// The texts are freed outside the lock.
void CKXLanResManager::ClearLanData()
{
    StringMap old;
    const CKXAutoLock lock(&m_csData);
    m_mapStrings.swap(old);
}

int CKXLanResManager::LoadLanData()
{
    ClearLanData();
    try {
        return ReadLanData(m_strLanRoot + m_curLan.strID + "\\Data.txt");
    } catch (CException* pException) {
        ShowFailure(*pException);
        pException->Delete();
    } catch (const std::bad_alloc&) {
        ShowFailure(CMemoryException());
    }
    return 0;
}

bool CKXLanResManager::ReadLanData(const CString& strFile)
{
    CStdioFile file;
    CFileException failure;
    if (!file.Open(strFile, CFile::modeRead | CFile::shareDenyNone, &failure)) {
        ShowFailure(failure);
        return false;
    }
    CString strLine;
    while (file.ReadString(strLine)) AddLine(strLine);
    file.Close();
    return true;
}

void CKXLanResManager::AddLine(const CString& strLine)
{
    const int nEqual = strLine.Find('=');
    if (nEqual < 0) return;
    CString strKey = strLine.Left(nEqual);
    CString strValue = strLine.Mid(nEqual + 1);
    strKey.Trim();
    strValue.Trim();
    ReplaceEscapes(strValue);
    Insert(std::move(strKey), std::move(strValue));
}
