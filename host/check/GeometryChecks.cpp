// SPDX-License-Identifier: MIT
//
// Checks of the groups of one geometry: how they are created and filled, and what they hold.
#include "border/CellFaces.h"
#include "border/DeliveryCheck.h"
#include "border/HostSet.h"
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace {

using Operations = std::vector<std::string>;

/// A delivery that may contain any fault, with the declarations as far as there are any.
struct RawGeometry
{
    std::unique_ptr<CheckedCase> open;
    std::unique_ptr<HostMetaData> metaData;
    std::unique_ptr<HostGeometry> geometry;

    explicit RawGeometry(const CheckRun& run)
        : open(run.open()), metaData(open->metaData()), geometry(open->geometry()), m_groups(metaData->geometryGroups())
    {}

    std::string nameOf(std::size_t group) const
    {
        return group < m_groups.size() ? m_groups[group]->name : fmt::format("group {}", group);
    }

    /// Empties the tables of general elements whose counts are cut, and notes that limit.
    ElementsByGroup emptyCutTables(CheckRun& run)
    {
        ElementsByGroup cut = ::emptyCutTables(*metaData, geometry.get());
        for (std::size_t i = 0; i < cut.size(); ++i) {
            noteCutCells(run, nameOf(i), cut[i]);
        }
        return cut;
    }

private:
    std::vector<const HostGroup*> m_groups;
};

bool isElementOrder(const Operations& operations)
{
    static const Operations AFTER = {"setPolyhedra", "setElementPartIds"};
    if (operations.empty()) {
        return true;
    }
    if (operations[0] != "setMixedElements" && operations[0] != "setUniformElements") {
        return false;
    }
    auto next = AFTER.begin();
    for (std::size_t i = 1; i < operations.size(); ++i) {
        next = std::find(next, AFTER.end(), operations[i]);
        if (next == AFTER.end()) {
            return false;
        }
        ++next;
    }
    return true;
}

/// True if the entries count up by one from `first`.
bool countsFrom(const std::vector<std::int32_t>& entries, std::int32_t first)
{
    for (const std::int32_t entry : entries) {
        if (entry != first++) {
            return false;
        }
    }
    return true;
}

/// The ids of a part and its cell zones.
std::set<std::int32_t> idsWithin(const HostMetaData& metaData, const HostGroup& part)
{
    std::set<std::int32_t> ids = {part.id};
    for (const HostGroup& group : metaData.groups) {
        if (group.kind() == HostGroupKind::CellZone && group.parentId == part.id) {
            ids.insert(group.id);
        }
    }
    return ids;
}

const char* typeName(std::int32_t type)
{
    switch (type) {
    case DDP_TETRAHEDRON:
        return "tetrahedron";
    case DDP_PYRAMID:
        return "pyramid";
    case DDP_PENTAHEDRON:
        return "prism";
    case DDP_HEXAHEDRON:
        return "hexahedron";
    default:
        return "polyhedron";
    }
}

/// Compares the nodes of each general element that is not cut: those of its faces, their count and the connectivity.
void checkNodesOfPolyhedra(CheckRun& run, const std::string& name, const HostElementGroup& elements,
                           const std::vector<std::size_t>& cutCells)
{
    std::vector<std::set<std::int32_t>> fromFaces(elements.elementCount());
    forEachFace(elements, [&](std::size_t element, std::span<const std::int32_t> nodes) {
        if (elements.types[element] == DDP_POLY) {
            fromFaces[element].insert(nodes.begin(), nodes.end());
        }
    });
    std::size_t node = 0;
    std::size_t polyhedron = 0;
    for (std::size_t element = 0; element < elements.elementCount(); ++element) {
        const bool general = elements.types[element] == DDP_POLY;
        const std::size_t size = general ? elements.polyhedra.nodesPerPolyhedron[polyhedron]
                                         : static_cast<std::size_t>(nodeCountOfType(elements.types[element]));
        if (general) {
            const auto listed = std::span(elements.connectivity).subspan(node, size);
            if (!std::ranges::binary_search(cutCells, element) &&
                (fromFaces[element] != std::set<std::int32_t>(listed.begin(), listed.end()) ||
                 fromFaces[element].size() != size)) {
                run.fail(fmt::format("{}: element {} lists {} nodes, its faces have {} or different ones", name,
                                     element, size, fromFaces[element].size()));
            }
            ++polyhedron;
        }
        node += size;
    }
}

} // namespace

void checkGeometryOrder(CheckRun& run)
{
    const RawGeometry raw(run);
    const Operations& made = raw.geometry->calls.operations;
    for (std::size_t i = 0; i < made.size(); ++i) {
        const char* const wanted = i % 2 == 0 ? "addNodeGroup" : "addElementGroup";
        run.expect(made[i] == wanted, fmt::format("call {} is {}, not {}", i, made[i], wanted));
    }
    for (std::size_t i = 0; i < raw.geometry->elementGroups.size(); ++i) {
        const HostElementGroup& elements = raw.geometry->elementGroups[i];
        const HostNodeGroup* const nodes = raw.geometry->nodesOf(elements);
        run.expect(i < raw.geometry->nodeGroups.size() && nodes == &raw.geometry->nodeGroups[i],
                   fmt::format("{} is not bound to the node group made before it", raw.nameOf(i)));
        run.expect(isElementOrder(elements.calls.operations),
                   fmt::format("{} is filled by {}", raw.nameOf(i), fmt::join(elements.calls.operations, ", ")));
    }
    static const Operations NODE_ORDER = {"setNodes", "setNodeIds"};
    for (std::size_t i = 0; i < raw.geometry->nodeGroups.size(); ++i) {
        const Operations& filled = raw.geometry->nodeGroups[i].calls.operations;
        run.expect(filled.empty() || filled == NODE_ORDER,
                   fmt::format("the nodes of {} are filled by {}", raw.nameOf(i), fmt::join(filled, ", ")));
    }
}

void checkGeometryThreads(CheckRun& run)
{
    // Long enough for a second thread to meet the first one in the group, short enough for a few hundred groups.
    HostCallRecord::setStall(std::chrono::milliseconds(2));
    const RawGeometry raw(run);
    if (raw.geometry->elementGroups.empty()) {
        throw CheckSkipped{"the case has no groups"};
    }
}

void checkGeometryArrays(CheckRun& run)
{
    RawGeometry raw(run);
    (void)raw.emptyCutTables(run);
    // Extended reading makes whole triangles of any face.
    if (!raw.open->readsExtended()) {
        for (const std::string& surface : padShortSurfaces(*raw.metaData, raw.geometry.get())) {
            run.limit("decision 20",
                      surface + " has faces of fewer than three nodes, and the list of nodes ends early");
        }
    }
    try {
        checkGeometry(*raw.metaData, *raw.geometry);
    } catch (const HostError& error) {
        run.fail(error.what());
    }
}

void checkGeometryIds(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        const HostElementGroup& elements = sound.geometry->elementGroups[i];
        const HostNodeGroup& nodes = *sound.geometry->nodesOf(elements);
        const HostGroupKind kind = sound.groups[i]->kind();
        const bool fromOne = kind == HostGroupKind::Part || kind == HostGroupKind::Surface;
        run.expect(countsFrom(nodes.ids, fromOne ? 1 : 0) && nodes.ids.size() == nodes.nodeCount(),
                   fmt::format("{}: the node ids do not count from {}", sound.groups[i]->name, fromOne ? 1 : 0));
        // Compatibility (docs/compatibility.md, "face zone ids 0"): all faces of a face zone have the same id.
        const std::int32_t first = kind == HostGroupKind::Surface ? 1 : 0;
        run.expect(kind == HostGroupKind::FaceZone || countsFrom(elements.ids, first),
                   fmt::format("{}: the element ids do not count from {}", sound.groups[i]->name, first));
    }
}

void checkPartIds(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        const HostGroup& group = *sound.groups[i];
        const std::vector<std::int32_t>& partIds = sound.geometry->elementGroups[i].partIds;
        const std::set<std::int32_t> allowed = idsWithin(*sound.metaData, group);
        const bool wanted = group.kind() != HostGroupKind::Part || allowed.size() > 1;
        const bool empty = sound.geometry->elementGroups[i].elementCount() == 0;
        run.expect(empty || partIds.empty() != wanted,
                   fmt::format("{} has {} part ids", group.name, wanted ? "no" : "needless"));
        const auto other = std::ranges::find_if(partIds, [&](std::int32_t id) { return !allowed.contains(id); });
        if (other != partIds.end()) {
            run.fail(fmt::format("element {} of {}, which has the id {}, has the part id {}", other - partIds.begin(),
                                 group.name, group.id, *other));
        }
    }
}

void checkPolyhedronTables(CheckRun& run)
{
    RawGeometry raw(run);
    const ElementsByGroup cut = raw.emptyCutTables(run);
    std::size_t general = 0;
    for (std::size_t i = 0; i < raw.geometry->elementGroups.size(); ++i) {
        const HostElementGroup& elements = raw.geometry->elementGroups[i];
        const HostNodeGroup* const nodes = raw.geometry->nodesOf(elements);
        if (nodes == nullptr) {
            throw CheckSkipped{"an element group is bound to no node group"};
        }
        general += static_cast<std::size_t>(std::ranges::count(elements.types, std::int32_t{DDP_POLY}));
        if (const std::string fault = findPolyhedraFault(*nodes, elements); !fault.empty()) {
            run.fail(fmt::format("{}: {}", raw.nameOf(i), fault));
        } else if (findGroupFault(*nodes, elements).empty()) {
            checkNodesOfPolyhedra(run, raw.nameOf(i), elements, cut[i]);
        }
    }
    if (general == 0 && run.findingCount() == 0) {
        throw CheckSkipped{"there are no general elements"};
    }
}

void checkCellVolumes(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    sound.needCells();
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        if (sound.groups[i]->kind() != HostGroupKind::Part) {
            continue;
        }
        const HostElementGroup& elements = sound.geometry->elementGroups[i];
        const std::vector<double>& coordinates = sound.geometry->nodesOf(elements)->coordinates;
        std::vector<double> volumes(elements.elementCount());
        std::vector<Vector3> apexes(elements.elementCount());
        std::size_t last = elements.elementCount();
        forEachFace(elements, [&](std::size_t element, std::span<const std::int32_t> nodes) {
            if (element != last && !nodes.empty()) {
                apexes[element] = nodeAt(coordinates, nodes[0]);
                last = element;
            }
            volumes[element] += volumeUnder(coordinates, nodes, apexes[element]);
        });
        noteCutCells(run, sound.groups[i]->name, sound.cutCells[i]);
        std::vector<bool> maybeCut;
        for (std::size_t element = 0; element < volumes.size(); ++element) {
            // Not "<= 0": that would let NaN pass.
            if (volumes[element] > 0 || std::ranges::binary_search(sound.cutCells[i], element)) {
                continue;
            }
            if (maybeCut.empty()) {
                maybeCut = cellsWithCutFaces(*sound.geometry->nodesOf(elements), elements);
            }
            if (maybeCut[element]) {
                run.limit(CUT_TABLES,
                          fmt::format("{}: cell {} has the volume {}, as it has a face of more than 255 nodes",
                                      sound.groups[i]->name, element, volumes[element]));
            } else {
                run.fail(fmt::format("{}: cell {}, a {}, has the volume {}", sound.groups[i]->name, element,
                                     typeName(elements.types[element]), volumes[element]));
            }
        }
    }
}

void checkSets(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    // Compatibility (docs/compatibility.md, "zone ids per part"): numbers start at 1 in each part, and the set comes
    // from the first part that has the number.
    std::vector<std::vector<const HostGroup*>> zonesByPart;
    std::vector<const HostElementGroup*> cellsByPart;
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        if (sound.groups[i]->kind() != HostGroupKind::Part) {
            continue;
        }
        zonesByPart.emplace_back();
        cellsByPart.push_back(&sound.geometry->elementGroups[i]);
        for (const HostGroup& group : sound.metaData->groups) {
            if (group.kind() == HostGroupKind::CellZone && group.parentId == sound.groups[i]->id) {
                zonesByPart.back().push_back(&group);
            }
        }
    }
    std::size_t most = 0;
    for (const auto& zones : zonesByPart) {
        most = std::max(most, zones.size());
    }
    if (most == 0) {
        throw CheckSkipped{"the case has no cell zones"};
    }
    for (std::size_t number = 1; number <= most; ++number) {
        const auto part = static_cast<std::size_t>(
            std::ranges::find_if(zonesByPart, [&](const auto& zones) { return zones.size() >= number; }) -
            zonesByPart.begin());
        HostSet set;
        const bool found = callLibrary(
            "getSet", [&] { return sound.open->provider().getSet(static_cast<std::int32_t>(number), &set); });
        if (!found || set.items.size() != 1 || set.items[0].kind != 0 || set.items[0].partIndex != part) {
            run.fail(fmt::format("set {} is not that of part {}", number, part));
            continue;
        }
        // Where zones overlap the last one wins, so a set may hold more cells than have the id of its zone, but not
        // fewer.
        const HostElementGroup& cells = *cellsByPart[part];
        std::vector<bool> inSet(cells.elementCount());
        for (const std::int32_t id : set.items[0].ids) {
            if (id < 0 || static_cast<std::size_t>(id) >= inSet.size()) {
                run.fail(fmt::format("set {} holds cell {} of {}", number, id, inSet.size()));
                continue;
            }
            inSet[static_cast<std::size_t>(id)] = true;
        }
        for (std::size_t cell = 0; cell < cells.partIds.size(); ++cell) {
            if (cells.partIds[cell] == zonesByPart[part][number - 1]->id && !inSet[cell]) {
                run.fail(fmt::format("cell {} has the id of zone {} but is not in its set", cell, number));
            }
        }
    }
}
