// SPDX-License-Identifier: MIT
#include "casemodel/OFReader.h"
#include "support/TempFolder.h"

#include <benchmark/benchmark.h>

namespace {

std::string header(const std::string& object)
{
    return "FoamFile\n{\n    version 2.0;\n    format ascii;\n    class dictionary;\n    object " + object + ";\n}\n";
}

void writeTimes(const TempFolder& folder, std::int64_t first, std::int64_t end)
{
    for (std::int64_t time = first; time < end; ++time) {
        folder.write(std::to_string(time) + "/uniform/time",
                     header("time") + "index " + std::to_string(10 * time) + ";\n");
    }
}

/// Between two polls the number of time folders doubles, and then halves again.
void changeTimes(benchmark::State& state)
{
    const TempFolder folder;
    const std::int64_t known = state.range(0);
    std::filesystem::create_directories(folder / "constant");
    folder.write("system/controlDict", header("controlDict"));
    writeTimes(folder, 0, known);
    OFReader reader;
    if (!reader.init(folder.str())) {
        state.SkipWithError("the case does not open");
        return;
    }
    writeTimes(folder, known, 2 * known);
    for (auto _ : state) {
        for (std::int64_t time = known; time < 2 * known; ++time) {
            benchmark::DoNotOptimize(reader.addState(std::to_string(time)));
        }
        for (std::int64_t time = known; time < 2 * known; ++time) {
            benchmark::DoNotOptimize(reader.deleteState(std::to_string(time)));
        }
    }
}

BENCHMARK(changeTimes)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
