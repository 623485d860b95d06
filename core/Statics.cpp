// The static objects of the library whose order of destruction matters, in one unit and so in the order of
// their lines: at unload the last goes first, the file system goes after all that may still ask it, and what
// a crash is reported with goes last of all.

#include "KXCrashDumper.h"
#include "KXFileSystem.h"
#include "KXLanResManager.h"
#include "KXLogSys.h"
#include "KXSkinResManager.h"

CString CKXCrashDumper::m_strAppName;
CString CKXCrashDumper::m_strAppPath;
CString CKXCrashDumper::m_strContactInfo;
CString CKXCrashDumper::m_strExeName;
CString CKXCrashDumper::m_strRestartParam;

std::unique_ptr<CKXFileSystem> CKXFileSystem::s_auto_ptr;
std::unique_ptr<CKXLogSys> CKXLogSys::s_auto_ptr;
std::unique_ptr<CKXLanResManager> CKXLanResManager::s_auto_ptr;
std::unique_ptr<CKXSkinResManager> CKXSkinResManager::s_auto_ptr;
