// SPDX-License-Identifier: MIT
#include "border/OpenedCase.h"
#include "foamfile/TokenScanner.h"
#include "sample/BoxLattice.h"
#include "sample/SampleCase.h"
#include "sample/SampleFields.h"
#include "support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

/// A block of hexahedra with fields at one time, open in the library that ships, with its geometry delivered.
class FieldCase
{
public:
    FieldCase(const FoamFormat& format, int cells) : m_library(FIELDS_BENCH_PLUGIN)
    {
        SampleOptions sample;
        sample.cells = cells;
        sample.states = 1;
        sample.format = format;
        m_cellCount = writeSampleCase(m_folder / "case", sample).cells;
        m_opened = std::make_unique<OpenedCase>(m_library, m_folder / "case", m_options);
        m_opened->geometry();
    }

    int cellCount() const { return m_cellCount; }

    /// A result with the host's copies of all its values; null if the library has no such result.
    std::unique_ptr<HostResult> get(const std::string& key)
    {
        const HostMetaData& metaData = m_opened->metaData();
        const auto info = std::ranges::find(metaData.results, key, &HostResultInfo::key);
        return info == metaData.results.end() ? nullptr : m_opened->result(*info, metaData.states.front().id);
    }

private:
    TempFolder m_folder;
    PluginLibrary m_library;
    HostOptions m_options;
    int m_cellCount = 0;
    std::unique_ptr<OpenedCase> m_opened;
};

/// The case of this form and size. Only the last one is kept, so benchmarks that share a case are registered in a row.
FieldCase& fieldCase(const std::string& form, std::int64_t cells)
{
    static std::pair<std::string, std::int64_t> present;
    static std::unique_ptr<FieldCase> kept;
    if (const std::pair wanted(form, cells); kept == nullptr || present != wanted) {
        kept.reset();
        kept = std::make_unique<FieldCase>(FoamFormat{form == "binary", form == "gzip"}, static_cast<int>(cells));
        present = wanted;
    }
    return *kept;
}

/// What a user waits for after selecting these results: reading, the calls across the interface, and the host's copies
/// and checks.
void getFields(benchmark::State& state, const std::string& form, const std::vector<std::string>& keys)
{
    FieldCase& opened = fieldCase(form, state.range(0));
    std::vector<std::unique_ptr<HostResult>> results;
    for (auto _ : state) {
        for (const std::string& key : keys) {
            results.push_back(opened.get(key));
        }
        // Releasing a result is not part of getting it.
        state.PauseTiming();
        if (std::ranges::any_of(results, [](const auto& result) { return result == nullptr; })) {
            state.SkipWithError("the library does not deliver the field");
        }
        results.clear();
        state.ResumeTiming();
    }
    state.counters["cells"] =
        benchmark::Counter(static_cast<double>(opened.cellCount()), benchmark::Counter::kIsIterationInvariantRate);
}

void addNumber(double value, std::string* text)
{
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::general, 6);
    text->append(digits.data(), end.ptr) += '\n';
}

/// Values at the centres of about `cells` cells, at time 0, in six digits as an ascii file has them, one per line.
std::string numbersOf(const std::string& field, int cells)
{
    const BoxLattice lattice = latticeOfAbout(cells);
    std::string numbers;
    for (int cell = 0; cell < lattice.cellCount(); ++cell) {
        const int row = cell / lattice.counts[0];
        const SamplePoint centre = {BoxLattice::SPACING * (cell % lattice.counts[0] + 0.5),
                                    BoxLattice::SPACING * (row % lattice.counts[1] + 0.5),
                                    BoxLattice::SPACING * (row / lattice.counts[1] + 0.5)};
        if (field == "p") {
            addNumber(samplePressure(centre, 0), &numbers);
            continue;
        }
        for (const double component : sampleVelocity(centre, 0)) {
            addNumber(component, &numbers);
        }
    }
    return numbers;
}

/// What one thread converts, without reading or storing: as the readers of fields do it, or with `std::from_chars`.
void convertNumbers(benchmark::State& state, const std::string& field, bool isGeneral)
{
    const std::string numbers = numbersOf(field, static_cast<int>(state.range(0)));
    const char* const end = numbers.data() + numbers.size();
    for (auto _ : state) {
        bool areNumbers = true;
        for (const char* p = numbers.data(); areNumbers && p != end; ++p) {
            double value = 0;
            if (isGeneral) {
                p = std::from_chars(p, end, value).ptr;
            } else {
                areNumbers = TokenScanner::scanScalar(p, end, &value);
            }
            benchmark::DoNotOptimize(value);
        }
        if (!areNumbers) {
            state.SkipWithError("a token is not a number");
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(numbers.size()) * static_cast<std::int64_t>(state.iterations()));
}

constexpr std::array<std::int64_t, 2> CELL_COUNTS = {100000, 1000000};

void registerAll()
{
    const std::pair<const char*, std::vector<std::string>> picks[] = {{"U", {"VELOCITY_E"}},
                                                                      {"p", {"PRESSURE_E"}},
                                                                      {"both", {"VELOCITY_E", "PRESSURE_E"}},
                                                                      {"averageOfU", {"VELOCITY_N"}},
                                                                      {"averageOfP", {"PRESSURE_N"}}};
    for (const std::string form : {"ascii", "gzip", "binary"}) {
        for (const std::int64_t cells : CELL_COUNTS) {
            for (const auto& [name, keys] : picks) {
                benchmark::RegisterBenchmark(("getFields/" + std::string(name) + "/" + form).c_str(), getFields, form,
                                             keys)
                    ->Arg(cells)
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime();
            }
        }
    }
    for (const std::string field : {"U", "p"}) {
        for (const bool isGeneral : {false, true}) {
            benchmark::RegisterBenchmark(("convertNumbers/" + field + (isGeneral ? "/from_chars" : "")).c_str(),
                                         convertNumbers, field, isGeneral)
                ->Arg(CELL_COUNTS.back())
                ->Unit(benchmark::kMillisecond);
        }
    }
}

const bool IS_REGISTERED = (registerAll(), true);

} // namespace
