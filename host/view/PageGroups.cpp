// SPDX-License-Identifier: MIT
#include "view/PageGroups.h"

#include "border/CellFaces.h"
#include "border/DeliveryCheck.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <unordered_map>
#include <utility>

namespace {

PageGroup wholeGroup(const HostGeometry& geometry, const HostGroup& group, std::size_t index)
{
    const HostElementGroup& elements = geometry.elementGroups[index];
    const HostNodeGroup& nodes = *geometry.nodesOf(elements);
    const bool isSolid = group.kind() == HostGroupKind::Part;
    return {&group,
            group.kind(),
            index,
            std::nullopt,
            isSolid ? outerFaces(nodes, elements) : flatFaces(nodes, elements),
            {},
            {},
            elements.elementCount()};
}

/// Fills in cells and nodes of each zone, in ascending order.
void addMembers(const HostNodeGroup& nodes, const HostElementGroup& elements, std::span<const std::int32_t> zoneOfCell,
                std::span<PageGroup> zones)
{
    for (std::size_t cell = 0; cell < zoneOfCell.size(); ++cell) {
        if (zoneOfCell[cell] >= 0) {
            zones[static_cast<std::size_t>(zoneOfCell[cell])].cells.push_back(static_cast<std::int32_t>(cell));
        }
    }
    // Most nodes are met again by cells of the same zone.
    std::vector<std::int32_t> lastZone(nodes.nodeCount(), -1);
    forEachFace(elements, [&](std::size_t cell, std::span<const std::int32_t> face) {
        const std::int32_t zone = zoneOfCell[cell];
        for (std::size_t k = 0; zone >= 0 && k < face.size(); ++k) {
            if (std::exchange(lastZone[static_cast<std::size_t>(face[k])], zone) != zone) {
                zones[static_cast<std::size_t>(zone)].nodes.push_back(face[k]);
            }
        }
    });
    for (PageGroup& zone : zones) {
        std::ranges::sort(zone.nodes);
        zone.nodes.erase(std::unique(zone.nodes.begin(), zone.nodes.end()), zone.nodes.end());
        zone.elementCount = zone.cells.size();
    }
}

/// The cell zones of a part.
std::vector<PageGroup> zonesOfPart(const HostMetaData& metaData, const HostGeometry& geometry, const HostGroup& part,
                                   std::size_t partIndex)
{
    std::vector<PageGroup> zones;
    std::unordered_map<std::int32_t, std::int32_t> zoneOfId;
    for (const HostGroup& zone : metaData.groups) {
        if (zone.kind() == HostGroupKind::CellZone && zone.parentId == part.id) {
            zoneOfId.emplace(zone.id, static_cast<std::int32_t>(zones.size()));
            zones.push_back({&zone, HostGroupKind::CellZone, partIndex, std::nullopt, {}, {}, {}, 0});
        }
    }
    const HostElementGroup& elements = geometry.elementGroups[partIndex];
    if (zones.empty() || elements.partIds.empty()) {
        return zones;
    }
    std::vector<std::int32_t> zoneOfCell;
    zoneOfCell.reserve(elements.partIds.size());
    for (const std::int32_t id : elements.partIds) {
        const auto found = zoneOfId.find(id);
        zoneOfCell.push_back(found == zoneOfId.end() ? -1 : found->second);
    }
    const HostNodeGroup& nodes = *geometry.nodesOf(elements);
    addMembers(nodes, elements, zoneOfCell, zones);
    std::vector<DrawnFaces> faces = outerFacesOfZones(nodes, elements, zoneOfCell, zones.size());
    for (std::size_t i = 0; i < zones.size(); ++i) {
        zones[i].faces = std::move(faces[i]);
    }
    return zones;
}

/// The values of some items.
std::vector<double> valuesAt(const std::vector<std::int32_t>& items, const HostValueGroup& values)
{
    const auto dimension = static_cast<std::size_t>(values.dimension);
    std::vector<double> found;
    found.reserve(items.size() * dimension);
    for (const std::int32_t item : items) {
        const auto first =
            values.values.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(item) * dimension);
        found.insert(found.end(), first, first + static_cast<std::ptrdiff_t>(dimension));
    }
    return found;
}

} // namespace

std::vector<PageGroup> pageGroups(OpenedCase& opened, const std::vector<std::size_t>& selected)
{
    const HostMetaData& metaData = opened.metaData();
    const HostGeometry& geometry = opened.geometry();
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    std::vector<PageGroup> groups;
    for (const std::size_t index : selected) {
        groups.push_back(wholeGroup(geometry, *declared[index], index));
        if (declared[index]->kind() != HostGroupKind::Part) {
            continue;
        }
        std::vector<PageGroup> zones = zonesOfPart(metaData, geometry, *declared[index], index);
        std::ranges::move(zones, std::back_inserter(groups));
    }
    for (PageGroup& group : groups) {
        const auto part = std::ranges::find_if(groups, [&](const PageGroup& other) {
            return group.group->parentId && other.group->id == *group.group->parentId;
        });
        if (part != groups.end()) {
            group.part = static_cast<std::size_t>(part - groups.begin());
        }
    }
    return groups;
}

HostValueGroup allValues(OpenedCase& opened, const PageGroup& group, const HostResultInfo& info,
                         const HostResult& result)
{
    const HostValueGroup* const whole = valuesOfGroup(opened.metaData(), result, group.index);
    if (whole == nullptr || group.kind != HostGroupKind::CellZone) {
        return whole == nullptr ? HostValueGroup() : *whole;
    }
    HostValueGroup own;
    own.dimension = whole->dimension;
    own.values = valuesAt(info.mapping == MAPPING_NODE ? group.nodes : group.cells, *whole);
    return own;
}

std::vector<double> drawnValues(const PageGroup& group, const HostResultInfo& info, const HostValueGroup& values)
{
    return valuesAt(info.mapping == MAPPING_NODE ? group.faces.nodes : group.faces.elements, values);
}
