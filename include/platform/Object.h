#pragma once

// The framework's root class and its record of a class at run time.

#include "../KXExport.h"
#include "Types.h"

class CObject;

// A class at run time: its name, size and base.
struct KX_API CRuntimeClass
{
    // The name and the size of its objects.
    const char* m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;                        // 0xFFFF: not serialised
    CObject* (*m_pfnCreateObject)();       // null: objects aren't made by name
    CRuntimeClass* (*m_pfnGetBaseClass)(); // null: the root

    // Whether this is that class or derives from it.
    bool IsDerivedFrom(const CRuntimeClass* pBase) const;
};

// The base of the framework's classes.
class KX_API CObject
{
public:
    // The object's class.
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();

    // This class.
    static CRuntimeClass* GetThisClass();
    int IsKindOf(const CRuntimeClass* pClass) const { return GetRuntimeClass()->IsDerivedFrom(pClass); }

    // The record of this class.
    static CRuntimeClass classCObject;

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

// Inside a class: its run-time record. In one source file: the record's definition.
#define DECLARE_DYNAMIC(class_name)                                                                          \
public:                                                                                                      \
    static CRuntimeClass class##class_name;                                                                  \
    static CRuntimeClass* GetThisClass();                                                                    \
    CRuntimeClass* GetRuntimeClass() const override;                                                         \
                                                                                                             \
protected:                                                                                                   \
    static CRuntimeClass* _GetBaseClass();

// In its source: the class and its base.
#define IMPLEMENT_DYNAMIC(class_name, base_name)                                                             \
    CRuntimeClass class_name::class##class_name = {#class_name, sizeof(class_name), 0xFFFF, nullptr,         \
                                                   &class_name::_GetBaseClass};                              \
    CRuntimeClass* class_name::GetThisClass()                                                                \
    {                                                                                                        \
        return &class##class_name;                                                                           \
    }                                                                                                        \
    CRuntimeClass* class_name::GetRuntimeClass() const                                                       \
    {                                                                                                        \
        return &class##class_name;                                                                           \
    }                                                                                                        \
    CRuntimeClass* class_name::_GetBaseClass()                                                               \
    {                                                                                                        \
        return base_name::GetThisClass();                                                                    \
    }
