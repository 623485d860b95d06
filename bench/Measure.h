#pragma once

#include "bench/Rows.h"

namespace bench {

// The works that have a name that matches a regular expression, in their order.
std::vector<std::string> FindWorks(const std::string& filter);
// Runs both sides of a work in a process of its own, so that neither the threads nor the heap of another work
// are in its time. Empty if that process ends ill.
std::vector<Row> Measure(const std::string& work);

} // namespace bench
