#include "tests/faults/Faults.h"
#include "tests/soak/Soak.h"

// Not the works that have a soak of their own, or need the clock to themselves.
soak::Figures soak::RunFaults(Turn turn, const test::TempDir& dir)
{
    constexpr std::string_view kElsewhere[] = {"log", "registry", "skin", "language", "download"};
    constexpr int kErrors[] = {ENOSPC, EIO, EDQUOT, EINTR, 0}; // the last for a short write
    const faults::Place place{dir.Path("faults"), dir.Path("data")};
    std::filesystem::create_directory(place.data);
    faults::MakeData(place.data);
    std::vector<const faults::Work*> works;
    for (const faults::Work& work : faults::Works())
        if (!work.bClock && std::ranges::find(kElsewhere, work.pszName) == std::end(kElsewhere))
            works.push_back(&work);
    std::map<std::pair<const faults::Work*, faults::Call>, int> reached; // the last call so far
    Figures figures;
    for (; turn.Goes(); ++figures.operations) {
        const faults::Work& work =
            *works[static_cast<std::size_t>(turn.Below(static_cast<int>(works.size())))];
        faults::Plan plan{.call = static_cast<faults::Call>(turn.Below(5)), .bThread = true};
        int& last = reached[{&work, plan.call}];
        plan.nth = 1 + turn.Below(last + 1);
        plan.error = kErrors[turn.Below(plan.call == faults::Call::Write ? 5 : 4)];
        plan.bShort = plan.error == 0;
        plan.bAll = plan.error != EINTR && turn.Below(2) == 0;
        std::filesystem::remove_all(place.own);
        std::filesystem::create_directory(place.own);
        if (work.prepare) work.prepare(place);
        faults::Arm(plan);
        const std::string first = faults::Try(work, place);
        const long calls = faults::Disarm();
        last = std::max(last, static_cast<int>(calls));
        figures.faults += calls >= plan.nth;
        const std::string name = std::string(work.pszName) + ", call " + std::to_string(plan.nth) +
                                 " of kind " + std::to_string(static_cast<int>(plan.call)) + ", error " +
                                 std::to_string(plan.error) + (plan.bAll ? ", and all behind: " : ": ");
        figures.Need(first.size() < (calls < plan.nth ? 1 : 2), name + first);
        figures.Need(!work.intact || work.intact(place), name + "its files");
        const std::string second = faults::Try(work, place);
        figures.Need(second.empty(), name + "then " + second);
        figures.Need(!work.intact || work.intact(place), name + "then its files");
    }
    return figures;
}
