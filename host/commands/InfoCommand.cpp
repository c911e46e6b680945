// SPDX-License-Identifier: MIT
#include "border/HostLog.h"
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

/// Descriptions may or may not end in a line feed.
std::string trimmed(const std::string& text)
{
    return text.substr(0, text.find_last_not_of(" \n") + 1);
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
        document["boundingBox"] = {figures.lower, figures.upper};
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
Json resultDocument(const HostMetaData& metaData, const HostResultInfo& result)
{
    const HostResultInfo* const source = metaData.sourceOfAverage(result);
    return {{"id", result.id},
            {"name", result.name},
            {"kind", kindName(result.kind)},
            {"mapping", mappingName(result.mapping)},
            {"unit", result.unit},
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

Json infoDocument(HostContext& context, const HostMetaData& metaData, const CountsById& counts)
{
    Json document = newDocument("info");
    for (const auto& [key, value] : context.library().pluginInfo()) {
        document["plugin"][key] = value;
    }
    document["title"] = metaData.title;
    document["description"] = trimmed(metaData.description);
    document["parts"] = Json::array();
    for (const HostGroup* const part : groupsOf(metaData, HostGroupKind::Part, nullptr)) {
        document["parts"].push_back(partDocument(metaData, *part, counts));
    }
    document["surfaces"] = groupList(groupsOf(metaData, HostGroupKind::Surface, nullptr), counts);
    document["states"] = Json::array();
    for (const HostState& state : metaData.states) {
        document["states"].push_back({{"id", state.id}, {"value", state.referenceValue}, {"name", state.name}});
    }
    document["results"] = Json::array();
    for (const HostResultInfo& result : metaData.results) {
        document["results"].push_back(resultDocument(metaData, result));
    }
    document["notShown"] = omissions();
    return document;
}

// The tree.

/// All counts on one line; types that do not occur are left out.
std::string countsText(const GroupCounts& counts)
{
    std::string text = fmt::format("{} nodes", counts.nodes);
    for (const auto& [type, count] : counts.elementsByType) {
        text += fmt::format(", {} {}", count, type);
    }
    return text;
}

std::string boxText(const GroupCounts& counts)
{
    return fmt::format("box ({:g} {:g} {:g}) ({:g} {:g} {:g})", counts.lower[0], counts.lower[1], counts.lower[2],
                       counts.upper[0], counts.upper[1], counts.upper[2]);
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
    return std::string(indent, ' ') + title + "\n" + table.text(indent + 2);
}

/// One part and its groups, indented as a tree.
std::string partSection(const HostMetaData& metaData, const HostGroup& part, const CountsById& counts,
                        const TextStyle& style)
{
    std::string text = fmt::format("  {} {}\n", style.strong(part.name), style.faint(fmt::format("id {}", part.id)));
    if (const auto found = counts.find(part.id); found != counts.end()) {
        text += fmt::format("    {}\n    {}\n", countsText(found->second), boxText(found->second));
    }
    text += groupSection("patches", groupsOf(metaData, HostGroupKind::Boundary, &part), counts, 4);
    text += groupSection("cell zones", groupsOf(metaData, HostGroupKind::CellZone, &part), counts, 4);
    text += groupSection("face zones", groupsOf(metaData, HostGroupKind::FaceZone, &part), counts, 4);
    return text;
}

/// States in the order of the provider, which need not be that of their ids.
std::string stateSection(const HostMetaData& metaData)
{
    TextTable table({TextTable::Align::Right, TextTable::Align::Left, TextTable::Align::Left});
    for (const HostState& state : metaData.states) {
        table.add({std::to_string(state.id), fmt::format("{}", state.referenceValue), state.name});
    }
    return table.text(2);
}

/// One line per result; a missing unit is shown as a dash to keep the columns readable.
std::string resultSection(const HostMetaData& metaData)
{
    TextTable table(std::vector(7, TextTable::Align::Left));
    for (const HostResultInfo& result : metaData.results) {
        const HostResultInfo* const source = metaData.sourceOfAverage(result);
        table.add({std::to_string(result.id), result.name, kindName(result.kind), mappingName(result.mapping),
                   result.unit.empty() ? "-" : result.unit, result.key,
                   source == nullptr ? std::string() : fmt::format("average of {}", source->id)});
    }
    return table.text(2);
}

std::string infoTree(const HostMetaData& metaData, const CountsById& counts, const TextStyle& style)
{
    std::string text = style.strong(metaData.title) + "\n" + trimmed(metaData.description) + "\n";
    text += style.faint("parts") + "\n";
    for (const HostGroup* const part : groupsOf(metaData, HostGroupKind::Part, nullptr)) {
        text += partSection(metaData, *part, counts, style);
    }
    text += groupSection(style.faint("surfaces"), groupsOf(metaData, HostGroupKind::Surface, nullptr), counts, 0);
    text += style.faint("states") + "\n" + stateSection(metaData);
    text += style.faint("results") + "\n" + resultSection(metaData);
    const std::vector<std::string> left = omissions();
    text += left.empty() ? "" : style.faint("not shown") + "\n";
    for (const std::string& omission : left) {
        text += "  " + omission + "\n";
    }
    return text;
}

ExitCode runInfo(HostContext& context, const InfoOptions& options)
{
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    const HostMetaData& metaData = opened->metaData();
    const CountsById counts = options.counts ? countAll(metaData, opened->geometry()) : CountsById();
    if (context.options.json) {
        writeDocument(infoDocument(context, metaData, counts));
    } else {
        writeToStdout(infoTree(metaData, counts, context.style()));
    }
    return ExitCode::Good;
}

} // namespace

void addInfoCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* const command = app->add_subcommand("info", "Show what a case contains: parts, groups, states, results");
    command->add_option("CASE", options->casePath, "A case folder or the path to its case.foam")->required();
    command->add_flag("--counts", options->counts, "Read the meshes too and show node and element counts");
    addPlainFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runInfo(*context, *options); }; });
}
