#pragma once

// All of the library's classes.

#include "KXAutoLock.h"
#include "KXAutoResHandle.h"
#include "KXCritSection.h"
#include "KXDebug.h"
#include "KXExeFileInfo.h"
#include "KXFileSystem.h"
#include "KXGuid.h"
#include "KXIniDataMgr.h"
#include "KXLanResManager.h"
#include "KXLanguageItem.h"
#include "KXLogSys.h"
#include "KXMessages.h"
#include "KXNum.h"
#include "KXRandom.h"
#include "KXStrHelper.h"
