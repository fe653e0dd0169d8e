// SPDX-License-Identifier: GPL-3.0-or-later
// How many cycles the judge does, over observations that are made before.
#include "judge/judge.h"

#include "judge/random_cycles.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace skyhold {

static void judgeCycles(benchmark::State& state) {
    struct Cycle {
        Observation observation;
        Rules rules;
        Moment now;
        bool byClient;
    };
    RandomCycles random(1);
    std::vector<Cycle> cycles;
    for (int i = 0; i < 1024; ++i) {
        random.next();
        cycles.push_back({random.observation, random.rules, random.now, random.byClient});
    }
    JudgeMemory memory;
    beginSession(cycles.front().rules, memory, cycles.front().now);
    std::size_t i = 0;
    for ([[maybe_unused]] auto _ : state) {
        const Cycle& cycle = cycles[i++ % cycles.size()];
        benchmark::DoNotOptimize(
            judge(cycle.observation, cycle.rules, memory, cycle.now, cycle.byClient));
    }
    state.SetItemsProcessed(state.iterations()); // cycles
}
BENCHMARK(judgeCycles);

} // namespace skyhold

BENCHMARK_MAIN();
