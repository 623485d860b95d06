#pragma once

#include "bench/Rows.h"

#include <functional>
#include <iosfwd>

namespace bench {

// The works that have a name that matches a regular expression, in their order.
std::vector<std::string> FindWorks(const std::string& filter);
// Times the sides of a work in a process of their own, in turns, so that neither the threads nor the heap of
// another work are in its time; then runs each side once more by itself for its memory. Empty if one of these
// processes ends ill.
std::vector<Row> Measure(const std::string& work);

// Gives the text that a function writes in a process of its own; empty if that ends ill or it gives false.
std::string RunApart(const std::function<bool(std::ostream&)>& run);

// The peak of this process's resident memory, in bytes.
double PeakMemory();

// The counter by which a benchmark tells the peak of its memory, in bytes: of the process that it has run, or
// as Loop.h does.
inline constexpr const char* pszPeak = "peak";

} // namespace bench
