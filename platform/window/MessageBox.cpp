#include "include/platform/MessageBox.h"

#include "platform/window/Desktop.h"

int AfxMessageBox(const char* pszText, UINT nType, UINT nHelpId)
{
    return kx::window::Desktop::Instance().ShowMessageBox({CString(pszText), nType, nHelpId});
}
