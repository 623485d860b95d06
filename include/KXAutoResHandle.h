#pragma once

#include "KXExport.h"
#include "platform/Module.h"

// Makes a module the current one for resource look-ups during a scope. Guards nest. The module's state is
// written without a lock: one thread at a time.
class KX_API CKXAutoResHandle
{
public:
    // Keeps the handle that is current and makes `hResource` current; null means the executable. The module
    // stays the caller's.
    explicit CKXAutoResHandle(HINSTANCE hResource);
    CKXAutoResHandle(const CKXAutoResHandle&) = delete;
    // Copies both handles; which module is current doesn't change.
    CKXAutoResHandle& operator=(const CKXAutoResHandle&) = default;
    // Makes the kept handle current again.
    ~CKXAutoResHandle();

private:
    HINSTANCE m_hOldResource;
    HINSTANCE m_hNewResource;
};
