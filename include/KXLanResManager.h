#pragma once

#include "KXCritSection.h"
#include "KXLanguageItem.h"
#include "platform/String.h"
#include "platform/Window.h"

#include <memory>
#include <set>
#include <string_view>
#include <vector>

namespace kx::language {
class StringTable;
}

// The user-interface languages installed below the application's directory, the current one and its texts.
//
// A language is a directory directly below the language root. It holds `Lan.ini`, whose section "Language",
// key "Language" is the display name, and `Data.txt`, the texts: 8-bit in the process's code page, a line
// `key = value` for each, white space around both removed, lines without "=" passed over, the first of equal
// keys kept. In a value the four characters \r\n and the two characters \n become CR LF, \t becomes a tab.
//
// A client calls GetSingletonPtr, Initialize, then one of the SetCurrentLan... operations. The list of
// languages and the table of texts may be read by any thread at any time. Selections, Initialize and
// GetCurrentLan are not guarded against each other: the client makes them one at a time.
class KX_API CKXLanResManager
{
public:
    // The manager, made at the first call, which must not race with another; null for lack of
    // memory, or a CMemoryException* from its members. The object is the library's.
    static CKXLanResManager* GetSingletonPtr();

    CKXLanResManager(const CKXLanResManager&) = delete;
    CKXLanResManager& operator=(const CKXLanResManager&) = delete;

    // Lists the languages below CKXFileSystem::GetAppPath() + `strLanDir` anew, in the order in which the
    // directory gives them. 1 if there is one, else 0. The current language and its texts stay.
    int Initialize(const CString& strLanDir);

    // Copies the list of languages into `vecLans`, whose content is replaced. Any thread.
    void GetLans(std::vector<KXLanguageItem>& vecLans);
    // How many languages there are. Any thread.
    int GetLanCount();
    // Display name and identifier by position in the list; empty for a position that isn't in it. Any thread.
    CString GetLanName(int nIndex);
    CString GetLanID(int nIndex);

    // The current language; both texts are empty until one is selected. Refers into the manager: the next
    // selection overwrites it.
    const KXLanguageItem& GetCurrentLan() { return m_curLan; }
    // Its position in the list, -1 until one is selected.
    int GetCurrentLanIndex() const { return m_nCurLan; }

    // Selects by identifier, the first that is equal to the letter: loads its texts, and with `bNotify` sends
    // message WM_KXLANCHANGED to every visible top-level window of the process, waiting for each. The current
    // language is loaded and announced again. 1; 0, with nothing changed, if there is none. Texts that can't
    // be read show a message box and leave the table empty or partly filled; the selection stands.
    int SetCurrentLan(const CString& strLanID, int bNotify);
    // The same by position; also 0 for the language that is current.
    int SetCurrentLan(int nIndex, int bNotify);

    // Selects the identifier in section "Language", key "Language" of an INI file, or the first language
    // where that is empty. An identifier that isn't installed changes nothing.
    void SetCurrentLanFromIniFile(const CString& strIniFile, int bNotify);
    // Selects the identifier in the value "Language" of the user's registry key
    // "SOFTWARE\Brightfern\<strAppName>", or the first language where there is none or it isn't installed.
    void SetCurrentLanFromReg(const CString& strAppName, int bNotify);

    // Store an identifier where the two operations above look for it; the current language stays. 1 (from an
    // INI file: non-zero) on success, else 0. Any thread.
    static int SaveLanToIniFile(const CString& strIniFile, const CString& strLanID);
    static int SaveLanToReg(const CString& strAppName, const CString& strLanID);

    // The text of a key of the current language, or the key itself where the table lacks it. Keys are
    // compared to the letter. During a selection a key may be missing for a moment. Any thread.
    CString GetString(const CString& strKey);
    // Adds a text by hand, with the escapes of the file but untrimmed, until the next selection. A key that
    // is there keeps its text. Any thread.
    void InsertString(const CString& strKey, CString strValue);

protected:
    // No language is listed and none is current.
    CKXLanResManager();
    ~CKXLanResManager();

    // Empties the table of texts.
    void Uninitialize();
    // Reads the display name from the language directory `strLanPath`; 1 if there is one, else 0.
    int LoadLanProperty(const CString& strLanPath, KXLanguageItem& item);
    // Fills the table from the current language's `Data.txt`; 1 if it was read to its end, else 0.
    int LoadLanData();
    void ClearLanData();
    // Announces the current language to the process's windows; 1.
    int NotifyLanChanged();
    static int WndEnumProc(HWND hWnd, long lParam);

private:
    friend struct std::default_delete<CKXLanResManager>;

    bool ReadLanData(const CString& strFile);
    void AddLine(const CString& strLine);
    void TellMissing(const CString& strKey);
    void TellFindings() const;
    void Insert(std::string_view key, std::string_view value);
    int Select(int nIndex, int bNotify);
    const KXLanguageItem* FindLan(int nIndex) KX_REQUIRES(m_csLans);

    CKXCritSection m_csLans;
    CKXCritSection m_csData;
    std::vector<KXLanguageItem> m_vecLans KX_GUARDED_BY(m_csLans);
    std::unique_ptr<kx::language::StringTable> m_mapStrings KX_GUARDED_BY(m_csData); // null: no texts
    std::set<CString> m_setMissing KX_GUARDED_BY(m_csData); // keys that a diagnostic has told of
    KXLanguageItem m_curLan;
    int m_nCurLan = -1;
    CString m_strLanRoot;

    static CKXLanResManager* s_pInstance;
    static std::unique_ptr<CKXLanResManager> s_auto_ptr;
};
