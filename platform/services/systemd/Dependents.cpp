#include "platform/services/systemd/Dependents.h"

#include "platform/services/systemd/UnitName.h"
#include "platform/text/Conversion.h"

#include <set>

namespace kx::systemd {

namespace {

// More are no honest answer.
constexpr std::size_t kMaxUnits = 10'000;

// A unit whose dependents are being looked at.
struct Visit
{
    std::string unit;
    UnitState state;
    std::size_t next = 0;
};

void Add(const Visit& visit, std::vector<KXHost::DependentService>& dependents)
{
    auto name = NameOf(visit.unit);
    if (!name || !visit.state.Exists()) return;
    const std::string title = text::FromUtf8Lossy(visit.state.description);
    dependents.push_back(
        {std::move(*name), CString(std::string_view(title)), WithoutProcess(StatusOf(visit.state))});
}

} // namespace

DWORD ListDependents(Bus& bus, const std::string& unit, const UnitState& state,
                     std::vector<KXHost::DependentService>& dependents)
{
    std::set<std::string> seen{unit};
    std::vector<Visit> path;
    path.push_back({unit, state});
    while (!path.empty()) {
        Visit& last = path.back();
        if (last.next == last.state.dependents.size()) {
            if (path.size() > 1) Add(last, dependents);
            path.pop_back();
            continue;
        }
        Visit visit{last.state.dependents[last.next++], {}};
        if (!seen.insert(visit.unit).second) continue;
        if (seen.size() > kMaxUnits) return ERROR_GEN_FAILURE;
        if (const DWORD error = ReadUnit(bus, visit.unit, visit.state)) return error;
        path.push_back(std::move(visit));
    }
    return ERROR_SUCCESS;
}

} // namespace kx::systemd
