// SPDX-License-Identifier: MIT
#include "commands/GroupCounts.h"

#include <algorithm>

namespace {

/// General faces and general cells have the same type number; the kind of group decides which it is.
const char* typeName(std::int32_t type, bool surface)
{
    switch (type) {
    case DDP_TRIANGLE:
        return "triangles";
    case DDP_QUADRILATERAL:
        return "quadrilaterals";
    case DDP_TETRAHEDRON:
        return "tetrahedra";
    case DDP_HEXAHEDRON:
        return "hexahedra";
    case DDP_PENTAHEDRON:
        return "prisms";
    case DDP_PYRAMID:
        return "pyramids";
    default:
        return surface ? "polygons" : "polyhedra";
    }
}

/// The bounding box of all nodes, whether used by elements or not.
void measure(const std::vector<double>& coordinates, GroupCounts* counts)
{
    if (coordinates.empty()) {
        return;
    }
    std::copy_n(coordinates.begin(), 3, counts->lower.begin());
    counts->upper = counts->lower;
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        counts->lower[i % 3] = std::min(counts->lower[i % 3], coordinates[i]);
        counts->upper[i % 3] = std::max(counts->upper[i % 3], coordinates[i]);
    }
}

} // namespace

GroupCounts countGroup(const HostNodeGroup& nodes, const HostElementGroup& elements, bool surface)
{
    GroupCounts counts;
    counts.nodes = nodes.nodeCount();
    counts.elements = elements.elementCount();
    std::map<std::int32_t, std::size_t> byNumber;
    for (const std::int32_t type : elements.types) {
        ++byNumber[type];
    }
    for (const auto& [type, count] : byNumber) {
        counts.elementsByType[typeName(type, surface)] = count;
    }
    measure(nodes.coordinates, &counts);
    return counts;
}

void addCounts(const GroupCounts& group, GroupCounts* total)
{
    if (group.nodes != 0) {
        for (std::size_t k = 0; k < group.lower.size(); ++k) {
            total->lower[k] = total->nodes == 0 ? group.lower[k] : std::min(total->lower[k], group.lower[k]);
            total->upper[k] = total->nodes == 0 ? group.upper[k] : std::max(total->upper[k], group.upper[k]);
        }
    }
    total->nodes += group.nodes;
    total->elements += group.elements;
    for (const auto& [type, count] : group.elementsByType) {
        total->elementsByType[type] += count;
    }
}
