#include "include/platform/Module.h"

namespace {
constinit AFX_MODULE_STATE g_state;
}

AFX_MODULE_STATE* AfxGetModuleState() noexcept
{
    return &g_state;
}

HINSTANCE AfxGetResourceHandle() noexcept
{
    return g_state.m_hCurrentResourceHandle;
}

void AfxSetResourceHandle(HINSTANCE hInstance) noexcept
{
    g_state.m_hCurrentResourceHandle = hInstance;
}
