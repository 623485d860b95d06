// Sends texts and diagnostics from main, and one text from the destructor of a static object, which an
// observer hears too. With an argument it asks for the desktop.

#include "include/platform/Debug.h"
#include "include/platform/Host.h"
#include "include/platform/Window.h"
#include "internal/Debug.h"
#include "tests/support/Standard.h"

namespace {

struct Last
{
    ~Last()
    {
        KXHost::AddDebugObserver([](std::string_view text) {
            const std::string line = "observed " + std::string(text);
            if (write(STDERR_FILENO, line.data(), line.size()) < 0) std::abort();
        });
        OutputDebugStringA("static\n");
    }
} g_last;

} // namespace

int main(int nArgs, char**)
{
    if (nArgs > 1) return GetSystemMetrics(SM_CXSCREEN) > 0 ? 0 : 1;
    setenv("KX_DEBUG", "1", 1); // too late to count
    OutputDebugStringA("main\n");
    kx::debug::Tell("skin", "s");
    kx::debug::Tell("xml", "x");
}
