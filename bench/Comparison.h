#pragma once

#include <functional>

/// What the benchmarks of one process share: a table in which each row compares a cost with its
/// floor, the same work done with what no implementation can do without. Both run by turns, and the
/// ratio is the median of those of two runs that followed each other: a machine on which a call
/// costs now this, now three times as much, changes it little.
namespace Mirqos::Bench {

/// In microseconds.
double Now();

/// The table's title and the names of its columns; `pszOurs` is what stands beside the floor.
void PrintHeading(const char* pszTitle, const char* pszOurs);

/// `measure` is called once for each run, of the floor or of what stands above it, and returns the
/// cost of one unit of work in microseconds.
void PrintRow(const char* pszName, const std::function<double(bool bFloor)>& measure);

}  // namespace Mirqos::Bench
