#pragma once

#include "platform/String.h"

#include <utility>

// One installed language.
struct KXLanguageItem
{
    // Takes both texts over.
    KXLanguageItem(CString id, CString name) : strID(std::move(id)), strName(std::move(name)) {}

    CString strID;   // the name of its directory: what selects and stores it, compared exactly
    CString strName; // what a user reads: `Lan.ini`, section "Language", key "Language"
};
