#include "KXGuid.h"

#include "platform/CodePage.h"
#include "platform/Exception.h"

#include <new>
#include <string>

int CreateGUIDString(CString& strGuid)
{
    strGuid.Empty();
    GUID guid{};
    if (CoCreateGuid(&guid) < 0) return 0;
    GUID2String(guid, strGuid);
    return 1;
}

void GUID2String(const GUID& guid, CString& strGuid)
{
    const auto& d = guid.Data4;
    strGuid.Format("%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X", guid.Data1, guid.Data2, guid.Data3,
                   d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
}

void String2GUID(CString strGuid, GUID& guid)
try {
    if (strGuid.GetAt(0) != '{') strGuid = "{" + strGuid + "}";
    // A byte never becomes more than one unit.
    std::u16string wide(strGuid.View().size() + 1, u'\0');
    MultiByteToWideChar(CP_ACP, 0, strGuid, -1, wide.data(), static_cast<int>(wide.size()));
    CLSIDFromString(wide.c_str(), &guid);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int IsSameGUID(const GUID& guid1, const GUID& guid2)
{
    return guid1 == guid2 ? 1 : 0;
}
