#pragma once

#include "include/KXExport.h"

#include <memory>

namespace kx::profile {

struct KeptIni;

// While one lives, its thread's reads of an INI file see the file as it was at the first of them, unless the
// thread writes to a file: many values of one file then come from one state of it, and cost one look at it. A
// snapshot that is made while another lives adds nothing. It ends on the thread that made it.
class KX_API IniSnapshot
{
public:
    IniSnapshot();
    IniSnapshot(const IniSnapshot&) = delete;
    IniSnapshot& operator=(const IniSnapshot&) = delete;
    ~IniSnapshot();

private:
    std::unique_ptr<KeptIni> m_kept;
};

} // namespace kx::profile
