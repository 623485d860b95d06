#include "bench/Curves.h"
#include "bench/Measure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <regex>
#include <sstream>

namespace bench {

namespace {

// A time of a work, by as many of it at a time that the clock's steps don't count; three times at least, but
// once if that takes long.
Side MeasureWork(const TimedWork& work)
{
    constexpr double least = 0.005, enough = 1, tooLong = 5; // seconds
    constexpr int nMost = 1 << 20;
    int nTimes = 1;
    double seconds = work(nTimes), all = seconds;
    while (seconds < least && nTimes < nMost) {
        nTimes = static_cast<int>(std::clamp(1.2 * least / seconds * nTimes, nTimes + 1., 1. * nMost));
        seconds = work(nTimes);
    }
    std::vector<double> times{seconds / nTimes * 1e9};
    while (all < tooLong && (times.size() < 3 || (times.size() < 9 && all < enough))) {
        seconds = work(nTimes);
        all += seconds;
        times.push_back(seconds / nTimes * 1e9);
    }
    return QuartilesOf(times);
}

void MeasurePlan(CurvePlan& plan)
{
    for (const int nSize : plan.sizes) {
        std::istringstream told(RunApart([&](std::ostream& out) {
            try {
                const double before = PeakMemory();
                const Side time = MeasureWork(plan.make(nSize));
                out << time.lower << ' ' << time.median << ' ' << time.upper << ' ' << PeakMemory() - before;
                return true;
            } catch (const std::exception& e) {
                std::fprintf(stderr, "%s, %d: %s\n", plan.curve.name.c_str(), nSize, e.what());
                return false;
            }
        }));
        Curve::Point point{.size = 1. * nSize, .cost = {}};
        if (!(told >> point.cost.lower >> point.cost.median >> point.cost.upper >> point.cost.peak)) {
            plan.curve.points.clear();
            return;
        }
        plan.curve.points.push_back(point);
    }
}

} // namespace

double Curve::SlopeTo(std::size_t nPoint) const
{
    const Point &from = points[nPoint - 1], &to = points[nPoint];
    return std::log(to.cost.median / from.cost.median) / std::log(to.size / from.size);
}

std::vector<Curve> MeasureCurves(const std::string& filter)
{
    std::vector<Curve> curves;
    for (CurvePlan& plan : CurvePlans())
        if (std::regex_search(plan.curve.name, std::regex(filter))) {
            MeasurePlan(plan);
            curves.push_back(plan.curve);
        }
    return curves;
}

} // namespace bench
