#pragma once

#include <string>
#include <vector>

namespace bench {

// One side's cost of a work: quartiles of the times of its runs in nanoseconds, and the peak of its
// process's resident memory in bytes.
struct Side
{
    double lower = 0;
    double median = 0;
    double upper = 0;
    double peak = 0;

    // How far apart the quartiles are, as a part of the time: little on a quiet machine.
    double Apart() const { return (upper - lower) / median; }
};

// A work with quartiles further apart is measured again, so many times at most, and the calmest is kept.
constexpr double restless = 0.08;
constexpr int nMostTries = 4;

Side QuartilesOf(std::vector<double> times);

// A work, done by the library and by a peer.
struct Row
{
    std::string work;
    std::string peer;
    Side ours;
    Side theirs;

    // How many times faster the library is: only that says anything on a shared machine.
    double Ratio() const { return theirs.median / ours.median; }
    // The same for memory.
    double MemoryRatio() const { return theirs.peak / ours.peak; }
    // The least ratios that are meant to be reached; 0 for a row that is there to be seen alone.
    double Aim() const;
    double MemoryAim() const;
    // Whether the work is a whole process, of which processor time is measured and all memory.
    bool IsProcess() const { return work.starts_with("client_"); }
};

// Brings rows into the order in which the works are listed.
void Sort(std::vector<Row>& rows);

// Tells the work of a row in a few words.
const char* WhatIs(const std::string& work);
// The same for a peer, and its library's version, which is empty for a loop of the benchmark's own.
const char* WhatIsPeer(const std::string& peer);
std::string VersionOf(const std::string& peer);

struct Curve;

void Print(const std::vector<Row>& rows);
void WriteJson(const std::vector<Row>& rows, const char* pszFile);
// A page with the tables, the machine and the date.
void WritePage(const std::vector<Row>& rows, const std::vector<Curve>& curves, const char* pszFile);

// How far apart the quartiles are in the median of all sides.
double Unrest(const std::vector<Row>& rows);

// A time in a table, and the quartiles around it.
std::string Spread(const Side& side);
std::string Memory(double bytes);
// Three digits that count, in the unit that suits.
std::string Time(double nanoseconds);

} // namespace bench
