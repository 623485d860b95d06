// The static objects of the library whose order of destruction matters, in one unit and so in the order of
// their lines: at unload the last goes first, and the file system goes after all that may still ask it.

#include "KXFileSystem.h"
#include "KXLanResManager.h"
#include "KXLogSys.h"
#include "KXSkinResManager.h"

std::unique_ptr<CKXFileSystem> CKXFileSystem::s_auto_ptr;
std::unique_ptr<CKXLogSys> CKXLogSys::s_auto_ptr;
std::unique_ptr<CKXLanResManager> CKXLanResManager::s_auto_ptr;
std::unique_ptr<CKXSkinResManager> CKXSkinResManager::s_auto_ptr;
