#include "tools/KXCrashReport/StackWalk.h"

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <sstream>

namespace kx::report {

namespace {

constexpr std::size_t kInner = 96;
constexpr std::size_t kOuter = 32;
constexpr std::size_t kMaxFrames = 100'000;

// Searches for no debug information over the network, which a crash doesn't wait for.
const Dwfl_Callbacks kFiles{dwfl_linux_proc_find_elf, dwfl_standard_find_debuginfo, nullptr, nullptr};

std::string Demangle(const char* pszName)
{
    if (!pszName) return {};
    int nStatus = 0;
    const std::unique_ptr<char, decltype(&std::free)> plain(
        abi::__cxa_demangle(pszName, nullptr, nullptr, &nStatus), std::free);
    return plain ? plain.get() : pszName;
}

std::string FileOf(Dwfl_Module* module, Dwarf_Addr* pStart = nullptr, Dwarf_Addr* pEnd = nullptr)
{
    const char* pszFile = nullptr;
    const char* pszName =
        dwfl_module_info(module, nullptr, pStart, pEnd, nullptr, nullptr, &pszFile, nullptr);
    return pszFile ? pszFile : pszName ? pszName : "";
}

std::string SourceOf(Dwfl_Module* module, std::uint64_t address)
{
    Dwfl_Line* line = dwfl_module_getsrc(module, address);
    int nLine = 0;
    const char* pszFile = line ? dwfl_lineinfo(line, nullptr, &nLine, nullptr, nullptr, nullptr) : nullptr;
    return pszFile ? pszFile + (":" + std::to_string(nLine)) : "";
}

std::string BuildOf(Dwfl_Module* module)
{
    const unsigned char* bits = nullptr;
    GElf_Addr address = 0;
    const int nLength = dwfl_module_build_id(module, &bits, &address);
    std::ostringstream text;
    text << std::hex;
    for (int n = 0; n < nLength; ++n)
        text << (bits[n] >> 4) << (bits[n] & 15);
    return text.str();
}

} // namespace

// The unwinder reads the process by these: the memory, and the registers of the one thread in hand.
struct StackWalk::Callbacks
{
    static StackWalk& Of(void* pArg) { return *static_cast<StackWalk*>(pArg); }

    static pid_t NextThread(Dwfl*, void* pArg, void** ppThread)
    {
        if (*ppThread) return 0;
        *ppThread = pArg;
        return Of(pArg).m_thread.tid;
    }
    static bool GetThread(Dwfl*, pid_t tid, void* pArg, void** ppThread)
    {
        *ppThread = pArg;
        return tid == Of(pArg).m_thread.tid;
    }
    static bool ReadMemory(Dwfl*, Dwarf_Addr address, Dwarf_Word* pWord, void* pArg)
    {
        return Of(pArg).m_tracee.Read(address, pWord, sizeof(*pWord)) == sizeof(*pWord);
    }
    static bool SetRegisters(Dwfl_Thread* thread, void* pThread)
    {
        const Registers& registers = Of(pThread).m_thread.registers;
        const auto words = ForUnwinding(registers);
        dwfl_thread_state_register_pc(thread, Instruction(registers));
        return dwfl_thread_state_registers(thread, 0, words.size(), words.data());
    }
    static int AddFrame(Dwfl_Frame* frame, void* pArg)
    {
        StackWalk& walk = Of(pArg);
        Place place;
        if (!dwfl_frame_pc(frame, &place.address, &place.bExact)) return DWARF_CB_ABORT;
        walk.m_places.push_back(place);
        return walk.m_places.size() < kMaxFrames ? DWARF_CB_OK : DWARF_CB_ABORT;
    }
    static constexpr Dwfl_Thread_Callbacks kThread{NextThread,   GetThread, ReadMemory,
                                                   SetRegisters, nullptr,   nullptr};
};

StackWalk::StackWalk(const Tracee& tracee) : m_tracee(tracee), m_dwfl(dwfl_begin(&kFiles))
{
    unsetenv("DEBUGINFOD_URLS");
    if (!m_dwfl) return;
    dwfl_report_begin(m_dwfl.get());
    dwfl_linux_proc_report(m_dwfl.get(), tracee.Pid());
    dwfl_report_end(m_dwfl.get(), nullptr, nullptr);
    if (tracee.Threads().empty()) return;
    m_thread.tid = tracee.Pid();
    dwfl_attach_state(m_dwfl.get(), nullptr, tracee.Pid(), &Callbacks::kThread, this);
}

Frame StackWalk::Describe(Place place) const
{
    Frame frame{place.address, {}, 0, {}, {}};
    const std::uint64_t within = place.bExact ? place.address : place.address - 1;
    Dwfl_Module* module = dwfl_addrmodule(m_dwfl.get(), within);
    if (!module) return frame;
    GElf_Sym symbol;
    GElf_Off offset = 0;
    frame.function =
        Demangle(dwfl_module_addrinfo(module, within, &offset, &symbol, nullptr, nullptr, nullptr));
    frame.offset = offset + (place.address - within);
    frame.module = FileOf(module);
    frame.source = SourceOf(module, within);
    return frame;
}

void StackWalk::Unwind(const ThreadState& thread)
{
    m_thread = thread;
    dwfl_getthread_frames(m_dwfl.get(), thread.tid, Callbacks::AddFrame, this);
}

// A call of what is no code, as through a null pointer, is unwound from where it came from.
Stack StackWalk::Walk(const ThreadState& thread)
{
    m_places.clear();
    if (!m_dwfl) return {};
    ThreadState from = thread;
    const std::uint64_t address = Instruction(thread.registers);
    if (!dwfl_addrmodule(m_dwfl.get(), address)) {
        m_places.push_back({address, true});
        if (const auto word = m_tracee.Read<std::uint64_t>(StackPointer(thread.registers)))
            from.registers = AfterReturn(thread.registers, *word);
    }
    Unwind(from);

    Stack stack;
    const std::size_t inner = std::min(m_places.size(), kInner);
    const std::size_t outer = std::min(m_places.size() - inner, kOuter);
    stack.skipped = m_places.size() - inner - outer;
    for (std::size_t n = 0; n < m_places.size(); ++n) {
        if (n < inner) stack.inner.push_back(Describe(m_places[n]));
        if (n >= inner + stack.skipped) stack.outer.push_back(Describe(m_places[n]));
    }
    return stack;
}

std::vector<Module> StackWalk::Modules() const
{
    std::vector<Module> modules;
    if (!m_dwfl) return modules;
    const auto add = [](Dwfl_Module* module, void**, const char*, Dwarf_Addr, void* pArg) -> int {
        Module entry;
        entry.file = FileOf(module, &entry.start, &entry.end);
        entry.build = BuildOf(module);
        static_cast<std::vector<Module>*>(pArg)->push_back(std::move(entry));
        return DWARF_CB_OK;
    };
    dwfl_getmodules(m_dwfl.get(), add, &modules, 0);
    return modules;
}

} // namespace kx::report
