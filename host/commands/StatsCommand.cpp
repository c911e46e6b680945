// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "border/EscapedText.h"
#include "border/TextForms.h"
#include "commands/CaseReport.h"
#include "commands/Commands.h"
#include "commands/Selection.h"
#include "commands/Statistics.h"
#include "output/ProgressBar.h"
#include "output/TextTable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <functional>

namespace {

using Json = nlohmann::ordered_json;

struct StatsOptions
{
    std::string casePath;
    std::string result;
    std::string state = "latest";
    std::string part;
    bool csv = false;
};

/// One line of the output.
struct StatsRow
{
    const HostResultInfo* result;
    const HostState* state;
    const HostGroup* group;
    std::size_t component;
    std::string componentName;
    ComponentStatistics figures;
};

/// Holds one result at a time, because all values of a case may not fit into memory. A result that a group or a state
/// lacks gives no row.
std::vector<StatsRow> collectRows(OpenedCase& opened, const StatsOptions& options, HostContext& context)
{
    const HostMetaData& metaData = opened.metaData();
    const std::vector<const HostGroup*> groups = metaData.geometryGroups();
    const std::vector<std::size_t> selectedGroups = selectGroups(opened, options.part);
    const std::vector<const HostResultInfo*> results = selectResults(opened, options.result);
    const std::vector<const HostState*> states = selectStates(opened, options.state);
    ProgressBar progress(context.showsProgress(), "stats", "results", results.size() * states.size());
    std::vector<StatsRow> rows;
    for (const HostResultInfo* const info : results) {
        for (const HostState* const state : states) {
            const std::unique_ptr<HostResult> result = opened.result(*info, state->id);
            for (const std::size_t index : selectedGroups) {
                const HostValueGroup* const values =
                    result == nullptr ? nullptr : valuesOfGroup(metaData, *result, index);
                if (values == nullptr) {
                    continue;
                }
                const std::vector<ComponentStatistics> figures = statisticsOf(*values);
                const std::vector<std::string> names = componentNames(values->dimension);
                for (std::size_t component = 0; component < figures.size(); ++component) {
                    rows.push_back({info, state, groups[index], component, names[component], figures[component]});
                }
            }
            progress.advance();
        }
    }
    return rows;
}

/// True if the row has an ordinary value.
bool isDefined(const ComponentStatistics& figures)
{
    return figures.undefined + figures.notANumber + figures.infinite < figures.items;
}

// The forms with all digits.

std::vector<std::string> csvNames()
{
    return {"result", "field", "unit", "time",     "folder",    "group", "part",    "component",
            "items",  "least", "mean", "greatest", "undefined", "nan",   "infinite"};
}

/// The name of the part of a patch or zone; empty for parts and surfaces.
std::string partNameOf(const HostMetaData& metaData, const HostGroup& group)
{
    const HostGroup* const part = group.parentId ? metaData.findGroup(*group.parentId) : nullptr;
    return part == nullptr ? std::string() : part->name;
}

/// The cells of a row, in the order of the column names. Numbers are as short as possible without loss.
std::vector<std::string> csvCells(OpenedCase& opened, const StatsRow& row)
{
    const ComponentStatistics& figures = row.figures;
    const auto number = [&](double value) { return isDefined(figures) ? fmt::format("{}", value) : std::string(); };
    return {row.result->name,
            opened.names().fieldOf(*row.result),
            withoutTrailingBlanks(row.result->unit),
            fmt::format("{}", row.state->referenceValue),
            opened.names().folderOf(*row.state),
            row.group->name,
            partNameOf(opened.metaData(), *row.group),
            row.componentName,
            fmt::format("{}", figures.items),
            number(figures.least),
            number(figures.mean),
            number(figures.greatest),
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

std::string csvText(OpenedCase& opened, const std::vector<StatsRow>& rows)
{
    std::string text = csvLine(csvNames());
    for (const StatsRow& row : rows) {
        text += csvLine(csvCells(opened, row));
    }
    return text;
}

Json statsDocument(OpenedCase& opened, const std::vector<StatsRow>& rows, const std::vector<LoggedCause>& unread)
{
    Json document = newDocument("stats");
    document["rows"] = Json::array();
    for (const StatsRow& row : rows) {
        const ComponentStatistics& figures = row.figures;
        // NaN becomes null, since JSON does not have it.
        document["rows"].push_back({{"result", row.result->name},
                                    {"resultId", row.result->id},
                                    {"field", opened.names().fieldOf(*row.result)},
                                    {"unit", withoutTrailingBlanks(row.result->unit)},
                                    {"stateId", row.state->id},
                                    {"time", row.state->referenceValue},
                                    {"folder", opened.names().folderOf(*row.state)},
                                    {"group", row.group->name},
                                    {"groupId", row.group->id},
                                    {"component", row.component},
                                    {"componentName", row.componentName},
                                    {"items", figures.items},
                                    {"least", figures.least},
                                    {"mean", figures.mean},
                                    {"greatest", figures.greatest},
                                    {"undefined", figures.undefined},
                                    {"nan", figures.notANumber},
                                    {"infinite", figures.infinite}});
    }
    document["meshesNotRead"] = unreadDocument(unread);
    return document;
}

// The table.

/// One column of the table.
struct StatsColumn
{
    const char* heading;
    TextTable::Align align;
    std::function<std::string(const StatsRow&)> cell;
};

/// A count of values that are not ordinary gets a column only if there are any.
void addCountColumn(const char* heading, std::size_t ComponentStatistics::*count, const std::vector<StatsRow>& rows,
                    std::vector<StatsColumn>* columns)
{
    if (std::ranges::any_of(rows, [=](const StatsRow& row) { return row.figures.*count != 0; })) {
        columns->push_back({heading, TextTable::Align::Right, [=](const StatsRow& row) {
                                return row.figures.*count == 0 ? "-" : fmt::format("{}", row.figures.*count);
                            }});
    }
}

std::vector<StatsColumn> columnsOf(OpenedCase& opened, const std::vector<StatsRow>& rows)
{
    using Align = TextTable::Align;
    const auto orDash = [](const std::string& text) { return text.empty() ? "-" : text; };
    const HostMetaData& metaData = opened.metaData();
    const bool severalParts = std::ranges::count(metaData.groups, HostGroupKind::Part, &HostGroup::kind) > 1;
    // Six digits are enough to look at; CSV and JSON have all of them.
    const auto figure = [](double ComponentStatistics::*value) {
        return [=](const StatsRow& row) {
            return isDefined(row.figures) ? fmt::format("{:g}", row.figures.*value) : std::string("-");
        };
    };
    std::vector<StatsColumn> columns = {
        {"result", Align::Left, [](const StatsRow& row) { return row.result->name; }},
        {"unit", Align::Left, [=](const StatsRow& row) { return orDash(row.result->unit); }},
        {"time", Align::Right, [&](const StatsRow& row) { return opened.names().timeTextOf(*row.state); }},
        {"group", Align::Left,
         [=, &metaData](const StatsRow& row) {
             const std::string part = severalParts ? partNameOf(metaData, *row.group) : std::string();
             return part.empty() ? row.group->name : part + "/" + row.group->name;
         }},
        {"component", Align::Left, [=](const StatsRow& row) { return orDash(row.componentName); }},
        {"items", Align::Right, [](const StatsRow& row) { return fmt::format("{}", row.figures.items); }},
        {"least", Align::Right, figure(&ComponentStatistics::least)},
        {"mean", Align::Right, figure(&ComponentStatistics::mean)},
        {"greatest", Align::Right, figure(&ComponentStatistics::greatest)}};
    addCountColumn("undefined", &ComponentStatistics::undefined, rows, &columns);
    addCountColumn("nan", &ComponentStatistics::notANumber, rows, &columns);
    addCountColumn("infinite", &ComponentStatistics::infinite, rows, &columns);
    return columns;
}

/// The header row is faint, so that it does not look like data.
std::string tableText(OpenedCase& opened, const std::vector<StatsRow>& rows, const TextStyle& style)
{
    const std::vector<StatsColumn> columns = columnsOf(opened, rows);
    std::vector<TextTable::Align> alignments;
    std::vector<std::string> headings;
    for (const StatsColumn& column : columns) {
        alignments.push_back(column.align);
        headings.emplace_back(column.heading);
    }
    TextTable table(alignments);
    table.add(headings);
    for (const StatsRow& row : rows) {
        std::vector<std::string> cells;
        cells.reserve(columns.size());
        for (const StatsColumn& column : columns) {
            cells.push_back(column.cell(row));
        }
        table.add(cells);
    }
    const std::string text = table.text(0, terminalWidth());
    const std::size_t headEnd = text.find('\n');
    return style.faint(text.substr(0, headEnd)) + text.substr(headEnd);
}

/// Says why there is nothing to show, since an empty table would leave the user guessing.
std::string emptyReason(const HostMetaData& metaData)
{
    if (metaData.states.empty()) {
        return "no values: the case has no times";
    }
    return metaData.results.empty() ? "no values: the case has no results"
                                    : "no values: the selected states and groups have none of the selected results";
}

ExitCode runStats(HostContext& context, const StatsOptions& options)
{
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    const std::vector<LoggedCause> unread = unreadMeshes(*opened);
    const std::vector<StatsRow> rows = collectRows(*opened, options, context);
    if (context.options.json) {
        writeDocument(statsDocument(*opened, rows, unread));
    } else if (options.csv) {
        const std::string text = csvText(*opened, rows);
        // Files keep the bytes of names; a terminal might obey them.
        writeToStdout(terminalWidth() == 0 ? text : escapedLines(text));
    } else if (rows.empty()) {
        tellUser(emptyReason(opened->metaData()));
    } else {
        writeToStdout(tableText(*opened, rows, context.style()));
    }
    tellUnreadMeshes(unread);
    const auto isUndefined = [](const StatsRow& row) { return row.figures.undefined != 0; };
    if (!context.options.quiet && std::ranges::any_of(rows, isUndefined)) {
        tellUser("some values are undefined; " + doctorHint(options.casePath));
    }
    const bool sound = std::ranges::all_of(
        rows, [](const StatsRow& row) { return row.figures.notANumber == 0 && row.figures.infinite == 0; });
    return sound && unread.empty() ? ExitCode::Good : ExitCode::Findings;
}

} // namespace

void addStatsCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<StatsOptions>();
    CLI::App* const command = app->add_subcommand(
        "stats", "Show the range of each result by group and component; NaN and infinite values are findings");
    addCaseArgument(command, &options->casePath);
    addSelection(command, "--result", &options->result, RESULT_HELP);
    addSelection(command, "--state", &options->state,
                 std::string("Which states, the latest by default: ") + STATE_HELP);
    addSelection(command, "--part", &options->part, GROUP_HELP);
    command->add_flag("--csv", options->csv, "Write comma-separated values with all digits");
    addPlainFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runStats(*context, *options); }; });
}
