#include "tools/KXCrashReport/CoreNotes.h"

#include "tools/KXCrashReport/Text.h"

#include <algorithm>
#include <cstring>
#include <elf.h>
#include <sys/procfs.h>

namespace kx::report {

namespace {

class Notes
{
public:
    void Add(std::uint32_t nType, std::string_view content)
    {
        static constexpr std::string_view kOwner("CORE\0\0\0\0", 8); // five bytes, and what aligns the next
        const Elf64_Nhdr head{5, static_cast<std::uint32_t>(content.size()), nType};
        m_bytes.append(reinterpret_cast<const char*>(&head), sizeof(head)).append(kOwner).append(content);
        m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    }
    template <class Record>
    void AddRecord(std::uint32_t nType, const Record& record)
    {
        Add(nType, {reinterpret_cast<const char*>(&record), sizeof(record)});
    }
    std::string Take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

void AddThread(Notes& notes, const Tracee& tracee, const ThreadState& thread, int nSignal)
{
    prstatus_t status{};
    static_assert(sizeof(status.pr_reg) == sizeof(thread.registers));
    status.pr_info.si_signo = nSignal;
    status.pr_cursig = static_cast<short>(nSignal);
    status.pr_pid = thread.tid;
    std::memcpy(&status.pr_reg, &thread.registers, sizeof(status.pr_reg));
    elf_fpregset_t floating{};
    status.pr_fpvalid = tracee.ReadRegisters(thread.tid, NT_PRFPREG, &floating, sizeof(floating)) ? 1 : 0;
    notes.AddRecord(NT_PRSTATUS, status);
    if (status.pr_fpvalid) notes.AddRecord(NT_PRFPREG, floating);
}

void AddProcess(Notes& notes, const Tracee& tracee)
{
    prpsinfo_t info{};
    info.pr_sname = 'R';
    info.pr_pid = tracee.Pid();
    std::string name = ReadFile(tracee.ProcFile("comm"));
    name.resize(std::min({name.size(), name.find('\n'), sizeof(info.pr_fname) - 1}));
    name.copy(info.pr_fname, sizeof(info.pr_fname) - 1);
    const std::string arguments = OneLine(ReadFile(tracee.ProcFile("cmdline")));
    arguments.copy(info.pr_psargs, sizeof(info.pr_psargs) - 1);
    notes.AddRecord(NT_PRPSINFO, info);
}

void AppendWord(std::string& bytes, std::uint64_t word)
{
    bytes.append(reinterpret_cast<const char*>(&word), sizeof(word));
}

void AddFiles(Notes& notes, const std::vector<Mapping>& maps)
{
    constexpr std::uint64_t kPage = 4096; // the unit of the offsets
    std::string ranges;
    std::string names;
    std::uint64_t count = 0;
    for (const Mapping& map : maps) {
        if (!map.IsFile()) continue;
        for (const std::uint64_t word : {map.start, map.end, map.offset / kPage})
            AppendWord(ranges, word);
        names.append(map.path).push_back('\0');
        ++count;
    }
    std::string content;
    AppendWord(content, count);
    AppendWord(content, kPage);
    notes.Add(NT_FILE, content + ranges + names);
}

} // namespace

std::string CoreNotes(const Tracee& tracee, const std::vector<ThreadState>& threads,
                      const std::optional<CrashRecord>& crash, const std::vector<Mapping>& maps)
{
    // A debugger shows the first thread, takes what follows a thread's registers as its own, and looks at any
    // thread for the signal.
    Notes notes;
    AddProcess(notes, tracee);
    for (const ThreadState& thread : threads) {
        const bool bCrashed = crash && thread.tid == crash->tid;
        AddThread(notes, tracee, thread, crash ? crash->signal.si_signo : 0);
        if (bCrashed) notes.AddRecord(NT_SIGINFO, crash->signal);
    }
    notes.Add(NT_AUXV, ReadFile(tracee.ProcFile("auxv")));
    AddFiles(notes, maps);
    return notes.Take();
}

} // namespace kx::report
