// SPDX-License-Identifier: MIT
#include "commands/CaseReport.h"
#include "commands/Commands.h"
#include "commands/ProcessMeter.h"
#include "commands/Selection.h"
#include "output/ProgressBar.h"
#include "output/TextTable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr double MEGABYTE = 1e6;

struct BenchOptions
{
    std::vector<std::string> casePaths;
    int repeats = 3;
};

/// One kind of work on one case, measured once per repeat.
struct BenchPhase
{
    std::string name;
    std::vector<ProcessCost> costs;
    std::size_t hostBytes = 0; ///< size of the host's copy of the delivery
};

struct BenchCase
{
    std::string casePath;
    std::vector<BenchPhase> phases;
};

/// Runs the repeats of one case and sorts the costs by phase.
class CaseBench
{
public:
    CaseBench(HostContext& context, const std::string& casePath) : m_context(context) { m_case.casePath = casePath; }

    /// Opens a case and requests everything once. It is reopened for each repeat, because a provider caches what it has
    /// read.
    void runOnce()
    {
        m_phase = 0;
        std::unique_ptr<OpenedCase> opened;
        record("init", [&] {
            opened = m_context.open(m_case.casePath);
            return std::size_t{0};
        });
        const HostMetaData* metaData = nullptr;
        record("metadata", [&] {
            metaData = &opened->metaData();
            return std::size_t{0};
        });
        record("geometry", [&] {
            m_unread = unreadMeshes(*opened);
            return opened->geometry().byteCount();
        });
        // The last state, because the fields of the first one are usually uniform.
        for (const HostState* const state : selectStates(*opened, "latest")) {
            for (const HostResultInfo& info : metaData->results) {
                // Outlives the measurement: releasing a result is not part of getting it.
                std::unique_ptr<HostResult> result;
                record(info.name, [&] {
                    result = opened->result(info, state->id);
                    return result == nullptr ? 0 : result->byteCount();
                });
            }
        }
    }

    const BenchCase& result() const { return m_case; }
    const std::vector<LoggedCause>& unread() const { return m_unread; }

private:
    /// Measures a piece of work that returns the size of the host's copy in bytes.
    template <typename Work>
    void record(const std::string& name, Work work)
    {
        if (m_phase == m_case.phases.size()) {
            m_case.phases.push_back({name, {}, 0});
        }
        BenchPhase& phase = m_case.phases[m_phase++];
        const ProcessMeter meter;
        phase.hostBytes = work();
        phase.costs.push_back(meter.stop());
    }

    HostContext& m_context;
    BenchCase m_case;
    std::vector<LoggedCause> m_unread;
    std::size_t m_phase = 0;
};

/// The median of a figure over the repeats; of an even number, the mean of the two in the middle.
template <typename Figure>
double medianOf(const std::vector<ProcessCost>& costs, Figure figure)
{
    std::vector<double> values;
    values.reserve(costs.size());
    for (const ProcessCost& cost : costs) {
        values.push_back(static_cast<double>(cost.*figure));
    }
    std::ranges::sort(values);
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

/// Median figures of a phase in the units of the output.
struct PhaseFigures
{
    double seconds;
    double megabytesRead;
    double megabytesPerSecond;
    double peakMegabytes;
    double hostMegabytes;

    explicit PhaseFigures(const BenchPhase& phase)
        : seconds(medianOf(phase.costs, &ProcessCost::seconds)),
          megabytesRead(medianOf(phase.costs, &ProcessCost::bytesRead) / MEGABYTE),
          megabytesPerSecond(seconds > 0 ? megabytesRead / seconds : 0),
          peakMegabytes(medianOf(phase.costs, &ProcessCost::peakMemory) / MEGABYTE),
          hostMegabytes(static_cast<double>(phase.hostBytes) / MEGABYTE)
    {}
};

/// Megabytes are millions of bytes throughout, the usual unit for disk rates.
nlohmann::ordered_json benchDocument(const std::vector<BenchCase>& cases, const HostContext& context,
                                     const BenchOptions& options)
{
    nlohmann::ordered_json document = newDocument("bench");
    document["repeats"] = options.repeats;
    document["threads"] = context.options.threads;
    document["cases"] = nlohmann::ordered_json::array();
    for (const BenchCase& measured : cases) {
        nlohmann::ordered_json phases = nlohmann::ordered_json::array();
        for (const BenchPhase& phase : measured.phases) {
            const PhaseFigures figures(phase);
            phases.push_back({{"name", phase.name},
                              {"seconds", figures.seconds},
                              {"megabytesRead", figures.megabytesRead},
                              {"megabytesPerSecond", figures.megabytesPerSecond},
                              {"peakMegabytes", figures.peakMegabytes},
                              {"hostMegabytes", figures.hostMegabytes}});
        }
        document["cases"].push_back({{"case", measured.casePath}, {"phases", phases}});
    }
    return document;
}

std::string benchText(const std::vector<BenchCase>& cases, const TextStyle& style)
{
    using Align = TextTable::Align;
    std::string text;
    for (const BenchCase& measured : cases) {
        TextTable table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Right, Align::Right});
        table.add({"work", "seconds", "MB read", "MB/s", "peak MB", "host MB"});
        for (const BenchPhase& phase : measured.phases) {
            const PhaseFigures figures(phase);
            table.add({phase.name, fmt::format("{:.4f}", figures.seconds), fmt::format("{:.1f}", figures.megabytesRead),
                       fmt::format("{:.1f}", figures.megabytesPerSecond), fmt::format("{:.1f}", figures.peakMegabytes),
                       fmt::format("{:.1f}", figures.hostMegabytes)});
        }
        text += style.strong(measured.casePath) + "\n" + table.text(2);
    }
    return text;
}

/// Repeats are the inner loop, so that all runs of a case find the system's file cache in the same state.
ExitCode runBench(HostContext& context, const BenchOptions& options)
{
    // Loaded here, so that no phase includes the time for it.
    context.library();
    // A case that is refused must not cost the figures of those before it.
    for (const std::string& casePath : options.casePaths) {
        context.open(casePath);
    }
    std::vector<BenchCase> cases;
    std::vector<LoggedCause> unread;
    {
        ProgressBar progress(context.showsProgress(), "bench", "runs",
                             options.casePaths.size() * static_cast<std::size_t>(options.repeats));
        for (const std::string& casePath : options.casePaths) {
            CaseBench bench(context, casePath);
            for (int repeat = 0; repeat < options.repeats; ++repeat) {
                bench.runOnce();
                progress.advance();
            }
            cases.push_back(bench.result());
            unread.insert(unread.end(), bench.unread().begin(), bench.unread().end());
        }
    }
    if (context.options.json) {
        writeDocument(benchDocument(cases, context, options));
    } else {
        writeToStdout(benchText(cases, context.style()));
    }
    // Figures of a mesh that was not read say nothing.
    tellUnreadMeshes(unread);
    return unread.empty() ? ExitCode::Good : ExitCode::Findings;
}

} // namespace

void addBenchCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<BenchOptions>();
    CLI::App* const command =
        app->add_subcommand("bench", "Measure time, read rate and memory for opening, geometry and each result");
    command->add_option("CASE", options->casePaths, "Case folders or .foam files in them")
        ->required()
        ->check(notEmpty());
    limitCount(
        command->add_option("--repeat", options->repeats, "Report the medians of N runs, 3 by default")->type_name("N"),
        1, 1000);
    addExtendedFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runBench(*context, *options); }; });
}
