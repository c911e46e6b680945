// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"
#include "bench/SyntheticMesh.h"
#include "mesh/NodeSet.h"
#include "support/HostArrays.h"
#include "support/LogCapture.h"
#include "support/ReferenceCells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <tuple>

namespace {

/// Everything that the host receives of a mesh.
struct Delivery : HostGroups
{
    bool isDelivered = false;
    std::vector<std::uint8_t> nodeCounts;
};

Delivery deliver(OFPolymesh mesh, bool (OFPolymeshToDDP::*convert)() = &OFPolymeshToDDP::createMesh)
{
    Delivery got;
    OFPolymeshToDDP converter(&mesh);
    EXPECT_TRUE((converter.*convert)());
    EXPECT_TRUE(mesh.owners().empty() && mesh.neighbors().empty() && mesh.faces().nodes.empty());
    got.nodeCounts = converter.nodesCountPerElt();
    got.isDelivered = converter.populateElementGroup(&got.elements, &got.elementCount);
    EXPECT_TRUE(converter.populateNodeGroup(&got.nodes, &got.nodeCount));
    EXPECT_EQ(converter.connectivities(), got.elements.connectivity);
    EXPECT_EQ(got.elementCount, got.elements.elementCount());
    EXPECT_FALSE(converter.populateElementGroup(&got.elements, &got.elementCount)) << "delivered arrays are gone";
    return got;
}

template <typename Counts>
std::size_t sumOf(const Counts& counts)
{
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

void expectVolumes(const Delivery& got, const std::vector<double>& expected)
{
    const std::vector<double> volumes = elementVolumes(got.nodes, got.elements);
    ASSERT_EQ(volumes.size(), expected.size());
    for (std::size_t cell = 0; cell < volumes.size(); ++cell) {
        EXPECT_NEAR(volumes[cell], expected[cell], 1e-9) << "cell " << cell;
    }
}

/// Twelve separate solids, of which every fifth lacks a face and so is a polyhedron.
OFPolymesh mixedMesh()
{
    MeshJoiner joiner;
    for (std::size_t i = 0; i < 12; ++i) {
        const ReferenceCell& cell = referenceCells()[i % 4];
        int firstLabel = -1;
        for (const ReferencePoint& point : cell.points) {
            const int label = joiner.addPoint(point[0] + static_cast<double>(3 * i), point[1], point[2]);
            firstLabel = firstLabel < 0 ? label : firstLabel;
        }
        joiner.startCell();
        for (std::size_t face = 0; face < cell.faces.size() - (i % 5 == 2 ? 1 : 0); ++face) {
            std::vector<int> nodes = cell.faces[face];
            std::ranges::for_each(nodes, [firstLabel](int& node) { node += firstLabel; });
            joiner.addFace(nodes);
        }
    }
    return joiner.join();
}

/// Random faces, owners and neighbours; some labels, counts and offsets point to nothing.
OFPolymesh damagedMesh(unsigned seed)
{
    std::mt19937 random(seed);
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    OFPolymesh mesh;
    mesh.points().resize(90);
    FacesData& faces = mesh.faces();
    for (int face = 0; face < 120; ++face) {
        const int size = below(20) == 0 ? below(300) : 3 + below(3);
        faces.nodeCounts.push_back(static_cast<std::uint8_t>(size));
        faces.nodeOffsets.push_back(static_cast<int>(faces.nodes.size()) + (below(30) == 0 ? below(4000) - 2000 : 0));
        for (int i = 0; i < size; ++i) {
            faces.nodes.push_back(below(50) == 0 ? below(80) - 40 : below(30));
        }
        mesh.owners().push_back(below(12) == 0 ? below(100) - 50 : face / 10 + below(3));
        mesh.neighbors().push_back(below(12) == 0 ? below(100) - 50 : face / 10 + below(3));
    }
    mesh.neighbors().resize(static_cast<std::size_t>(below(125)));
    mesh.owners().resize(static_cast<std::size_t>(90 + below(40)));
    faces.nodeOffsets.resize(static_cast<std::size_t>(115 + below(10)));
    mesh.setCellCount(10 + below(8));
    return mesh;
}

} // namespace

TEST(MeshConversion, DeliversHexahedraWithVolumesIdsAndPoints)
{
    const OFPolymesh mesh = hexahedronMesh(5, 4, 5);
    const Delivery got = deliver(mesh);
    EXPECT_EQ(got.nodeCount, 180U);
    EXPECT_EQ(got.nodes.coordinates, mesh.points());
    EXPECT_EQ(got.nodes.ids.front(), 1);
    EXPECT_EQ(got.nodes.ids.back(), 180);
    EXPECT_EQ(got.elements.types, std::vector<int>(100, DDP_HEXAHEDRON));
    EXPECT_EQ(got.elements.ids.front(), 0);
    EXPECT_EQ(got.elements.ids.back(), 99);
    EXPECT_EQ(got.elements.calls.operations, std::vector<std::string>{"setMixedElements"});
    expectVolumes(got, std::vector<double>(100, 1.0));
    for (std::size_t cell = 0; cell < 100; ++cell) {
        // The lowest node of a cell is its corner, which shows that the element is where its number says.
        const auto element = got.elements.connectivity.begin() + static_cast<std::ptrdiff_t>(8 * cell);
        EXPECT_EQ(*std::min_element(element, element + 8),
                  static_cast<int>(cell % 5 + cell / 5 % 4 * 6 + cell / 20 * 30));
    }
}

// The face tables must enclose each cell with outward faces, or the host shows holes.
TEST(MeshConversion, FaceTablesOfPolyhedraEncloseTheirVolume)
{
    const Delivery got = deliver(octahedronMesh(3));
    const auto [nodeCounts, faceCounts, nodesPerFace, faceNodes] = faceTables(got.elements);
    ASSERT_EQ(got.elements.types, std::vector<int>(54, DDP_POLY));
    EXPECT_EQ(nodeCounts, std::vector<int>(54, 24));
    EXPECT_EQ(faceCounts, std::vector<int>(54, 14));
    expectVolumes(got, std::vector<double>(54, 32.0));
    ASSERT_EQ(faceNodes.size(), 54U * 72U);
    for (std::size_t cell = 0; cell < 54; ++cell) {
        const std::span<const int> labels(faceNodes.data() + 72 * cell, 72);
        const std::set<int> distinct(labels.begin(), labels.end());
        const std::span<const int> element(got.elements.connectivity.data() + 24 * cell, 24);
        EXPECT_TRUE(std::ranges::equal(distinct, element)) << "cell " << cell;
    }
}

TEST(MeshConversion, AllWaysToConvertGiveTheSame)
{
    std::vector<OFPolymesh> meshes = {mixedMesh(), hexahedronMesh(1, 1, 1), octahedronMesh(5),
                                      // More cells than one block holds.
                                      hexahedronMesh(260, 260, 1)};
    for (unsigned seed = 0; seed < 60; ++seed) {
        meshes.push_back(damagedMesh(seed));
    }
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        SCOPED_TRACE(i);
        const Delivery direct = deliver(meshes[i]);
        const Delivery inChunks = deliver(meshes[i], &OFPolymeshToDDP::createMeshInChunks);
        EXPECT_TRUE(direct.isDelivered);
        EXPECT_EQ(direct.elements.types, inChunks.elements.types);
        EXPECT_EQ(direct.elements.connectivity, inChunks.elements.connectivity);
        EXPECT_EQ(direct.elements.ids, inChunks.elements.ids);
        EXPECT_EQ(faceTables(direct.elements), faceTables(inChunks.elements));
        EXPECT_EQ(direct.nodeCounts, inChunks.nodeCounts);
        EXPECT_EQ(faceTables(direct.elements)[2].size(), sumOf(faceTables(direct.elements)[1]));
        EXPECT_EQ(direct.elements.connectivity.size(), sumOf(direct.nodeCounts));
    }
}

// The hash is predictable, so a file could choose labels that collide. They must neither get lost nor take long.
TEST(MeshConversion, KeepsLabelsWithEqualHashesApart)
{
    std::vector<int> alike;
    for (std::uint32_t label = 0; alike.size() < 3000; ++label) {
        if ((label * 0x9E3779B1U) >> 20U == 0) {
            alike.push_back(static_cast<int>(label));
        }
    }
    NodeSet nodes;
    nodes.restart(2 * alike.size());
    for (std::size_t i = 0; i < 2 * alike.size(); ++i) {
        nodes.insert(alike[i * 7 % alike.size()]);
    }
    EXPECT_TRUE(std::ranges::equal(nodes.sorted(), alike));
}

// Faces are assigned to a range of cells at a time.
TEST(MeshConversion, CellsGetTheFacesThatNameThem)
{
    using CellFaces = std::multiset<std::tuple<int, int, bool>>;
    OFPolymesh mesh = hexahedronMesh(3, 2, 1);
    CellFaces expected;
    for (std::size_t face = 0; face < mesh.owners().size(); ++face) {
        expected.emplace(mesh.owners()[face], static_cast<int>(face), true);
        if (face < mesh.neighbors().size()) {
            expected.emplace(mesh.neighbors()[face], static_cast<int>(face), false);
        }
    }
    std::erase_if(expected, [](const auto& entry) { return std::get<0>(entry) < 2 || std::get<0>(entry) > 4; });
    for (const auto assign : {&OFPolymeshToDDP::assignCellFacesSeq, &OFPolymeshToDDP::assignCellFacesPar,
                              &OFPolymeshToDDP::assignCellFaces}) {
        OFPolymeshToDDP converter(&mesh);
        EXPECT_TRUE(converter.allocateCells(3) && (converter.*assign)(2, 5));
        CellFaces faces;
        for (std::size_t cell = 0; cell < 3; ++cell) {
            for (const auto& face : converter.cells()[cell].cellFaces()) {
                faces.emplace(static_cast<int>(cell) + 2, face.faceIndex, face.isOwner);
            }
        }
        EXPECT_EQ(faces, expected);
    }
}

// Compatibility (docs/compatibility.md, "byte tables"): a polyhedron whose counts do not fit a byte must not shift
// those after it.
TEST(MeshConversion, CountsTooLargeForAByteWrapWithoutShiftingOthers)
{
    MeshJoiner joiner;
    joiner.startCell();
    const auto addFan = [&joiner](int triangles) {
        const int first = joiner.addPoint(0, 0, 0);
        for (int i = 0; i <= triangles; ++i) {
            joiner.addPoint(1, i, 0);
        }
        for (int i = 1; i <= triangles; ++i) {
            joiner.addFace({first, first + i, first + i + 1});
        }
    };
    addFan(2);
    joiner.startCell();
    addFan(258); // 774 labels of 260 nodes: 6 and 4 in a byte, and 2 faces
    joiner.startCell();
    addFan(1);
    joiner.startCell();
    addFan(256); // 768 labels of 258 nodes: 0 and 2 in a byte, and no face
    const OFPolymesh mesh = joiner.join();
    const Delivery delivery = deliver(mesh);
    EXPECT_EQ(delivery.nodeCounts, (std::vector<std::uint8_t>{4, 4, 3, 2}));
    EXPECT_EQ(delivery.elements.connectivity, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 264, 265, 266, 267, 268}));
    EXPECT_EQ(faceTables(delivery.elements),
              (FaceTables{
                  {{4, 4, 3, 2}, {2, 2, 1, 0}, {3, 3, 3, 3, 3}, {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7, 264, 265, 266}}}));
    EXPECT_EQ(faceTables(deliver(mesh, &OFPolymeshToDDP::createMeshInChunks).elements), faceTables(delivery.elements));
}

TEST(DamagedMesh, DropsLabelsWithoutAPoint)
{
    OFPolymesh mesh = hexahedronMesh(2, 1, 1);
    // Face 0 is between the two cells; the next one belongs only to the first cell.
    mesh.faces().nodes[1] = 12;
    mesh.faces().nodes[4] = -1;
    mesh.faces().nodeOffsets[2] = 43;
    const Delivery delivery = deliver(mesh);
    EXPECT_EQ(delivery.elements.types, (std::vector<int>{DDP_POLY, DDP_POLY}));
    EXPECT_EQ(faceTables(delivery.elements)[1], (std::vector<int>{6, 6}));
    EXPECT_EQ(faceTables(delivery.elements)[2], (std::vector<int>{3, 3, 0, 4, 4, 4, 3, 4, 4, 4, 4, 4}));
    EXPECT_EQ(faceTables(delivery.elements)[3].size(), 41U);
}

TEST(DamagedMesh, SkipsOwnersAndNeighboursThatNameNoCell)
{
    OFPolymesh mesh = hexahedronMesh(3, 1, 1);
    const Delivery sound = deliver(mesh);
    const std::vector<int> owners = mesh.owners();
    mesh.owners().insert(mesh.owners().end(), {1, 2, 1}); // beyond the faces
    EXPECT_EQ(deliver(mesh).elements.connectivity, sound.elements.connectivity);
    mesh.owners() = owners;
    mesh.neighbors().resize(40, 0); // beyond the owners
    EXPECT_EQ(deliver(mesh).elements.types.size(), 3U);
    mesh = hexahedronMesh(3, 1, 1);
    mesh.neighbors()[1] = 3;
    mesh.owners()[2] = -7;
    const Delivery delivery = deliver(mesh);
    EXPECT_EQ(delivery.elements.types, (std::vector<int>{DDP_POLY, DDP_HEXAHEDRON, DDP_POLY}));
    EXPECT_EQ(faceTables(delivery.elements)[1], (std::vector<int>{5, 5}));
}

TEST(DamagedMesh, LimitsCellCountToWhatFacesCanForm)
{
    const LogCapture log;
    OFPolymesh mesh = hexahedronMesh(2, 1, 1);
    mesh.setCellCount(2000000000);
    EXPECT_EQ(deliver(mesh).elements.types.size(), 12U); // 11 owners and 1 neighbour
    EXPECT_EQ(log.infos(),
              std::vector<std::string>{"OFPolymeshToDDP : The mesh claims 2000000000 cells, but its faces can form no "
                                       "more than 12. The count is cut."});
    mesh.setCellCount(-3);
    const Delivery delivery = deliver(mesh);
    EXPECT_FALSE(delivery.isDelivered);
    EXPECT_TRUE(delivery.elements.calls.operations.empty());
    EXPECT_EQ(log.infos().size(), 1U);
    // Without points the cells have no nodes but keep their number.
    mesh = hexahedronMesh(2, 1, 1);
    mesh.points().clear();
    EXPECT_EQ(deliver(mesh).elements.types, (std::vector<int>{DDP_POLY, DDP_POLY}));
}

// Owners may be in a form that is not read. Fields still have a value for the cell.
TEST(DamagedMesh, KeepsTheOnlyCellIfItsOwnersAreMissing)
{
    const LogCapture log;
    OFPolymesh mesh = hexahedronMesh(1, 1, 1);
    mesh.owners().clear();
    EXPECT_EQ(deliver(mesh).elements.types, std::vector<int>{DDP_POLY});
    EXPECT_TRUE(log.infos().empty());
    mesh.setCellCount(7);
    EXPECT_EQ(deliver(mesh).elements.types.size(), 6U) << "no more cells than faces";
}
