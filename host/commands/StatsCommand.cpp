// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "commands/Commands.h"
#include "commands/Selection.h"
#include "commands/Statistics.h"
#include "output/TextTable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace {

struct StatsOptions
{
    std::string casePath;
    std::string resultPattern;
    std::string state = "last";
    std::string partPattern;
    bool csv = false;
};

/// One line of the output.
struct StatsRow
{
    const HostResultInfo* result;
    const HostState* state;
    const HostGroup* group;
    std::size_t component;
    ComponentStatistics figures;
};

std::vector<std::string> columnNames()
{
    return {"result", "time",     "group",     "component", "items",   "least",
            "mean",   "greatest", "undefined", "nan",       "infinite"};
}

/// Holds one result at a time, because all values of a case may not fit into memory. A result that a group or a state
/// lacks gives no row.
std::vector<StatsRow> collectRows(OpenedCase& opened, const StatsOptions& options)
{
    const HostMetaData& metaData = opened.metaData();
    const std::vector<const HostGroup*> groups = metaData.geometryGroups();
    const std::vector<std::size_t> selectedGroups = selectGroups(metaData, options.partPattern);
    std::vector<StatsRow> rows;
    for (const HostResultInfo* const info : selectResults(metaData, options.resultPattern)) {
        for (const HostState* const state : selectStates(metaData, options.state)) {
            const std::unique_ptr<HostResult> result = opened.result(*info, state->id);
            for (const std::size_t index : selectedGroups) {
                const HostValueGroup* const values =
                    result == nullptr ? nullptr : valuesOfGroup(metaData, *result, index);
                if (values == nullptr) {
                    continue;
                }
                const std::vector<ComponentStatistics> figures = statisticsOf(*values);
                for (std::size_t component = 0; component < figures.size(); ++component) {
                    rows.push_back({info, state, groups[index], component, figures[component]});
                }
            }
        }
    }
    return rows;
}

/// The cells of a row, in the order of the column names. Numbers are as short as possible without loss.
std::vector<std::string> cellsOf(const StatsRow& row)
{
    const ComponentStatistics& figures = row.figures;
    return {row.result->name,
            fmt::format("{}", row.state->referenceValue),
            row.group->name,
            fmt::format("{}", row.component),
            fmt::format("{}", figures.items),
            fmt::format("{}", figures.least),
            fmt::format("{}", figures.mean),
            fmt::format("{}", figures.greatest),
            fmt::format("{}", figures.undefined),
            fmt::format("{}", figures.notANumber),
            fmt::format("{}", figures.infinite)};
}

/// Quotes a field only if necessary, and doubles the quotes in it, as spreadsheets expect.
std::string csvField(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

std::string csvLine(const std::vector<std::string>& cells)
{
    std::string line;
    for (const std::string& cell : cells) {
        line += (line.empty() ? "" : ",") + csvField(cell);
    }
    return line + "\n";
}

std::string csvText(const std::vector<StatsRow>& rows)
{
    std::string text = csvLine(columnNames());
    for (const StatsRow& row : rows) {
        text += csvLine(cellsOf(row));
    }
    return text;
}

/// The header row is faint, so that it does not look like data.
std::string tableText(const std::vector<StatsRow>& rows, const TextStyle& style)
{
    using Align = TextTable::Align;
    std::vector<Align> columns(columnNames().size(), Align::Right);
    columns[0] = columns[2] = Align::Left;
    TextTable table(columns);
    table.add(columnNames());
    for (const StatsRow& row : rows) {
        std::vector<std::string> cells = cellsOf(row);
        // Six digits are enough to look at; CSV and JSON have all of them.
        cells[5] = fmt::format("{:g}", row.figures.least);
        cells[6] = fmt::format("{:g}", row.figures.mean);
        cells[7] = fmt::format("{:g}", row.figures.greatest);
        table.add(std::move(cells));
    }
    const std::string text = table.text(0);
    const std::size_t headEnd = text.find('\n');
    return style.faint(text.substr(0, headEnd)) + text.substr(headEnd);
}

nlohmann::ordered_json statsDocument(const std::vector<StatsRow>& rows)
{
    nlohmann::ordered_json document = newDocument("stats");
    document["rows"] = nlohmann::ordered_json::array();
    for (const StatsRow& row : rows) {
        const ComponentStatistics& figures = row.figures;
        // NaN becomes null, since JSON does not have it.
        document["rows"].push_back({{"result", row.result->name},
                                    {"resultId", row.result->id},
                                    {"stateId", row.state->id},
                                    {"time", row.state->referenceValue},
                                    {"group", row.group->name},
                                    {"groupId", row.group->id},
                                    {"component", row.component},
                                    {"items", figures.items},
                                    {"least", figures.least},
                                    {"mean", figures.mean},
                                    {"greatest", figures.greatest},
                                    {"undefined", figures.undefined},
                                    {"nan", figures.notANumber},
                                    {"infinite", figures.infinite}});
    }
    return document;
}

ExitCode runStats(HostContext& context, const StatsOptions& options)
{
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    const std::vector<StatsRow> rows = collectRows(*opened, options);
    if (context.options.json) {
        writeDocument(statsDocument(rows));
    } else {
        writeToStdout(options.csv ? csvText(rows) : tableText(rows, context.style()));
    }
    const bool sound = std::ranges::all_of(
        rows, [](const StatsRow& row) { return row.figures.notANumber == 0 && row.figures.infinite == 0; });
    return sound ? ExitCode::Good : ExitCode::Findings;
}

} // namespace

void addStatsCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<StatsOptions>();
    CLI::App* const command = app->add_subcommand(
        "stats", "Show the range of each result by group and component; NaN and infinite values are findings");
    command->add_option("CASE", options->casePath, "A case folder or the path to its case.foam")->required();
    command->add_option("--result", options->resultPattern, "Only results whose name or key matches RE")
        ->type_name("RE");
    command->add_option("--state", options->state, "Which states: last (the default), all, a time or #ID")
        ->type_name("STATE");
    command->add_option("--part", options->partPattern, "Only parts and groups whose name matches RE")->type_name("RE");
    command->add_flag("--csv", options->csv, "Write comma-separated values with all digits");
    addPlainFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runStats(*context, *options); }; });
}
