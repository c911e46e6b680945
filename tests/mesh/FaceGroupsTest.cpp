// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"
#include "support/RecordingGroups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>

namespace {

/// A mesh of faces alone; point i lies at (i, 2i, -i), and face i has the owner 10 + i.
OFPolymesh meshOfFaces(const std::vector<std::vector<int>>& faces, std::size_t pointCount)
{
    OFPolymesh mesh;
    for (std::size_t i = 0; i < pointCount; ++i) {
        const auto x = static_cast<double>(i);
        mesh.points().insert(mesh.points().end(), {x, 2 * x, -x});
    }
    for (const std::vector<int>& nodes : faces) {
        mesh.owners().push_back(10 + static_cast<int>(mesh.faces().faceCount()));
        mesh.faces().nodeCounts.push_back(static_cast<std::uint8_t>(nodes.size()));
        mesh.faces().nodeOffsets.push_back(static_cast<int>(mesh.faces().nodes.size()));
        mesh.faces().nodes.insert(mesh.faces().nodes.end(), nodes.begin(), nodes.end());
    }
    return mesh;
}

OFBoundary patch(int start, std::size_t count)
{
    OFBoundary boundary;
    boundary.setStartFaceIndex(start);
    boundary.setFaceCount(count);
    return boundary;
}

struct Surface
{
    RecordingNodeGroup nodes;
    RecordingElementGroup elements;
    std::size_t nodeCount = 99;
    std::size_t elementCount = 99;
};

Surface deliver(OFPolymesh mesh, OFBoundary* boundary)
{
    Surface surface;
    const OFPolymeshToDDP converter(&mesh);
    EXPECT_TRUE(converter.populateBoundaryGroup(*boundary, &surface.nodes, &surface.nodeCount, &surface.elements,
                                                &surface.elementCount));
    return surface;
}

Surface deliver(OFPolymesh mesh, OFFaceZone* zone)
{
    Surface surface;
    const OFPolymeshToDDP converter(&mesh);
    EXPECT_TRUE(converter.populateFaceZoneGroup(*zone, &surface.nodes, &surface.nodeCount, &surface.elements,
                                                &surface.elementCount));
    return surface;
}

} // namespace

TEST(BoundaryGroup, FacesOfAPatchGetNodesOfTheirOwn)
{
    const OFPolymesh mesh =
        meshOfFaces({{0, 1, 2}, {7, 3, 9, 12}, {12, 9, 4}, {3, 7, 12, 5, 6}, {4, 9}, {0, 1, 2}}, 13);
    OFBoundary boundary = patch(1, 4);
    const Surface surface = deliver(mesh, &boundary);
    EXPECT_EQ(surface.nodeCount, 7U);
    EXPECT_EQ(surface.elementCount, 4U);
    EXPECT_EQ(surface.nodes.coordinates,
              (std::vector<double>{3, 6, -3, 4, 8, -4, 5, 10, -5, 6, 12, -6, 7, 14, -7, 9, 18, -9, 12, 24, -12}));
    EXPECT_EQ(surface.nodes.ids, (std::vector<int>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(surface.elements.types, (std::vector<int>{DDP_QUADRILATERAL, DDP_TRIANGLE, DDP_POLY, DDP_POLY}));
    EXPECT_EQ(surface.elements.connectivity, (std::vector<int>{4, 0, 5, 6, 6, 5, 1, 0, 4, 6, 2, 3, 1, 5}));
    EXPECT_EQ(surface.elements.ids, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(surface.elements.polyhedra, (RecordedPolyhedra{{5, 2}, {1, 1}, {5, 2}, {0, 4, 6, 2, 3, 1, 5}}));
    EXPECT_EQ(boundary.faceConnectivity(), (std::vector<int>{7, 3, 9, 12, 12, 9, 4, 3, 7, 12, 5, 6, 4, 9}));
    EXPECT_EQ(boundary.nodeCountPerFace(), (std::vector<std::uint8_t>{4, 3, 5, 2}));
    EXPECT_EQ(boundary.faceNodeToNodeMapping(), (std::vector<int>{3, 4, 5, 6, 7, 9, 12}));
    EXPECT_EQ(boundary.faceToCellMapping(), (std::vector<int>{11, 12, 13, 14}));
}

TEST(BoundaryGroup, APatchWithoutFacesStillMakesEveryCall)
{
    OFBoundary boundary = patch(1, 0);
    const Surface surface = deliver(meshOfFaces({{0, 1, 2}}, 3), &boundary);
    EXPECT_EQ(surface.nodeCount + surface.elementCount, 0U);
    EXPECT_EQ(surface.nodes.calls, 2);
    EXPECT_EQ(surface.elements.elementCalls, 1);
    EXPECT_EQ(surface.elements.polyhedraCalls, 1);
}

TEST(BoundaryGroup, APatchBeyondTheMeshIsDeliveredAsFarAsThereAreFaces)
{
    const OFPolymesh mesh = meshOfFaces({{0, 1, 2}, {1, 2, 3}, {2, 3, 4}}, 5);
    struct Case
    {
        int start;
        std::size_t count;
        std::vector<int> cells;
    };
    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    for (const Case& patchCase : {Case{1, 9, {11, 12}},
                                  {-2, 3, {10}},
                                  {-2, huge, {10, 11, 12}},
                                  {3, 4, {}},
                                  {2147483647, huge, {}},
                                  {-9, 4, {}},
                                  {0, 3, {10, 11, 12}}}) {
        OFBoundary boundary = patch(patchCase.start, patchCase.count);
        const Surface surface = deliver(mesh, &boundary);
        EXPECT_EQ(boundary.faceToCellMapping(), patchCase.cells) << patchCase.start << " " << patchCase.count;
        EXPECT_EQ(boundary.faceCount(), patchCase.count) << "what the file claims stays: the mesh may be read again";
        EXPECT_EQ(boundary.nodeCountPerFace().size(), patchCase.cells.size());
        EXPECT_EQ(surface.elementCount, patchCase.cells.size());
        EXPECT_EQ(surface.elements.types.size(), patchCase.cells.size());
    }
    OFPolymesh shortOwners = mesh;
    shortOwners.owners().resize(2);
    OFBoundary boundary = patch(1, 2);
    EXPECT_EQ(deliver(shortOwners, &boundary).elementCount, 2U);
    EXPECT_EQ(boundary.faceToCellMapping(), (std::vector<int>{11, -1}));
}

TEST(FaceZoneGroup, FacesComeInTheOrderOfTheZoneAllWithIdZero)
{
    const OFPolymesh mesh = meshOfFaces({{0, 1, 2, 3}, {4, 5, 6, 7}, {2, 3, 8}, {0, 8, 2}}, 9);
    OFFaceZone zone;
    zone.faceIds() = {3, -1, 0, 4, 2147483647, 2};
    const Surface surface = deliver(mesh, &zone);
    EXPECT_EQ(zone.faceCount(), 6U);
    EXPECT_EQ(surface.elementCount, 3U);
    EXPECT_EQ(surface.nodeCount, 5U);
    EXPECT_EQ(surface.elements.types, (std::vector<int>{DDP_TRIANGLE, DDP_QUADRILATERAL, DDP_TRIANGLE}));
    EXPECT_EQ(surface.elements.connectivity, (std::vector<int>{0, 4, 2, 0, 1, 2, 3, 2, 3, 4}));
    EXPECT_EQ(surface.elements.ids, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(surface.elements.polyhedraCalls, 1);
}

// Nodes close together and far apart are numbered in different ways, which the host must not see.
TEST(FaceGroups, NumberingIsAscendingForAnySpreadOfLabels)
{
    std::mt19937 random(3);
    for (const unsigned spread : {1U, 63U, 64U, 65U, 400U, 100000U}) {
        std::vector<std::vector<int>> faces;
        std::set<int> distinct;
        for (int face = 0; face < 100; ++face) {
            std::vector<int> nodes;
            for (int i = 0; i < 3; ++i) {
                nodes.push_back(50 + static_cast<int>(random() % spread));
            }
            distinct.insert(nodes.begin(), nodes.end());
            faces.push_back(nodes);
        }
        OFBoundary boundary = patch(0, faces.size());
        const Surface surface = deliver(meshOfFaces(faces, 50 + spread), &boundary);
        const std::vector<int> labels(distinct.begin(), distinct.end());
        EXPECT_EQ(boundary.faceNodeToNodeMapping(), labels) << spread;
        for (std::size_t i = 0; i < surface.elements.connectivity.size(); ++i) {
            ASSERT_EQ(labels[static_cast<std::size_t>(surface.elements.connectivity[i])], faces[i / 3][i % 3]);
        }
    }
}

TEST(FaceGroups, DuplicatesGoWhicheverSortIsTaken)
{
    OFPolymesh mesh;
    const OFPolymeshToDDP converter(&mesh);
    std::mt19937 random(5);
    for (const std::size_t size : {0U, 1U, 499U, 500U, 20000U}) {
        std::vector<int> values(size);
        std::generate(values.begin(), values.end(), [&random] { return static_cast<int>(random() % 300); });
        const std::set<int> expected(values.begin(), values.end());
        EXPECT_TRUE(converter.removeDuplicates(values));
        EXPECT_EQ(values, std::vector<int>(expected.begin(), expected.end()));
    }
}
