#include "KXAutoResHandle.h"

CKXAutoResHandle::CKXAutoResHandle(HINSTANCE hResource)
    : m_hOldResource(AfxGetModuleState()->m_hCurrentResourceHandle), m_hNewResource(hResource)
{
    AfxGetModuleState()->m_hCurrentResourceHandle = m_hNewResource;
}

CKXAutoResHandle::~CKXAutoResHandle()
{
    AfxGetModuleState()->m_hCurrentResourceHandle = m_hOldResource;
}
