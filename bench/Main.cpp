#include "bench/Curves.h"
#include "bench/Measure.h"

#include <cstdio>
#include <cstring>

// Runs all pairs and curves. A benchmark is named WORK/ours or WORK/PEER. A row of the table is a work, what
// both take, and how many times faster we are; only that ratio says anything on a shared machine.

using namespace bench;

// --json FILE and --page FILE write the rows there too; --only TEXT runs the works whose names match it.
int main(int argc, char** argv)
{
    const char* pszJson = nullptr;
    const char* pszPage = nullptr;
    const char* pszFilter = ".";
    for (int n = 1; n + 1 < argc; ++n) {
        if (std::strcmp(argv[n], "--json") == 0) pszJson = argv[n + 1];
        if (std::strcmp(argv[n], "--page") == 0) pszPage = argv[n + 1];
        if (std::strcmp(argv[n], "--only") == 0) pszFilter = argv[n + 1];
    }
    int nFailed = 0;
    const auto fail = [&](const std::string& name) {
        std::fprintf(stderr, "%s: not measured\n", name.c_str());
        ++nFailed;
    };
    std::vector<Row> rows;
    for (const std::string& work : FindWorks(pszFilter)) {
        const auto measured = Measure(work);
        if (measured.empty()) fail(work);
        rows.insert(rows.end(), measured.begin(), measured.end());
    }
    Sort(rows);
    Print(rows);
    const std::vector<Curve> curves = MeasureCurves(pszFilter);
    for (const Curve& curve : curves)
        if (curve.points.empty()) fail(curve.name);
    PrintCurves(curves);
    if (pszJson) WriteJson(rows, pszJson);
    const double unrest = Unrest(rows);
    std::printf("quartiles are %.1f %% apart in the median\n", unrest * 100);
    if (pszPage && unrest > restless) // others' work on the machine makes figures of no worth
        fail("A page, by a machine as restless as that,");
    else if (pszPage)
        WritePage(rows, curves, pszPage);
    return (rows.empty() && curves.empty()) || nFailed > 0 ? 1 : 0;
}
