#include "KXCommonClass.h"

// Makes the singletons in another order than the one in which they are to go.
int main()
{
    OutputDebugStringA("loaded\n");
    CKXSkinResManager::GetSingletonPtr();
    CKXLogSys::GetSingletonPtr();
    CKXLanResManager::GetSingletonPtr();
    CKXFileSystem::GetInstancePtr();
    OutputDebugStringA("end of main\n");
    return 0;
}
