// The table of texts of CKXLanResManager.

#include "KXAutoLock.h"
#include "KXLanResManager.h"
#include "internal/Debug.h"
#include "language/LanguageCheck.h"
#include "language/StringTable.h"
#include "platform/Exception.h"
#include "platform/MessageBox.h"
#include "platform/StdioFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
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
try {
    {
        const CKXAutoLock lock(&m_csData);
        if (const CString* pText = m_mapStrings ? m_mapStrings->Find(strKey.View()) : nullptr) return *pText;
    }
    if (kx::debug::Wants("language")) TellMissing(strKey);
    return strKey;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

// Each key once, as a client may ask at every paint.
void CKXLanResManager::TellMissing(const CString& strKey)
{
    constexpr std::size_t nMost = 1000;
    {
        const CKXAutoLock lock(&m_csData);
        if (m_setMissing.size() >= nMost || !m_setMissing.insert(strKey).second) return;
    }
    kx::debug::Tell("language", "there is no text for key \"%s\"; the key is taken", strKey.GetString());
}

void CKXLanResManager::InsertString(const CString& strKey, // by value, as clients have it declared:
                                    CString strValue)      // NOLINT(performance-unnecessary-value-param)
try {
    Insert(strKey.View(), strValue.View());
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
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
    m_setMissing.clear();
}

int CKXLanResManager::LoadLanData()
{
    ClearLanData();
    try {
        if (kx::debug::Wants("language")) TellFindings();
        return ReadLanData(m_strLanRoot + m_curLan.strID + "\\Data.txt");
    } catch (CException* pException) {
        ShowFailure(*pException);
        pException->Delete();
    } catch (const std::bad_alloc&) {
        ShowFailure(CMemoryException());
    }
    return 0;
}

void CKXLanResManager::TellFindings() const
{
    std::vector<kx::language::Text> texts;
    kx::language::ReadLanguage(m_strLanRoot + m_curLan.strID + "\\", texts, [](const kx::Finding& finding) {
        if (finding.nLine > 0)
            kx::debug::Tell("language", "%s:%d: %s", finding.strFile.GetString(), finding.nLine,
                            finding.strText.GetString());
        else
            kx::debug::Tell("language", "%s %s", finding.strFile.GetString(), finding.strText.GetString());
    });
}

bool CKXLanResManager::ReadLanData(const CString& strFile)
{
    CStdioFile file;
    CFileException failure;
    if (!file.Open(strFile, CFile::modeRead | CFile::shareDenyNone, &failure)) {
        ShowFailure(failure);
        return false;
    }
    {
        constexpr std::uint64_t cbLine = 32;     // a short one, so that there is room for all
        constexpr std::uint64_t nMost = 1 << 20; // 8 MB, whatever size a file claims
        const CKXAutoLock lock(&m_csData);
        if (!m_mapStrings) m_mapStrings = std::make_unique<StringTable>();
        m_mapStrings->Reserve(std::min(file.GetLength() / cbLine, nMost));
    }
    CString strLine;
    while (file.ReadString(strLine))
        AddLine(strLine);
    file.Close();
    return true;
}

void CKXLanResManager::AddLine(const CString& strLine)
{
    if (const auto line = kx::language::SplitLine(strLine)) Insert(line->key, line->value);
}
