// SPDX-License-Identifier: MIT
#include "view/CasePage.h"

#include "border/DeliveryCheck.h"
#include "border/HostError.h"
#include "border/TextForms.h"
#include "commands/GroupCounts.h"
#include "commands/Statistics.h"
#include "output/ByteText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Json = nlohmann::ordered_json;
using Point = std::array<double, 3>;

/// Figures of a component in a page: least, mean, greatest, items, undefined, NaN, infinite.
constexpr std::size_t FIGURES = 7;

const char* kindName(HostGroupKind kind)
{
    switch (kind) {
    case HostGroupKind::Part:
        return "part";
    case HostGroupKind::CellZone:
        return "cell zone";
    case HostGroupKind::Boundary:
        return "patch";
    case HostGroupKind::FaceZone:
        return "face zone";
    default:
        return "surface";
    }
}

/// The middle of all points, from which a page counts coordinates, so that a mesh far from the origin keeps its digits.
Point middleOf(const HostGeometry& geometry, const std::vector<PageGroup>& groups)
{
    Point lower = {INFINITY, INFINITY, INFINITY};
    Point upper = {-INFINITY, -INFINITY, -INFINITY};
    for (const PageGroup& group : groups) {
        const HostNodeGroup& nodes = *geometry.nodesOf(geometry.elementGroups[group.index]);
        for (std::size_t i = 0; i < nodes.coordinates.size(); ++i) {
            if (std::isfinite(nodes.coordinates[i])) {
                lower[i % 3] = std::min(lower[i % 3], nodes.coordinates[i]);
                upper[i % 3] = std::max(upper[i % 3], nodes.coordinates[i]);
            }
        }
    }
    Point middle = {};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        middle[axis] = lower[axis] <= upper[axis] ? (lower[axis] + upper[axis]) / 2 : 0;
    }
    return middle;
}

/// One page while it is written.
class CasePage
{
public:
    CasePage(OpenedCase& opened, PageContent content, PageFile* file, const std::function<void()>& advance)
        : m_opened(opened), m_content(std::move(content)), m_file(*file), m_advance(advance),
          m_groups(pageGroups(opened, m_content.groups)), m_middle(middleOf(opened.geometry(), m_groups))
    {}

    PageReport write()
    {
        const Json groups = addGroups();
        m_geometryBytes = m_file.byteCount();
        Json values = Json::array();
        Json figures = Json::array();
        m_figures.resize(m_content.results.size());
        Json moved = Json::array();
        for (m_state = 0; m_state < m_content.states.size(); ++m_state) {
            moved.push_back(addMovedPoints(*m_content.states[m_state]));
            Json ofState = Json::array();
            for (std::size_t i = 0; i < m_content.results.size(); ++i) {
                ofState.push_back(addResult(i));
                m_advance();
            }
            values.push_back(ofState);
        }
        for (const std::vector<double>& ofResult : m_figures) {
            figures.push_back(m_file.add(packDoubles(ofResult)));
        }
        checkSize();
        m_file.describe({{"name", m_content.name},
                         {"title", m_opened.metaData().title},
                         {"origin", m_middle},
                         {"bits", static_cast<int>(m_content.precision)},
                         {"groups", groups},
                         {"states", stateList()},
                         {"results", resultList()},
                         {"values", values},
                         {"moved", moved},
                         {"figures", figures},
                         {"leftOut", m_content.leftOut}});
        checkSize();
        m_file.finish();
        PageReport report = {{}, m_content.leftOut, m_file.byteCount(), m_hasUndefined};
        for (const PageGroup& group : m_groups) {
            report.groups.push_back({group.group->id, group.group->name, kindName(group.kind), group.elementCount,
                                     group.faces.sizes.size(), group.faces.nodes.size()});
        }
        return report;
    }

private:
    Json addGroups()
    {
        Json list = Json::array();
        for (const PageGroup& group : m_groups) {
            const HostElementGroup& elements = m_opened.geometry().elementGroups[group.index];
            const HostNodeGroup& nodes = *m_opened.geometry().nodesOf(elements);
            const bool isSolid = group.kind == HostGroupKind::Part || group.kind == HostGroupKind::CellZone;
            Json entry = {{"id", group.group->id},
                          {"name", group.group->name},
                          {"kind", kindName(group.kind)},
                          {"type", group.group->type()},
                          {"part", group.part ? Json(*group.part) : Json(nullptr)},
                          {"elements", group.elementCount},
                          {"faces", group.faces.sizes.size()},
                          {"points", group.faces.nodes.size()}};
            if (group.kind != HostGroupKind::CellZone) {
                entry["types"] = countGroup(nodes, elements, !isSolid).elementsByType;
            }
            if (!group.faces.sizes.empty()) {
                entry["sizes"] = m_file.add(packBytes(group.faces.sizes));
                entry["corners"] = m_file.add(packIntegers(group.faces.corners));
                entry["cells"] = m_file.add(packIntegers(idsOf(elements, group.faces.elements)));
                entry["coordinates"] = addPoints(group, nodes.coordinates);
            }
            list.push_back(entry);
            checkSize();
        }
        return list;
    }

    static std::vector<std::int32_t> idsOf(const HostElementGroup& elements, const std::vector<std::int32_t>& positions)
    {
        std::vector<std::int32_t> ids;
        ids.reserve(positions.size());
        for (const std::int32_t position : positions) {
            ids.push_back(elements.ids[static_cast<std::size_t>(position)]);
        }
        return ids;
    }

    std::size_t addPoints(const PageGroup& group, const std::vector<double>& coordinates)
    {
        std::vector<double> points;
        points.reserve(3 * group.faces.nodes.size());
        for (const std::int32_t node : group.faces.nodes) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                points.push_back(coordinates[3 * static_cast<std::size_t>(node) + axis] - m_middle[axis]);
            }
        }
        return m_file.add(packValues(points, 3, m_content.precision));
    }

    /// The points of a state if they differ from those of the mesh; null for each group without such.
    Json addMovedPoints(const HostState& state)
    {
        Json blocks(std::vector<Json>(m_groups.size()));
        for (const HostResultInfo& info : m_opened.metaData().results) {
            if (info.kind != KIND_DISPLACEMENT) {
                continue;
            }
            if (!belongsToItsGroups(m_opened.metaData(), info, state.id)) {
                leaveOut("moved points of the first state: the library takes them from one part for all");
                continue;
            }
            const std::unique_ptr<HostResult> result = m_opened.result(info, state.id);
            for (std::size_t i = 0; result != nullptr && i < m_groups.size(); ++i) {
                const PageGroup& group = m_groups[i];
                const HostValueGroup* const points = valuesOfGroup(m_opened.metaData(), *result, group.index);
                const HostElementGroup& elements = m_opened.geometry().elementGroups[group.index];
                const std::size_t nodeCount = m_opened.geometry().nodesOf(elements)->nodeCount();
                if (points != nullptr && !group.faces.sizes.empty() && points->canReplacePoints(nodeCount)) {
                    blocks[i] = addPoints(group, points->values);
                }
            }
        }
        checkSize();
        return blocks;
    }

    /// @return the block of each group, null for a group without values
    Json addResult(std::size_t position)
    {
        const HostResultInfo& info = *m_content.results[position];
        Json blocks(std::vector<Json>(m_groups.size()));
        const std::unique_ptr<HostResult> result = m_opened.result(info, m_content.states[m_state]->id);
        const std::int32_t expected = componentCount(info.kind);
        for (std::size_t i = 0; i < m_groups.size(); ++i) {
            const PageGroup& group = m_groups[i];
            HostValueGroup values = result == nullptr ? HostValueGroup() : allValues(m_opened, group, info, *result);
            if (values.itemCount() != 0 && values.dimension != expected) {
                leaveOut(fmt::format("{} of {}: {} instead of {}", info.name, group.group->name,
                                     counted(static_cast<std::size_t>(values.dimension), "component"), expected));
                values = HostValueGroup();
            }
            addFigures(position, values);
            if (values.itemCount() != 0 && !group.faces.sizes.empty()) {
                const HostValueGroup& whole = *valuesOfGroup(m_opened.metaData(), *result, group.index);
                blocks[i] = m_file.add(packValues(drawnValues(group, info, whole),
                                                  static_cast<std::size_t>(whole.dimension), m_content.precision));
            }
        }
        checkSize();
        return blocks;
    }

    /// Appends the figures of all components, and of the magnitude of a vector; NaN for a group without values.
    void addFigures(std::size_t position, const HostValueGroup& values)
    {
        std::vector<double>& figures = m_figures[position];
        const std::vector<ComponentStatistics> components = statisticsOf(values);
        const std::size_t expected = componentNames(componentCount(m_content.results[position]->kind)).size();
        for (std::size_t k = 0; k < expected; ++k) {
            if (k >= components.size()) {
                figures.insert(figures.end(), FIGURES, std::numeric_limits<double>::quiet_NaN());
                continue;
            }
            const ComponentStatistics& one = components[k];
            for (const double figure :
                 {one.least, one.mean, one.greatest, static_cast<double>(one.items), static_cast<double>(one.undefined),
                  static_cast<double>(one.notANumber), static_cast<double>(one.infinite)}) {
                figures.push_back(figure);
            }
            m_hasUndefined = m_hasUndefined || one.undefined != 0;
        }
    }

    Json stateList() const
    {
        Json list = Json::array();
        for (const HostState* const state : m_content.states) {
            list.push_back({{"id", state->id},
                            {"name", state->name},
                            {"folder", m_opened.names().folderOf(*state)},
                            {"time", state->referenceValue}});
        }
        return list;
    }

    Json resultList() const
    {
        Json list = Json::array();
        for (const HostResultInfo* const info : m_content.results) {
            list.push_back({{"id", info->id},
                            {"name", info->name},
                            {"field", m_opened.names().fieldOf(*info)},
                            {"unit", withoutTrailingBlanks(info->unit)},
                            {"onNodes", info->mapping == MAPPING_NODE},
                            {"components", componentNames(componentCount(info->kind))}});
        }
        return list;
    }

    void leaveOut(const std::string& line)
    {
        if (std::ranges::find(m_content.leftOut, line) == m_content.leftOut.end()) {
            m_content.leftOut.push_back(line);
        }
    }

    void checkSize() const
    {
        if (m_file.byteCount() <= m_content.mostBytes) {
            return;
        }
        const std::string most = byteText(static_cast<double>(m_content.mostBytes));
        if (m_geometryBytes == 0) {
            throw HostError(ExitCode::CannotWrite,
                            fmt::format("the surfaces alone take more than {}; select fewer with --part, or give "
                                        "--precision 16 or a greater --limit",
                                        most));
        }
        // After the last state come the figures and the description of all.
        const std::size_t states = m_content.states.size();
        const std::string reached = m_state < states ? fmt::format("in state {} of {}", m_state + 1, states)
                                                     : fmt::format("after {}", counted(states, "state"));
        throw HostError(
            ExitCode::CannotWrite,
            fmt::format("the page would be larger than {}: the surfaces take {}, and that was reached {} with {}; "
                        "select fewer with --state, --result or --part, or give --precision 16 or a greater --limit",
                        most, byteText(static_cast<double>(m_geometryBytes)), reached,
                        counted(m_content.results.size(), "result")));
    }

    OpenedCase& m_opened;
    PageContent m_content;
    PageFile& m_file;
    const std::function<void()>& m_advance;
    std::vector<PageGroup> m_groups;
    Point m_middle;
    std::vector<std::vector<double>> m_figures; ///< of each result: state, group, component, figure
    std::uint64_t m_geometryBytes = 0;
    std::size_t m_state = 0;
    bool m_hasUndefined = false;
};

} // namespace

PageReport writeCasePage(OpenedCase& opened, PageContent content, PageFile* file, const std::function<void()>& advance)
{
    return CasePage(opened, std::move(content), file, advance).write();
}
