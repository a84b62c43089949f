// Measures how many lines per second are parsed.

#include "device_output.h"

#include <benchmark/benchmark.h>

namespace {

const std::string kFileLine = "         139 measurements_2026.csv\n";
const std::string kDeviceLine =
    "/dev/ttyACM0 e66118604b5a2c2f 2e8a:0005 MicroPython Board in FS mode\n";

template <class Parse>
void ParseLine(benchmark::State& state, Parse parse, const std::string& line)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(parse(line));
    }
    state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK_CAPTURE(ParseLine, ParseDirLine, ParseDirLine, kFileLine);
BENCHMARK_CAPTURE(ParseLine, ParseDeviceLine, ParseDeviceLine, kDeviceLine);

BENCHMARK_MAIN();
