#pragma once

#include <functional>

/// What benchmarks share: a table in which each row compares a cost with its floor, the same work
/// done with the calls to Windows alone that no implementation can do without. Both run by turns,
/// and the ratio is the median of those of two runs that followed each other: a machine on which a
/// call costs now this, now three times as much, changes it little.
namespace Mirqos::Bench {

/// In microseconds.
double Now();

/// The table's title and the names of its columns.
void PrintHeading(const char* pszTitle);

/// `measure` is called once for each run, of the floor or of what stands above it, and returns the
/// cost of a line in microseconds.
void PrintRow(const char* pszName, const std::function<double(bool bFloor)>& measure);

}  // namespace Mirqos::Bench
