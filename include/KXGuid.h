#pragma once

#include "KXExport.h"
#include "platform/Guid.h"
#include "platform/String.h"

// GUIDs as text: 36 characters, "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X" of the fields in order, in
// upper case and without braces. Any thread.

// Makes a new GUID and gives its text. 1; 0, with the text empty, where the system gives none.
KX_API int CreateGUIDString(CString& strGuid);

// The text of a GUID.
KX_API void GUID2String(const GUID& guid, CString& strGuid);

// The GUID of a text, in either case, with or without braces round it. Any other text gives all zero.
KX_API void String2GUID(CString strGuid, GUID& guid);

// 1 if all 16 bytes are equal, else 0.
KX_API int IsSameGUID(const GUID& guid1, const GUID& guid2);
