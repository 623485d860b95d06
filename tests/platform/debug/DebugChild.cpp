// Sends from main and from the destructor of a static object, which is also heard by an observer.

#include "include/platform/Debug.h"
#include "include/platform/Host.h"

#include <cstdlib>
#include <unistd.h>

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

int main()
{
    setenv("KX_DEBUG", "1", 1); // too late to count
    OutputDebugStringA("main\n");
}
