// SPDX-License-Identifier: MIT
#include "view/PageGroups.h"

#include "border/CellFaces.h"
#include "border/DeliveryCheck.h"

#include <algorithm>

namespace {

/// Marks the nodes of the cells of a zone.
std::vector<bool> nodesOfZone(const HostNodeGroup& nodes, const HostElementGroup& elements, std::int32_t zone)
{
    std::vector<bool> marks(nodes.nodeCount());
    forEachFace(elements, [&](std::size_t element, std::span<const std::int32_t> face) {
        if (!elements.partIds.empty() && elements.partIds[element] == zone) {
            for (const std::int32_t node : face) {
                marks[static_cast<std::size_t>(node)] = true;
            }
        }
    });
    return marks;
}

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
            elements.elementCount()};
}

PageGroup zoneGroup(const HostGeometry& geometry, const HostGroup& zone, std::size_t partIndex)
{
    const HostElementGroup& elements = geometry.elementGroups[partIndex];
    const HostNodeGroup& nodes = *geometry.nodesOf(elements);
    return {&zone,
            HostGroupKind::CellZone,
            partIndex,
            std::nullopt,
            outerFaces(nodes, elements, zone.id),
            nodesOfZone(nodes, elements, zone.id),
            static_cast<std::size_t>(std::ranges::count(elements.partIds, zone.id))};
}

/// True if the item belongs to the group.
bool holds(const PageGroup& group, const HostResultInfo& info, const HostElementGroup& elements, std::size_t item)
{
    return info.mapping == MAPPING_NODE ? group.nodesOfZone[item] : elements.partIds[item] == group.group->id;
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
        for (const HostGroup& zone : metaData.groups) {
            if (zone.kind() == HostGroupKind::CellZone && zone.parentId == declared[index]->id) {
                groups.push_back(zoneGroup(geometry, zone, index));
            }
        }
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
    const HostElementGroup& elements = opened.geometry().elementGroups[group.index];
    HostValueGroup own;
    own.dimension = whole->dimension;
    const auto dimension = static_cast<std::size_t>(whole->dimension);
    for (std::size_t item = 0; item < whole->itemCount(); ++item) {
        if (holds(group, info, elements, item)) {
            const auto first = whole->values.begin() + static_cast<std::ptrdiff_t>(item * dimension);
            own.values.insert(own.values.end(), first, first + static_cast<std::ptrdiff_t>(dimension));
        }
    }
    return own;
}

std::vector<double> drawnValues(const PageGroup& group, const HostResultInfo& info, const HostValueGroup& values)
{
    const auto dimension = static_cast<std::size_t>(values.dimension);
    const std::vector<std::int32_t>& items = info.mapping == MAPPING_NODE ? group.faces.nodes : group.faces.elements;
    std::vector<double> drawn;
    drawn.reserve(items.size() * dimension);
    for (const std::int32_t item : items) {
        const auto first =
            values.values.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(item) * dimension);
        drawn.insert(drawn.end(), first, first + static_cast<std::ptrdiff_t>(dimension));
    }
    return drawn;
}
