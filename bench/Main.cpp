#include "bench/Measure.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

// Runs all pairs. A benchmark is named WORK/ours or WORK/PEER. A row of the table is a work, the median times
// of both, and how many times faster we are; only that ratio says anything on a shared machine.

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
    std::vector<Row> rows;
    int nFailed = 0;
    for (const std::string& work : FindWorks(pszFilter)) {
        const auto measured = Measure(work);
        if (measured.empty()) {
            std::fprintf(stderr, "%s: not measured\n", work.c_str());
            ++nFailed;
        }
        rows.insert(rows.end(), measured.begin(), measured.end());
    }
    Print(rows);
    if (pszJson) WriteJson(rows, pszJson);
    if (pszPage) WritePage(rows, pszPage);
    return rows.empty() || nFailed > 0 ? 1 : 0;
}
