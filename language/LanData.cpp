// The table of texts of CKXLanResManager.

#include "KXAutoLock.h"
#include "KXLanResManager.h"
#include "language/StringTable.h"
#include "platform/MessageBox.h"
#include "platform/StdioFile.h"

#include <array>
#include <new>
#include <string_view>

using kx::language::StringTable;

namespace {

void ShowFailure(const CException& exception)
{
    std::array<char, 1024> text;
    if (exception.GetErrorMessage(text.data(), static_cast<UINT>(text.size())))
        AfxMessageBox(text.data(), 0, 0);
}

// White space is ASCII and never the second byte of a letter.
std::string_view Trim(std::string_view text)
{
    constexpr auto isSpace = [](char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// In this order, each over the whole value: what one makes, the next may see.
CString ReplaceEscapes(std::string_view value)
{
    CString strValue(value);
    strValue.Replace("\\r\\n", "\r\n");
    strValue.Replace("\\n", "\r\n");
    strValue.Replace("\\t", "\t");
    return strValue;
}

} // namespace

CString CKXLanResManager::GetString(const CString& strKey)
{
    const CKXAutoLock lock(&m_csData);
    const CString* pText = m_mapStrings ? m_mapStrings->Find(strKey.View()) : nullptr;
    return pText ? *pText : strKey;
}

void CKXLanResManager::InsertString(const CString& strKey, // by value, as clients have it declared:
                                    CString strValue)      // NOLINT(performance-unnecessary-value-param)
{
    Insert(strKey.View(), strValue.View());
}

void CKXLanResManager::Insert(std::string_view key, std::string_view value)
{
    CString strReplaced;
    if (value.find('\\') != std::string_view::npos) {
        strReplaced = ReplaceEscapes(value);
        value = strReplaced.View();
    }
    const CKXAutoLock lock(&m_csData);
    if (!m_mapStrings) m_mapStrings = std::make_unique<StringTable>();
    m_mapStrings->Insert(key, value);
}

// The old texts are freed outside the lock.
void CKXLanResManager::ClearLanData()
{
    std::unique_ptr<StringTable> old;
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
    while (file.ReadString(strLine))
        AddLine(strLine);
    file.Close();
    return true;
}

void CKXLanResManager::AddLine(const CString& strLine)
{
    const int nEqual = strLine.Find('=');
    if (nEqual < 0) return;
    const std::string_view line = strLine.View();
    const auto nKey = static_cast<std::size_t>(nEqual);
    Insert(Trim(line.substr(0, nKey)), Trim(line.substr(nKey + 1)));
}
