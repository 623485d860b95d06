#include "include/platform/Object.h"

CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), 0xFFFF, nullptr, nullptr};

CObject::~CObject() = default;

CRuntimeClass* CObject::GetThisClass()
{
    return &classCObject;
}

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return &classCObject;
}

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBase) const
{
    const CRuntimeClass* pClass = this;
    while (pClass && pClass != pBase)
        pClass = pClass->m_pfnGetBaseClass ? pClass->m_pfnGetBaseClass() : nullptr;
    return pClass != nullptr;
}
