// SPDX-License-Identifier: MIT
//
// Targets without files: cells and meshes of random faces.
#include "border/DeliveryCheck.h"
#include "fuzz/FuzzHarness.h"
#include "mesh/OFPolymeshToDDP.h"
#include "support/ReferenceCells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>

namespace {

/// A label, which may be a bad one.
int labelFrom(std::uint8_t byte)
{
    return byte == 255 ? -1 : byte == 254 ? std::numeric_limits<int>::max() : byte;
}

void addFace(const std::vector<int>& nodes, FacesData* faces)
{
    faces->nodeCounts.push_back(static_cast<std::uint8_t>(nodes.size()));
    faces->nodeOffsets.push_back(static_cast<int>(faces->nodes.size()));
    faces->nodes.insert(faces->nodes.end(), nodes.begin(), nodes.end());
}

/// One cell: a reference cell with its faces in any order, rotated and seen from either side, and some labels changed
/// at random; or random faces.
void runCells(FuzzInput input)
{
    const std::size_t shape = input.byte() % 5U;
    const int scale = input.below(2) == 0 ? 1 : 8000000;
    std::vector<std::vector<int>> faces;
    if (shape < referenceCells().size()) {
        faces = referenceCells()[shape].faces;
    } else {
        faces.resize(static_cast<std::size_t>(input.below(24)));
        for (std::vector<int>& face : faces) {
            face.resize(static_cast<std::size_t>(input.below(7)));
            std::generate(face.begin(), face.end(), [&input] { return input.below(12); });
        }
    }
    OFCell cell;
    FacesData data;
    while (!faces.empty()) {
        const auto next = faces.begin() + input.byte() % static_cast<int>(faces.size());
        const bool isOwner = input.below(2) == 0;
        if (!next->empty()) {
            std::rotate(next->begin(), next->begin() + input.byte() % static_cast<int>(next->size()), next->end());
        }
        if (!isOwner) {
            std::reverse(next->begin(), next->end());
        }
        cell.cellFaces().push_back({static_cast<int>(data.faceCount()), isOwner});
        addFace(*next, &data);
        faces.erase(next);
    }
    const bool isWhole = shape < referenceCells().size() && input.isEmpty();
    while (!input.isEmpty() && !data.nodes.empty()) {
        data.nodes[input.byte() % data.nodes.size()] = input.below(12);
    }
    std::transform(data.nodes.begin(), data.nodes.end(), data.nodes.begin(),
                   [scale](int node) { return node * scale; });
    DDPElementType type = DDP_POLY;
    PolyDataVector polys;
    const bool isOrdered = cell.buildElementData(0, &type, &polys, &data);
    std::vector<int> nodes = cell.elementNodes();
    if (isWhole) {
        const ReferenceCell& reference = referenceCells()[shape];
        std::transform(nodes.begin(), nodes.end(), nodes.begin(), [scale](int node) { return node / scale; });
        expect(type == reference.type && isOrdered, "a solid is not recognised");
        expect(std::abs(signedVolume(type, reference.points, nodes) - volumeInside(reference.points, reference.faces)) <
                   1e-9,
               "a solid comes out twisted");
        return;
    }
    const std::set<int> distinct(data.nodes.begin(), data.nodes.end());
    expect((type == DDP_POLY) == (polys.size() == 1), "face tables of a solid");
    // Faces that name a node twice can pass for those of a solid if the counts match, but no other node may appear.
    expect(nodes.size() == distinct.size() &&
               std::ranges::includes(distinct, std::set<int>(nodes.begin(), nodes.end())),
           "an element has other nodes than its faces");
    expect(type != DDP_POLY || polys.front().faceNodes.size() == data.nodes.size(), "a polyhedron has other faces");
}

void addGroup(const HostNodeGroup& nodes, const HostElementGroup& elements, bool isChecked, Outcome* outcome)
{
    const std::string fault = findGroupFault(nodes, elements);
    expect(!isChecked || fault.empty(), fault);
    const HostPolyhedra& tables = elements.polyhedra;
    outcome->add(nodes.coordinates, nodes.ids, elements.types, elements.connectivity, elements.ids,
                 tables.nodesPerPolyhedron, tables.facesPerPolyhedron, tables.nodesPerFace, tables.faceConnectivity);
}

struct RandomMesh
{
    OFPolymesh mesh;
    OFBoundary patch;
    OFFaceZone zone;
    /// False if a cell may have more face nodes than a byte can count: its tables are then cut.
    bool fitsBytes = true;
};

RandomMesh meshFrom(FuzzInput input)
{
    RandomMesh random;
    OFPolymesh& mesh = random.mesh;
    mesh.points().resize(3 * std::size_t{input.byte()} + static_cast<std::size_t>(input.below(2)));
    mesh.setCellCount(labelFrom(input.byte()));
    const std::size_t neighbours = input.byte();
    const std::size_t missingOwners = input.byte() == 255 ? 3 : 0;
    random.patch.setStartFaceIndex(labelFrom(input.byte()));
    random.patch.setFaceCount(static_cast<std::size_t>(std::max(labelFrom(input.byte()), 0)));
    for (int i = input.below(6); i > 0; --i) {
        random.zone.faceIds().push_back(labelFrom(input.byte()));
    }
    while (!input.isEmpty() && mesh.owners().size() < 120) {
        const std::uint8_t size = input.byte();
        mesh.owners().push_back(labelFrom(input.byte()));
        if (mesh.neighbors().size() < neighbours) {
            mesh.neighbors().push_back(labelFrom(input.byte()));
        }
        std::vector<int> nodes(size == 255 ? 300 : size % 12);
        std::generate(nodes.begin(), nodes.end(), [&input] { return labelFrom(input.byte()); });
        addFace(nodes, &mesh.faces());
    }
    random.fitsBytes = 2 * mesh.faces().nodes.size() < 256;
    mesh.owners().resize(mesh.owners().size() - std::min(mesh.owners().size(), missingOwners));
    return random;
}

void convert(RandomMesh random, bool (OFPolymeshToDDP::*createMesh)(), Outcome* outcome)
{
    const std::vector<double> points = random.mesh.points();
    OFPolymeshToDDP converter(&random.mesh);
    std::array<HostNodeGroup, 3> nodes = {HostNodeGroup(0), HostNodeGroup(1), HostNodeGroup(2)};
    std::array<HostElementGroup, 3> elements = {HostElementGroup(0), HostElementGroup(1), HostElementGroup(2)};
    std::array<std::size_t, 6> counts = {};
    converter.populateBoundaryGroup(random.patch, &nodes[1], &counts[0], &elements[1], &counts[1]);
    converter.populateFaceZoneGroup(random.zone, &nodes[2], &counts[2], &elements[2], &counts[3]);
    (converter.*createMesh)();
    converter.populateElementGroup(&elements[0], &counts[4]);
    converter.populateNodeGroup(&nodes[0], &counts[5]);
    outcome->add(counts, random.patch.faceToCellMapping(), random.patch.faceNodeToNodeMapping(),
                 random.patch.faceConnectivity(), random.patch.nodeCountPerFace(), converter.connectivities());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        addGroup(nodes[i], elements[i], random.fitsBytes, outcome);
    }
}

void runMeshes(FuzzInput input)
{
    const RandomMesh random = meshFrom(input);
    const auto convertWith = [&random](int threads, bool (OFPolymeshToDDP::*createMesh)()) {
        return observe(threads, [&](Outcome* outcome) { convert(random, createMesh, outcome); });
    };
    const Outcome direct = convertWith(1, &OFPolymeshToDDP::createMesh);
    expectEqual(direct, convertWith(8, &OFPolymeshToDDP::createMesh), "a mesh depends on the number of threads");
    expectEqual(direct, convertWith(1, &OFPolymeshToDDP::createMeshInChunks), "a mesh depends on how it is converted");
}

} // namespace

std::vector<FuzzTarget> valueTargets()
{
    return {{"cells", runCells}, {"meshes", runMeshes}};
}
