// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the benchmarks of a program, interleaved and repeated, and prints how they compare.
#pragma once

#include <string>
#include <vector>

namespace skyhold {

// What is measured and its floor or peer, both by the name of their benchmark.
struct Ratio {
    std::string title;
    std::string measured;
    std::string peer;
    bool perByte = false; // compare times per byte (SetBytesProcessed), not per run
};

// Takes the options of Google Benchmark. Prints the median and the spread of each benchmark, then
// those of each ratio. Non-zero when a benchmark failed or a ratio has none to compare.
int runAndPrintRatios(int argc, char** argv, const std::vector<Ratio>& ratios);

} // namespace skyhold
