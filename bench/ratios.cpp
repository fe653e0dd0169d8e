// SPDX-License-Identifier: GPL-3.0-or-later
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace skyhold {

namespace {

struct Sample {
    double nanoseconds = 0;
    double bytesPerSecond = 0;

    double time(bool perByte) const { return perByte ? 1e9 / bytesPerSecond : nanoseconds; }
};

class Collector : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            failed = failed || run.error_occurred;
            if (run.run_type != Run::RT_Iteration || run.error_occurred)
                continue;
            const auto bytes = run.counters.find("bytes_per_second");
            // Work that another process does is real time alone.
            const double time = run.run_name.time_type == "real_time" ? run.GetAdjustedRealTime()
                                                                      : run.GetAdjustedCPUTime();
            const double perNanosecond = 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            samples[run.run_name.function_name].push_back(
                {time * perNanosecond, bytes == run.counters.end() ? 0 : bytes->second.value});
        }
    }

    std::map<std::string, std::vector<Sample>> samples;
    bool failed = false;
};

struct Spread {
    double low = 0;
    double median = 0;
    double high = 0;
};

Spread spreadOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values.front(), values[values.size() / 2], values.back()};
}

} // namespace

int runAndPrintRatios(int argc, char** argv, const std::vector<Ratio>& ratios) {
    std::vector<std::string> defaults{"--benchmark_repetitions=9",
                                      "--benchmark_enable_random_interleaving=true",
                                      "--benchmark_min_time=0.2"};
    // What the caller gives comes later and wins.
    std::vector<char*> arguments{argv[0]};
    for (std::string& option : defaults)
        arguments.push_back(option.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());

    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    bool complete = !collector.failed;
    for (const auto& [name, samples] : collector.samples) {
        std::vector<double> times;
        for (const Sample& sample : samples)
            times.push_back(sample.time(false) / 1000);
        const Spread spread = spreadOf(times);
        std::printf("%-28s %12.3f us   (%.3f to %.3f)\n", name.c_str(), spread.median, spread.low,
                    spread.high);
    }
    for (const Ratio& ratio : ratios) {
        const std::vector<Sample>& measured = collector.samples[ratio.measured];
        const std::vector<Sample>& peer = collector.samples[ratio.peer];
        std::vector<double> quotients;
        for (std::size_t i = 0; i < std::min(measured.size(), peer.size()); ++i)
            quotients.push_back(measured[i].time(ratio.perByte) / peer[i].time(ratio.perByte));
        if (quotients.empty()) {
            std::printf("%s: not measured\n", ratio.title.c_str());
            complete = false;
            continue;
        }
        const Spread spread = spreadOf(quotients);
        std::printf("%s: %.3f (%.3f to %.3f)\n", ratio.title.c_str(), spread.median, spread.low,
                    spread.high);
    }
    return complete ? 0 : 1;
}

} // namespace skyhold
