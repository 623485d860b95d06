#pragma once

#include "bench/Rows.h"

#include <functional>
#include <iosfwd>

namespace bench {

// These works measure the cost at sizes that users grow to.
struct Curve
{
    struct Point
    {
        double size = 0;
        Side cost;
    };

    std::string name;
    std::string what;
    std::string unit;
    std::vector<Point> points;

    // By which power of the size the time grows up to a point from the one before: 1 is linear.
    double SlopeTo(std::size_t nPoint) const;
};

// Does a work so many times and gives the seconds that they took; what isn't the work's own is left out.
// Throws where the work isn't done as it should be.
using TimedWork = std::function<double(int nTimes)>;

// A curve to be measured: its sizes, and what makes the work of a size.
struct CurvePlan
{
    Curve curve;
    std::vector<int> sizes;
    std::function<TimedWork(int)> make;
};

std::vector<CurvePlan> CurvePlans();

// The curves that have a name that matches a regular expression. One that can't be measured has no points.
std::vector<Curve> MeasureCurves(const std::string& filter);

void PrintCurves(const std::vector<Curve>& curves);
// A table in Markdown.
void WriteCurves(const std::vector<Curve>& curves, std::ostream& out);
// All of them in one picture, both axes logarithmic.
void DrawCurves(const std::vector<Curve>& curves, const std::string& strFile);

} // namespace bench
