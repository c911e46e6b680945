// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"
#include "bench/SyntheticMesh.h"
#include "support/LogCapture.h"
#include "support/RecordingGroups.h"
#include "support/ReferenceCells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>

namespace {

/// All that the host gets of the cells of a mesh.
struct Delivery
{
    bool isDelivered = false;
    RecordingElementGroup elements;
    std::vector<std::uint8_t> nodeCounts;
};

enum class Road
{
    DIRECT,
    IN_CHUNKS
};

Delivery deliver(OFPolymesh mesh, Road road = Road::DIRECT)
{
    Delivery delivery;
    OFPolymeshToDDP converter(&mesh);
    EXPECT_TRUE(road == Road::DIRECT ? converter.createMesh() : converter.createMeshInChunks());
    EXPECT_TRUE(mesh.owners().empty() && mesh.neighbors().empty() && mesh.faces().nodes.empty());
    delivery.nodeCounts = converter.nodesCountPerElt();
    std::size_t count = 0;
    delivery.isDelivered = converter.populateElementGroup(&delivery.elements, &count);
    EXPECT_EQ(count, delivery.elements.types.size());
    return delivery;
}

std::size_t sumOf(const std::vector<int>& values)
{
    return std::accumulate(values.begin(), values.end(), std::size_t{0},
                           [](std::size_t sum, int value) { return sum + static_cast<std::size_t>(value); });
}

std::vector<std::array<double, 3>> pointsOf(const OFPolymesh& mesh)
{
    std::vector<std::array<double, 3>> points(mesh.nodeCount());
    for (std::size_t i = 0; i < points.size(); ++i) {
        std::copy_n(mesh.points().begin() + static_cast<std::ptrdiff_t>(3 * i), 3, points[i].begin());
    }
    return points;
}

void addCell(const ReferenceCell& cell, double shift, MeshJoiner* joiner)
{
    std::vector<int> labels;
    for (const std::array<double, 3>& point : cell.points) {
        labels.push_back(joiner->addPoint(point[0] + shift, point[1], point[2]));
    }
    joiner->startCell();
    for (std::vector<int> face : cell.faces) {
        for (int& node : face) {
            node = labels[static_cast<std::size_t>(node)];
        }
        joiner->addFace(face);
    }
}

/// One cell of each solid, each alone, and the faces of a polyhedron between them.
OFPolymesh mixedMesh()
{
    MeshJoiner joiner;
    for (std::size_t i = 0; i < 12; ++i) {
        ReferenceCell cell = referenceCells()[i % 4];
        if (i % 5 == 2) {
            cell.faces.pop_back();
        }
        addCell(cell, static_cast<double>(3 * i), &joiner);
    }
    return joiner.join();
}

/// Faces, owners and neighbours at random, with labels, counts and offsets that point to nothing among them.
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

TEST(MeshConversion, HexahedraComeWithTheirVolumesIdsAndPoints)
{
    const LogCapture log;
    OFPolymesh mesh = hexahedronMesh(5, 4, 5);
    const OFPolymesh original = mesh;
    OFPolymeshToDDP converter(&mesh);
    ASSERT_TRUE(converter.createMesh());
    RecordingNodeGroup nodes;
    RecordingElementGroup elements;
    std::size_t nodeCount = 0;
    std::size_t elementCount = 0;
    EXPECT_TRUE(converter.populateElementGroup(&elements, &elementCount));
    EXPECT_TRUE(converter.populateNodeGroup(&nodes, &nodeCount));
    EXPECT_EQ(nodeCount, 180U);
    EXPECT_EQ(nodes.coordinates, original.points());
    EXPECT_EQ(nodes.ids.front(), 1);
    EXPECT_EQ(nodes.ids.back(), 180);
    EXPECT_EQ(elementCount, 100U);
    EXPECT_EQ(elements.types, std::vector<int>(100, DDP_HEXAHEDRON));
    EXPECT_EQ(elements.ids.front(), 0);
    EXPECT_EQ(elements.ids.back(), 99);
    EXPECT_EQ(elements.polyhedraCalls, 0);
    EXPECT_EQ(converter.connectivities(), elements.connectivity);
    ASSERT_EQ(elements.connectivity.size(), 800U);
    const std::vector<std::array<double, 3>> points = pointsOf(mesh);
    for (std::size_t cell = 0; cell < 100; ++cell) {
        const std::span<const int> element(elements.connectivity.data() + 8 * cell, 8);
        EXPECT_NEAR(signedVolume(DDP_HEXAHEDRON, points, element), 1.0, 1e-12);
        // The cell's own corner is its least node, so the element stands where its number says.
        EXPECT_EQ(*std::min_element(element.begin(), element.end()),
                  static_cast<int>(cell % 5 + cell / 5 % 4 * 6 + cell / 20 * 30));
    }
    EXPECT_FALSE(converter.populateElementGroup(&elements, &elementCount)) << "what was delivered is gone";
    const std::vector<std::string> lines = log.texts(4);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].rfind("OFPolymeshToDDP : -----------------------buildCells().   Time [convert].a : ", 0), 0U);
    EXPECT_EQ(lines[1].rfind("OFPolymeshToDDP : -----------------------buildDDPMesh(). Time [convert].b : ", 0), 0U);
}

// The face tables must close around each cell, faces outwards, or the host shows holes.
TEST(MeshConversion, FaceTablesOfPolyhedraEncloseTheirVolume)
{
    const OFPolymesh mesh = octahedronMesh(3);
    const Delivery delivery = deliver(mesh);
    const RecordedPolyhedra& polyhedra = delivery.elements.polyhedra;
    ASSERT_EQ(delivery.elements.types, std::vector<int>(54, DDP_POLY));
    EXPECT_EQ(polyhedra.nodeCounts, std::vector<int>(54, 24));
    EXPECT_EQ(polyhedra.faceCounts, std::vector<int>(54, 14));
    ASSERT_EQ(polyhedra.nodesPerFace.size(), 54U * 14U);
    ASSERT_EQ(polyhedra.faceNodes.size(), sumOf(polyhedra.nodesPerFace));
    auto faceNode = polyhedra.faceNodes.begin();
    for (std::size_t cell = 0; cell < 54; ++cell) {
        const auto first = faceNode;
        std::vector<std::vector<int>> faces;
        for (std::size_t i = 0; i < 14; ++i) {
            const int size = polyhedra.nodesPerFace[14 * cell + i];
            faces.emplace_back(faceNode, faceNode + size);
            faceNode += size;
        }
        EXPECT_NEAR(volumeInside(pointsOf(mesh), faces), 32.0, 1e-9) << "cell " << cell;
        std::vector<int> distinct(first, faceNode);
        std::sort(distinct.begin(), distinct.end());
        distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
        const auto element = delivery.elements.connectivity.begin() + static_cast<std::ptrdiff_t>(24 * cell);
        EXPECT_EQ(distinct, std::vector<int>(element, element + 24));
    }
}

TEST(MeshConversion, EveryRoadGivesTheSame)
{
    std::vector<OFPolymesh> meshes = {mixedMesh(), hexahedronMesh(1, 1, 1), octahedronMesh(5),
                                      // More cells than are built in one go.
                                      hexahedronMesh(260, 260, 1)};
    for (unsigned seed = 0; seed < 60; ++seed) {
        meshes.push_back(damagedMesh(seed));
    }
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        SCOPED_TRACE(i);
        const Delivery direct = deliver(meshes[i]);
        const Delivery inChunks = deliver(meshes[i], Road::IN_CHUNKS);
        EXPECT_TRUE(direct.isDelivered);
        EXPECT_EQ(direct.elements.types, inChunks.elements.types);
        EXPECT_EQ(direct.elements.connectivity, inChunks.elements.connectivity);
        EXPECT_EQ(direct.elements.ids, inChunks.elements.ids);
        EXPECT_EQ(direct.elements.polyhedra, inChunks.elements.polyhedra);
        EXPECT_EQ(direct.nodeCounts, inChunks.nodeCounts);
        const RecordedPolyhedra& polyhedra = direct.elements.polyhedra;
        EXPECT_EQ(polyhedra.nodesPerFace.size(), sumOf(polyhedra.faceCounts));
        EXPECT_EQ(direct.elements.connectivity.size(),
                  std::accumulate(direct.nodeCounts.begin(), direct.nodeCounts.end(), std::size_t{0}));
    }
}

TEST(MeshConversion, AllWaysToFileFacesFindTheSameFaces)
{
    OFPolymesh mesh = octahedronMesh(6);
    OFPolymeshToDDP converter(&mesh);
    const auto filed = [&converter](bool (OFPolymeshToDDP::*assign)(int, int)) {
        std::vector<std::vector<int>> faces;
        EXPECT_TRUE(converter.allocateCells(0) && converter.allocateCells(200));
        EXPECT_TRUE((converter.*assign)(100, 300));
        for (const OFCell& cell : converter.cells()) {
            std::vector<int>& entries = faces.emplace_back();
            for (const CellFace& face : cell.cellFaces()) {
                entries.push_back(2 * face.faceIndex + (face.isOwner ? 0 : 1));
            }
            std::sort(entries.begin(), entries.end());
        }
        return faces;
    };
    const std::vector<std::vector<int>> expected = filed(&OFPolymeshToDDP::assignCellFacesSeq);
    for (const std::vector<int>& faces : expected) {
        EXPECT_EQ(faces.size(), 14U);
    }
    EXPECT_EQ(filed(&OFPolymeshToDDP::assignCellFacesPar), expected);
    EXPECT_EQ(filed(&OFPolymeshToDDP::assignCellFaces), expected);
}

TEST(MeshConversion, MixedCellsKeepTheirOrderAndShape)
{
    const OFPolymesh mesh = mixedMesh();
    const std::vector<std::array<double, 3>> points = pointsOf(mesh);
    const Delivery delivery = deliver(mesh);
    const std::vector<int>& types = delivery.elements.types;
    EXPECT_EQ(types, (std::vector<int>{8, 15, 17, 10, 8, 15, 12, 17, 8, 15, 12, 10}));
    EXPECT_EQ(delivery.elements.polyhedra.nodeCounts, (std::vector<int>{6, 8}));
    EXPECT_EQ(delivery.elements.polyhedra.faceCounts, (std::vector<int>{4, 5}));
    auto node = delivery.elements.connectivity.begin();
    for (std::size_t cell = 0; cell < types.size(); ++cell) {
        const ReferenceCell& reference = referenceCells()[cell % 4];
        const std::vector<int> nodes(node, node + delivery.nodeCounts[cell]);
        node += delivery.nodeCounts[cell];
        ASSERT_EQ(nodes.size(), reference.points.size());
        if (types[cell] != DDP_POLY) {
            EXPECT_NEAR(signedVolume(reference.type, points, nodes), volumeInside(reference.points, reference.faces),
                        1e-9)
                << "cell " << cell;
        }
    }
}

TEST(MeshConversion, ChunksAreEightAndTheLastTakesTheRest)
{
    OFPolymesh mesh;
    const OFPolymeshToDDP converter(&mesh);
    EXPECT_EQ(converter.createCellsChunks(100), (std::vector<std::size_t>{12, 12, 12, 12, 12, 12, 12, 16}));
    EXPECT_EQ(converter.createCellsChunks(5), (std::vector<std::size_t>{0, 0, 0, 0, 0, 0, 0, 5}));
}

// Counts reach the host as bytes. A polyhedron whose counts do not fit must not shift those behind it.
TEST(MeshConversion, CountsBeyondAByteWrapAndEveryPolyhedronKeepsItsPlace)
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
    EXPECT_EQ(delivery.elements.polyhedra,
              (RecordedPolyhedra{
                  {4, 4, 3, 2}, {2, 2, 1, 0}, {3, 3, 3, 3, 3}, {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7, 264, 265, 266}}));
    EXPECT_EQ(deliver(mesh, Road::IN_CHUNKS).elements.polyhedra, delivery.elements.polyhedra);
}

TEST(DamagedMesh, LabelsWithoutAPointLeaveTheirFace)
{
    OFPolymesh mesh = hexahedronMesh(2, 1, 1);
    // Face 0 is the one between the two cells, the next belongs to the first cell alone.
    mesh.faces().nodes[1] = 12;
    mesh.faces().nodes[4] = -1;
    mesh.faces().nodeOffsets[2] = 43;
    const Delivery delivery = deliver(mesh);
    EXPECT_EQ(delivery.elements.types, (std::vector<int>{DDP_POLY, DDP_POLY}));
    EXPECT_EQ(delivery.elements.polyhedra.faceCounts, (std::vector<int>{6, 6}));
    EXPECT_EQ(delivery.elements.polyhedra.nodesPerFace, (std::vector<int>{3, 3, 0, 4, 4, 4, 3, 4, 4, 4, 4, 4}));
    EXPECT_EQ(delivery.elements.polyhedra.faceNodes.size(), 41U);
}

TEST(DamagedMesh, OwnersAndNeighboursThatNameNoCellAreSkipped)
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
    EXPECT_EQ(delivery.elements.polyhedra.faceCounts, (std::vector<int>{5, 5}));
}

TEST(DamagedMesh, CellCountStaysWithinWhatFacesCanForm)
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
    EXPECT_EQ(delivery.elements.elementCalls, 0);
    EXPECT_EQ(log.infos().size(), 1U);
    // Points that could not be read: cells without nodes, but as many as there are.
    mesh = hexahedronMesh(2, 1, 1);
    mesh.points().clear();
    EXPECT_EQ(deliver(mesh).elements.types, (std::vector<int>{DDP_POLY, DDP_POLY}));
}

TEST(MeshArrays, PartialSumGoesOnFromItsStart)
{
    const std::vector<unsigned char> values = {3, 0, 255, 1};
    std::vector<int> starts(4);
    EXPECT_EQ(dvn_exclusive_partial_sum(values.data(), 4, 10, starts.data()), 269U);
    EXPECT_EQ(starts, (std::vector<int>{10, 13, 13, 268}));
    EXPECT_EQ(dvn_exclusive_partial_sum(values.data(), 0, 10, nullptr), 10U);
}
