// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "border/TextForms.h"
#include "commands/CaseReport.h"
#include "commands/Commands.h"
#include "commands/GroupCounts.h"
#include "output/TextTable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace {

using Json = nlohmann::ordered_json;

struct InfoOptions
{
    std::string casePath;
    bool counts = false;
};

/// The gap in the numbers is a kind of the interface that no provider here uses.
const char* kindName(std::int32_t kind)
{
    switch (kind) {
    case KIND_SCALAR:
        return "scalar";
    case KIND_VECTOR:
        return "vector";
    case KIND_DISPLACEMENT:
        return "displacement";
    case KIND_TENSOR:
        return "tensor";
    default:
        return "unknown";
    }
}

const char* mappingName(std::int32_t mapping)
{
    return mapping == MAPPING_NODE ? "node" : "element";
}

/// The counts of each group that has an element group, by group id; empty unless requested.
using CountsById = std::map<std::int32_t, GroupCounts>;

/// Counts by group id, because the tree lists groups as declared and not in the order of the geometry.
CountsById countAll(const HostMetaData& metaData, const HostGeometry& geometry)
{
    CountsById counts;
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const HostElementGroup& elements = geometry.elementGroups[i];
        const bool surface = declared[i]->kind() != HostGroupKind::Part;
        counts[declared[i]->id] = countGroup(*geometry.nodesOf(elements), elements, surface);
    }
    return counts;
}

/// The groups of one kind in order of declaration; without a parent, those of all parents.
std::vector<const HostGroup*> groupsOf(const HostMetaData& metaData, HostGroupKind kind, const HostGroup* parent)
{
    std::vector<const HostGroup*> result;
    for (const HostGroup& group : metaData.groups) {
        if (group.kind() == kind && (parent == nullptr || group.parentId == parent->id)) {
            result.push_back(&group);
        }
    }
    return result;
}

// The document.

/// Keys that do not apply are omitted rather than null: a cell zone has no node count.
Json groupDocument(const HostGroup& group, const CountsById& counts)
{
    Json document = {{"id", group.id}, {"name", group.name}};
    if (!group.type().empty()) {
        document["type"] = group.type();
    }
    if (const auto found = counts.find(group.id); found != counts.end()) {
        const GroupCounts& figures = found->second;
        document["nodes"] = figures.nodes;
        document["elements"] = figures.elements;
        document["elementTypes"] = figures.elementsByType;
        if (figures.nodes != 0) {
            document["boundingBox"] = {figures.lower, figures.upper};
        }
    }
    return document;
}

Json groupList(const std::vector<const HostGroup*>& groups, const CountsById& counts)
{
    Json list = Json::array();
    for (const HostGroup* const group : groups) {
        list.push_back(groupDocument(*group, counts));
    }
    return list;
}

/// The three lists are always present, even if empty, so that a reader can walk them without checking.
Json partDocument(const HostMetaData& metaData, const HostGroup& part, const CountsById& counts)
{
    Json document = groupDocument(part, counts);
    document["patches"] = groupList(groupsOf(metaData, HostGroupKind::Boundary, &part), counts);
    document["cellZones"] = groupList(groupsOf(metaData, HostGroupKind::CellZone, &part), counts);
    document["faceZones"] = groupList(groupsOf(metaData, HostGroupKind::FaceZone, &part), counts);
    return document;
}

/// Names instead of the interface's numbers, which mean nothing outside it.
Json resultDocument(OpenedCase& opened, const HostResultInfo& result)
{
    const HostMetaData& metaData = opened.metaData();
    const HostResultInfo* const source = metaData.sourceOfAverage(result);
    return {{"id", result.id},
            {"name", result.name},
            {"field", opened.names().fieldOf(result)},
            {"kind", kindName(result.kind)},
            {"mapping", mappingName(result.mapping)},
            {"unit", withoutTrailingBlanks(result.unit)},
            {"key", result.key},
            {"averageOf", source == nullptr ? Json() : Json(source->id)}};
}

/// What the library says it cannot show of the case: the texts of its log lines after "Not shown: ".
std::vector<std::string> omissions()
{
    static constexpr std::string_view MARK = "Not shown: ";
    std::vector<std::string> texts;
    for (const HostLogLine& line : HostLog::get().lines()) {
        if (const std::size_t mark = line.text.find(MARK); mark != std::string::npos) {
            texts.push_back(line.text.substr(mark + MARK.size()));
        }
    }
    return texts;
}

Json infoDocument(HostContext& context, OpenedCase& opened, const CountsById& counts,
                  const std::vector<LoggedCause>& unread)
{
    const HostMetaData& metaData = opened.metaData();
    Json document = newDocument("info");
    for (const auto& [key, value] : context.library().pluginInfo()) {
        document["plugin"][key] = value;
    }
    document["title"] = metaData.title;
    document["description"] = withoutTrailingBlanks(metaData.description);
    document["parts"] = Json::array();
    for (const HostGroup* const part : groupsOf(metaData, HostGroupKind::Part, nullptr)) {
        document["parts"].push_back(partDocument(metaData, *part, counts));
    }
    document["surfaces"] = groupList(groupsOf(metaData, HostGroupKind::Surface, nullptr), counts);
    document["states"] = Json::array();
    for (const HostState& state : metaData.states) {
        document["states"].push_back({{"id", state.id},
                                      {"value", state.referenceValue},
                                      {"name", state.name},
                                      {"folder", opened.names().folderOf(state)}});
    }
    document["results"] = Json::array();
    for (const HostResultInfo& result : metaData.results) {
        document["results"].push_back(resultDocument(opened, result));
    }
    document["notShown"] = omissions();
    document["meshesNotRead"] = unreadDocument(unread);
    return document;
}

// The tree.

/// All counts on one line; types that do not occur are left out.
std::string countsText(const GroupCounts& counts)
{
    if (counts.nodes == 0) {
        // Elements without nodes are what is left of a mesh that cannot be read.
        return counts.elements == 0 ? "empty" : "no nodes";
    }
    std::string text = fmt::format("{} nodes", counts.nodes);
    for (const auto& [type, count] : counts.elementsByType) {
        text += fmt::format(", {} {}", count, type);
    }
    return text;
}

std::string boxText(const GroupCounts& counts)
{
    // A box of no nodes would be one of zeros, which is a place.
    return counts.nodes == 0 ? std::string()
                             : fmt::format("box ({:g} {:g} {:g}) ({:g} {:g} {:g})", counts.lower[0] + 0.0,
                                           counts.lower[1] + 0.0, counts.lower[2] + 0.0, counts.upper[0] + 0.0,
                                           counts.upper[1] + 0.0, counts.upper[2] + 0.0);
}

/// A titled table of groups, or nothing at all when there are none.
std::string groupSection(const std::string& title, const std::vector<const HostGroup*>& groups,
                         const CountsById& counts, std::size_t indent)
{
    if (groups.empty()) {
        return {};
    }
    TextTable table({TextTable::Align::Right, TextTable::Align::Left, TextTable::Align::Left, TextTable::Align::Left});
    for (const HostGroup* const group : groups) {
        const auto found = counts.find(group->id);
        table.add({std::to_string(group->id), group->name, group->type(),
                   found == counts.end() ? std::string() : countsText(found->second)});
    }
    return std::string(indent, ' ') + title + "\n" + table.text(indent + 2, terminalWidth());
}

/// One part and its groups, indented as a tree.
std::string partSection(const HostMetaData& metaData, const HostGroup& part, const CountsById& counts,
                        const TextStyle& style)
{
    std::string text = fmt::format("  {} {}\n", style.strong(part.name), style.faint(fmt::format("id {}", part.id)));
    if (const auto found = counts.find(part.id); found != counts.end()) {
        text += fmt::format("    {}\n", countsText(found->second));
        const std::string box = boxText(found->second);
        text += box.empty() ? box : "    " + box + "\n";
    }
    text += groupSection("patches", groupsOf(metaData, HostGroupKind::Boundary, &part), counts, 4);
    text += groupSection("cell zones", groupsOf(metaData, HostGroupKind::CellZone, &part), counts, 4);
    text += groupSection("face zones", groupsOf(metaData, HostGroupKind::FaceZone, &part), counts, 4);
    return text;
}

/// The sum of the parts, or nothing if there are not several.
std::string totalSection(const std::vector<const HostGroup*>& parts, const CountsById& counts, const TextStyle& style)
{
    if (parts.size() < 2 || counts.empty()) {
        return {};
    }
    GroupCounts total;
    for (const HostGroup* const part : parts) {
        const auto found = counts.find(part->id);
        if (found != counts.end()) {
            addCounts(found->second, &total);
        }
    }
    const std::string box = boxText(total);
    return fmt::format("  {}\n    {}\n", style.strong(fmt::format("all {} parts", parts.size())), countsText(total)) +
           (box.empty() ? box : "    " + box + "\n");
}

/// A table whose first row is its heading, below a title with a count; one line that there are none if it is empty.
std::string titledTable(const char* title, std::size_t count, const TextTable& table, const TextStyle& style)
{
    if (count == 0) {
        return style.faint(fmt::format("{}: none", title)) + "\n";
    }
    const std::string text = table.text(2, terminalWidth());
    const std::size_t headEnd = text.find('\n');
    return style.faint(title) + "\n" + style.faint(text.substr(0, headEnd)) + text.substr(headEnd);
}

/// States in the order of the provider, which need not be that of their ids.
std::string stateSection(OpenedCase& opened, const TextStyle& style)
{
    using Align = TextTable::Align;
    const std::vector<HostState>& states = opened.metaData().states;
    TextTable table({Align::Right, Align::Right, Align::Left, Align::Left});
    table.add({"id", "time", "folder", "shown as"});
    for (const HostState& state : states) {
        const std::string folder = opened.names().folderOf(state);
        table.add({std::to_string(state.id), fmt::format("{}", state.referenceValue), folder.empty() ? "-" : folder,
                   state.name});
    }
    return titledTable("states", states.size(), table, style);
}

/// One line per result; a missing unit is shown as a dash to keep the columns readable.
std::string resultSection(OpenedCase& opened, const TextStyle& style)
{
    const HostMetaData& metaData = opened.metaData();
    TextTable table(std::vector(8, TextTable::Align::Left));
    table.add({"id", "field", "shown as", "kind", "on", "unit", "key", ""});
    for (const HostResultInfo& result : metaData.results) {
        const HostResultInfo* const source = metaData.sourceOfAverage(result);
        table.add({std::to_string(result.id), opened.names().fieldOf(result), result.name, kindName(result.kind),
                   mappingName(result.mapping), result.unit.empty() ? "-" : result.unit, result.key,
                   source == nullptr ? std::string() : fmt::format("average of {}", source->id)});
    }
    return titledTable("results", metaData.results.size(), table, style);
}

std::string infoTree(OpenedCase& opened, const CountsById& counts, const TextStyle& style)
{
    const HostMetaData& metaData = opened.metaData();
    const std::vector<const HostGroup*> parts = groupsOf(metaData, HostGroupKind::Part, nullptr);
    std::string text =
        style.strong(metaData.title) + "\n" + escapedLines(withoutTrailingBlanks(metaData.description)) + "\n";
    text += style.faint(parts.empty() ? "parts: none" : "parts") + "\n";
    for (const HostGroup* const part : parts) {
        text += partSection(metaData, *part, counts, style);
    }
    text += totalSection(parts, counts, style);
    text += groupSection(style.faint("surfaces"), groupsOf(metaData, HostGroupKind::Surface, nullptr), counts, 0);
    text += stateSection(opened, style);
    text += resultSection(opened, style);
    const std::vector<std::string> left = omissions();
    text += left.empty() ? "" : style.faint("not shown; 'ddphost doctor' says more") + "\n";
    for (const std::string& omission : left) {
        text += "  " + escapedControls(omission) + "\n";
    }
    return text;
}

ExitCode runInfo(HostContext& context, const InfoOptions& options)
{
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    const HostMetaData& metaData = opened->metaData();
    const std::vector<LoggedCause> unread = options.counts ? unreadMeshes(*opened) : std::vector<LoggedCause>();
    const CountsById counts = options.counts ? countAll(metaData, opened->geometry()) : CountsById();
    if (context.options.json) {
        writeDocument(infoDocument(context, *opened, counts, unread));
    } else {
        writeToStdout(infoTree(*opened, counts, context.style()));
    }
    tellUnreadMeshes(unread);
    if (!unread.empty() || metaData.results.empty()) {
        tellUser((metaData.results.empty() ? "the case shows no results; " : "") + doctorHint(options.casePath));
    }
    return unread.empty() ? ExitCode::Good : ExitCode::Findings;
}

} // namespace

void addInfoCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* const command = app->add_subcommand("info", "Show what a case contains: parts, groups, states, results");
    addCaseArgument(command, &options->casePath);
    command->add_flag("--counts", options->counts, "Read the meshes too and show node and element counts");
    addPlainFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runInfo(*context, *options); }; });
}
