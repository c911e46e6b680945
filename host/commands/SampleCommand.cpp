// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"
#include "border/TextForms.h"
#include "commands/Commands.h"
#include "sample/SampleCase.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace {

std::map<std::string, SampleKind> sampleKinds()
{
    return {{"hex", SampleKind::Hex},       {"poly", SampleKind::Poly},       {"mixed", SampleKind::Mixed},
            {"zones", SampleKind::Zones},   {"regions", SampleKind::Regions}, {"decomposed", SampleKind::Decomposed},
            {"moving", SampleKind::Moving}, {"surface", SampleKind::Surface}};
}

// The format ends at 2 billion labels; the numbers of faces and face nodes reach that first.
constexpr int MOST_CELLS = 50'000'000;
constexpr int MOST_STATES = 100'000;

struct SampleArguments
{
    std::string folder;
    SampleOptions options;
};

ExitCode runSample(const HostContext& context, const SampleArguments& arguments)
{
    const SampleReport report = writeSampleCase(arguments.folder, arguments.options);
    if (context.options.json) {
        nlohmann::ordered_json document = newDocument("sample");
        document["folder"] = arguments.folder;
        document["cells"] = report.cells;
        document["points"] = report.points;
        document["faces"] = report.faces;
        document["times"] = report.times;
        writeDocument(document);
    } else {
        writeToStdout(fmt::format("{}: {}, {} points, {} faces, times {}\n", escapedControls(arguments.folder),
                                  counted(static_cast<std::size_t>(report.cells), "cell"), report.points, report.faces,
                                  fmt::join(report.times, " ")));
    }
    return ExitCode::Good;
}

} // namespace

void addSampleCommand(CLI::App* app, HostContext* context)
{
    const auto arguments = std::make_shared<SampleArguments>();
    CLI::App* const command = app->add_subcommand("sample", "Write a sample OpenFOAM case of any size");
    command->add_option("DIR", arguments->folder, "The folder for the new case")->required()->check(notEmpty());
    std::map<std::string, int> kinds;
    for (const auto& [word, kind] : sampleKinds()) {
        kinds[word] = static_cast<int>(kind);
    }
    limitWords(command->add_option("--kind", arguments->options.kind, "What kind of mesh, hex by default"), kinds);
    limitCount(command->add_option("--cells", arguments->options.cells, "Write about N cells, 1000 by default")
                   ->type_name("N"),
               1, MOST_CELLS);
    limitCount(command->add_option("--states", arguments->options.states, "Write N time folders, 2 by default")
                   ->type_name("N"),
               1, MOST_STATES);
    command->add_flag("--binary", arguments->options.format.binary, "Write mesh lists and fields in binary");
    command->add_flag("--gzip", arguments->options.format.gzip, "Compress mesh lists and fields");
    command->add_flag("--overwrite", arguments->options.overwrite, "Replace a sample that was written before");
    command->callback([=] { context->command = [=] { return runSample(*context, *arguments); }; });
}
