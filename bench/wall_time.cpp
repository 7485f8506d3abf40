// How long each case takes on this machine, and its floor; with the requests for memory of one run. Takes what Google
// Benchmark takes: --benchmark_filter='page'.

#include "Shortage.h"
#include "cases.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using support::MemorySupply;

double requestsOf(const bench::Work& work) {
    work.doPrepare();
    const support::Shortage none(MemorySupply::never, MemorySupply::never);
    work.run();
    return static_cast<double>(support::memorySupply.asked);
}

void measure(benchmark::State& state, const bench::Case& measured, const std::string& side) {
    const bench::Work work = bench::workOf(measured, side);
    requestsOf(work);
    state.counters["requests"] = requestsOf(work);
    while (state.KeepRunning()) {
        if (work.prepare) {  // stopping the clock takes longer than making a text
            state.PauseTiming();
            work.prepare();
            state.ResumeTiming();
        }
        work.run();
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const bench::Case& each : bench::cases()) {
        for (const char* const side : {"product", "floor"}) {
            const std::string name = each.name + '/' + side;
            benchmark::RegisterBenchmark(name.c_str(),
                                         [&each, side](benchmark::State& state) { measure(state, each, side); });
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
