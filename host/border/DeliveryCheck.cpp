// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace {

/// The sum of byte counts, in the width of an index, so that it cannot wrap as the counts themselves can.
std::size_t sumOf(const std::vector<unsigned char>& counts)
{
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

/// True if every entry is a valid index below the bound; labels are signed, so negative ones are refused too.
bool allBelow(const std::vector<std::int32_t>& entries, std::size_t bound)
{
    return std::ranges::all_of(
        entries, [bound](std::int32_t entry) { return entry >= 0 && static_cast<std::size_t>(entry) < bound; });
}

/// Ids may be missing altogether, but a list of ids must be complete.
std::string findNodeFault(const HostNodeGroup& nodes)
{
    if (!nodes.ids.empty() && nodes.ids.size() != nodes.nodeCount()) {
        return fmt::format("{} node ids for {} nodes", nodes.ids.size(), nodes.nodeCount());
    }
    return {};
}

/// The length of the connectivity that types and polyhedron counts require; -1 for an unknown type.
std::int64_t connectivityNeeded(const HostElementGroup& elements)
{
    // One polyhedron per general element, as the check of the polyhedra has established.
    auto needed = static_cast<std::int64_t>(sumOf(elements.polyhedra.nodesPerPolyhedron));
    for (const std::int32_t type : elements.types) {
        const int count = nodeCountOfType(type);
        if (count < 0) {
            return -1;
        }
        needed += count;
    }
    return needed;
}

/// Checks the arrays with entries per element. Relies on the polyhedron tables, which are checked first.
std::string findElementFault(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    if (elements.ids.size() != elements.elementCount()) {
        return "the element ids are missing";
    }
    if (!elements.partIds.empty() && elements.partIds.size() != elements.elementCount()) {
        return fmt::format("{} part ids for {} elements", elements.partIds.size(), elements.elementCount());
    }
    const std::int64_t needed = connectivityNeeded(elements);
    if (needed < 0) {
        return "an element of unknown type";
    }
    // A uniform list may end in unused slack, left by readers of binary files.
    const auto length = static_cast<std::int64_t>(elements.connectivity.size());
    if (elements.uniform ? length < needed : length != needed) {
        return fmt::format("{} connectivity entries where the elements need {}", length, needed);
    }
    return allBelow(elements.connectivity, nodes.nodeCount()) ? std::string() : "connectivity out of range";
}

/// Throws a fault that the user can locate: what was delivered, for which group, and what is wrong with it.
[[noreturn]] void reportFault(const std::string& groupName, const std::string& fault)
{
    throw HostError(ExitCode::Misbehaved, fmt::format("the library delivered broken arrays: {}: {}", groupName, fault));
}

} // namespace

int nodeCountOfType(std::int32_t type)
{
    switch (type) {
    case DDP_TRIANGLE:
        return 3;
    case DDP_QUADRILATERAL:
    case DDP_TETRAHEDRON:
        return 4;
    case DDP_PYRAMID:
        return 5;
    case DDP_PENTAHEDRON:
        return 6;
    case DDP_HEXAHEDRON:
        return 8;
    case DDP_POLY:
        return 0;
    default:
        return -1;
    }
}

std::string findPolyhedraFault(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    const HostPolyhedra& tables = elements.polyhedra;
    const auto general = static_cast<std::size_t>(std::ranges::count(elements.types, std::int32_t{DDP_POLY}));
    if (tables.nodesPerPolyhedron.size() != general) {
        return fmt::format("{} polyhedra for {} general elements", tables.nodesPerPolyhedron.size(), general);
    }
    if (sumOf(tables.facesPerPolyhedron) != tables.nodesPerFace.size()) {
        return fmt::format("the polyhedra have {} faces, the face table {}", sumOf(tables.facesPerPolyhedron),
                           tables.nodesPerFace.size());
    }
    if (sumOf(tables.nodesPerFace) != tables.faceConnectivity.size()) {
        return fmt::format("the faces have {} nodes, the face connectivity {}", sumOf(tables.nodesPerFace),
                           tables.faceConnectivity.size());
    }
    return allBelow(tables.faceConnectivity, nodes.nodeCount()) ? std::string() : "face connectivity out of range";
}

std::string findGroupFault(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    if (std::string fault = findNodeFault(nodes); !fault.empty()) {
        return fault;
    }
    // The tables come first: the element check uses their counts to walk the connectivity.
    if (std::string fault = findPolyhedraFault(nodes, elements); !fault.empty()) {
        return fault;
    }
    return findElementFault(nodes, elements);
}

void checkGeometry(const HostMetaData& metaData, const HostGeometry& geometry)
{
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    if (declared.size() != geometry.elementGroups.size()) {
        reportFault("geometry", fmt::format("{} element groups for {} declared groups", geometry.elementGroups.size(),
                                            declared.size()));
    }
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const HostElementGroup& elements = geometry.elementGroups[i];
        const HostNodeGroup* const nodes = geometry.nodesOf(elements);
        if (nodes == nullptr) {
            reportFault(declared[i]->name, "bound to a node group that does not exist");
        }
        if (const std::string fault = findGroupFault(*nodes, elements); !fault.empty()) {
            reportFault(declared[i]->name, fault);
        }
    }
}

const HostValueGroup* valuesOfGroup(const HostMetaData& metaData, const HostResult& result, std::size_t groupIndex)
{
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    if (declared[groupIndex]->kind() == HostGroupKind::FaceZone) {
        return nullptr;
    }
    const auto position = static_cast<std::size_t>(
        std::count_if(declared.begin(), declared.begin() + static_cast<std::ptrdiff_t>(groupIndex),
                      [](const HostGroup* group) { return group->kind() != HostGroupKind::FaceZone; }));
    return position < result.groups.size() ? &result.groups[position] : nullptr;
}

bool belongsToItsGroups(const HostMetaData& metaData, const HostResultInfo& info, std::int32_t stateId)
{
    constexpr std::int32_t FIRST_STATE_ID = 1;
    return info.kind != KIND_DISPLACEMENT || stateId != FIRST_STATE_ID ||
           std::ranges::count(metaData.groups, HostGroupKind::Part, &HostGroup::kind) <= 1;
}

void checkResult(const HostMetaData& metaData, const HostGeometry& geometry, const HostResultInfo& info,
                 const HostResult& result)
{
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    std::size_t used = 0;
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const HostValueGroup* const values = valuesOfGroup(metaData, result, i);
        const HostGroupKind kind = declared[i]->kind();
        if (values == nullptr && kind != HostGroupKind::FaceZone && kind != HostGroupKind::Surface) {
            reportFault(declared[i]->name, fmt::format("no value group for result {}", info.name));
        }
        if (values == nullptr) {
            continue;
        }
        ++used;
        const HostElementGroup& elements = geometry.elementGroups[i];
        const std::size_t expected =
            info.mapping == MAPPING_NODE ? geometry.nodesOf(elements)->nodeCount() : elements.elementCount();
        if (values->itemCount() != expected && values->itemCount() != 0 && info.kind != KIND_DISPLACEMENT) {
            reportFault(declared[i]->name,
                        fmt::format("{} values of result {} for {} items", values->itemCount(), info.name, expected));
        }
    }
    if (used != result.groups.size()) {
        reportFault("result", fmt::format("{} value groups, {} expected", result.groups.size(), used));
    }
}
