// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"
#include "support/FoamText.h"
#include "support/HostArrays.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <random>
#include <set>

namespace {

using Ints = std::vector<int>;
using foamtext::Faces;

/// A mesh of faces without cells. Point i lies at (i, 2i, -i), and face i has the owner 10 + i.
OFPolymesh meshOfFaces(const Faces& faces, std::size_t pointCount)
{
    OFPolymesh mesh;
    for (std::size_t i = 0; i < pointCount; ++i) {
        const auto x = static_cast<double>(i);
        mesh.points().insert(mesh.points().end(), {x, 2 * x, -x});
    }
    mesh.faces() = foamtext::packed(faces);
    mesh.owners().resize(faces.size());
    std::iota(mesh.owners().begin(), mesh.owners().end(), 10);
    return mesh;
}

OFBoundary patch(int start, std::size_t count)
{
    OFBoundary boundary;
    boundary.setStartFaceIndex(start);
    boundary.setFaceCount(count);
    return boundary;
}

HostGroups deliver(OFPolymesh mesh, OFBoundary* boundary)
{
    HostGroups got;
    EXPECT_TRUE(OFPolymeshToDDP(&mesh).populateBoundaryGroup(*boundary, &got.nodes, &got.nodeCount, &got.elements,
                                                             &got.elementCount));
    EXPECT_EQ(got.elements.calls.operations, (std::vector<std::string>{"setMixedElements", "setPolyhedra"}));
    EXPECT_EQ(got.nodes.nodeCount(), got.nodeCount);
    EXPECT_EQ(got.elements.elementCount(), got.elementCount);
    return got;
}

} // namespace

// Otherwise many patches could each claim the whole mesh.
TEST(BoundaryGroup, OverlappingPatchesShareTheFacesOfTheMesh)
{
    OFPolymesh mesh = meshOfFaces(Faces(6, {0, 1, 2}), 3);
    const OFPolymeshToDDP converter(&mesh);
    EXPECT_EQ(converter.facesPerPatch({patch(1, 4), patch(5, 1)}), (std::vector<std::size_t>{4, 1}));
    EXPECT_EQ(converter.facesPerPatch({patch(2, 99), patch(-1, 4), patch(0, 6)}), (std::vector<std::size_t>{4, 3, 5}));
    EXPECT_EQ(converter.facesPerPatch(std::vector<OFBoundary>(5, patch(0, 6))),
              (std::vector<std::size_t>{6, 6, 0, 0, 0}));
    OFPolymesh uneven = meshOfFaces(Faces(6, {0, 1, 2}), 3);
    uneven.faces() = foamtext::packed({{0, 1, 2, 0, 1, 2, 0, 1, 2}, {0, 1, 2}, {0, 1, 2}, {0, 1, 2}});
    // Twice 18 labels: the patches of the large face take 9 each, one of the others 9.
    EXPECT_EQ(OFPolymeshToDDP(&uneven).facesPerPatch({patch(0, 1), patch(1, 3), patch(0, 1), patch(0, 1), patch(1, 3)}),
              (std::vector<std::size_t>{1, 3, 1, 1, 0}));
    OFBoundary boundary = patch(1, 4);
    HostGroups got;
    EXPECT_TRUE(
        converter.populateBoundaryGroup(boundary, &got.nodes, &got.nodeCount, &got.elements, &got.elementCount, 2));
    EXPECT_EQ(got.elementCount, 2U);
    EXPECT_EQ(boundary.faceToCellMapping(), (Ints{11, 12}));
}

TEST(BoundaryGroup, PatchesGetTheirOwnNodes)
{
    const OFPolymesh mesh =
        meshOfFaces({{0, 1, 2}, {7, 3, 9, 12}, {12, 9, 4}, {3, 7, 12, 5, 6}, {4, 9}, {0, 1, 2}}, 13);
    OFBoundary boundary = patch(1, 4);
    const HostGroups got = deliver(mesh, &boundary);
    EXPECT_EQ(got.nodes.coordinates,
              (std::vector<double>{3, 6, -3, 4, 8, -4, 5, 10, -5, 6, 12, -6, 7, 14, -7, 9, 18, -9, 12, 24, -12}));
    EXPECT_EQ(got.nodes.ids, (Ints{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(got.elements.types, (Ints{DDP_QUADRILATERAL, DDP_TRIANGLE, DDP_POLY, DDP_POLY}));
    EXPECT_EQ(got.elements.connectivity, (Ints{4, 0, 5, 6, 6, 5, 1, 0, 4, 6, 2, 3, 1, 5}));
    EXPECT_EQ(got.elements.ids, (Ints{0, 1, 2, 3}));
    EXPECT_EQ(faceTables(got.elements), (FaceTables{{{5, 2}, {1, 1}, {5, 2}, {0, 4, 6, 2, 3, 1, 5}}}));
    EXPECT_EQ(boundary.faceConnectivity(), (Ints{7, 3, 9, 12, 12, 9, 4, 3, 7, 12, 5, 6, 4, 9}));
    EXPECT_EQ(boundary.nodeCountPerFace(), (std::vector<std::uint8_t>{4, 3, 5, 2}));
    EXPECT_EQ(boundary.faceNodeToNodeMapping(), (Ints{3, 4, 5, 6, 7, 9, 12}));
    EXPECT_EQ(boundary.faceToCellMapping(), (Ints{11, 12, 13, 14}));
}

TEST(BoundaryGroup, DeliversOnlyTheFacesThatExist)
{
    const OFPolymesh mesh = meshOfFaces({{0, 1, 2}, {1, 2, 3}, {2, 3, 4}}, 5);
    struct Case
    {
        int start;
        std::size_t count;
        Ints cells;
    };
    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    for (const auto& [start, count, cells] : {Case{1, 9, {11, 12}},
                                              {-2, 3, {10}},
                                              {-2, huge, {10, 11, 12}},
                                              {3, 4, {}},
                                              {1, 0, {}},
                                              {2147483647, huge, {}},
                                              {-9, 4, {}},
                                              {0, 3, {10, 11, 12}}}) {
        OFBoundary boundary = patch(start, count);
        EXPECT_EQ(deliver(mesh, &boundary).elementCount, cells.size());
        EXPECT_EQ(boundary.faceToCellMapping(), cells) << start << " " << count;
        EXPECT_EQ(boundary.faceCount(), count) << "the claim of the file stays, as the mesh may be read again";
    }
    OFPolymesh shortOwners = mesh;
    shortOwners.owners().resize(2);
    OFBoundary boundary = patch(1, 2);
    EXPECT_EQ(deliver(shortOwners, &boundary).elementCount, 2U);
    EXPECT_EQ(boundary.faceToCellMapping(), (Ints{11, -1}));
}

TEST(FaceZoneGroup, DeliversFacesInZoneOrderAllWithIdZero)
{
    OFPolymesh mesh = meshOfFaces({{0, 1, 2, 3}, {4, 5, 6, 7}, {2, 3, 8}, {0, 8, 2}}, 9);
    OFFaceZone zone;
    zone.faceIds() = {3, -1, 0, 4, 2147483647, 2};
    HostGroups got;
    EXPECT_TRUE(OFPolymeshToDDP(&mesh).populateFaceZoneGroup(zone, &got.nodes, &got.nodeCount, &got.elements,
                                                             &got.elementCount));
    EXPECT_EQ(zone.faceCount(), 6U);
    EXPECT_EQ(got.elementCount, 3U);
    EXPECT_EQ(got.nodeCount, 5U);
    EXPECT_EQ(got.elements.types, (Ints{DDP_TRIANGLE, DDP_QUADRILATERAL, DDP_TRIANGLE}));
    EXPECT_EQ(got.elements.connectivity, (Ints{0, 4, 2, 0, 1, 2, 3, 2, 3, 4}));
    EXPECT_EQ(got.elements.ids, (Ints{0, 0, 0}));
    zone.faceIds() = Ints(100, 0);
    EXPECT_TRUE(OFPolymeshToDDP(&mesh).populateFaceZoneGroup(zone, &got.nodes, &got.nodeCount, &got.elements,
                                                             &got.elementCount));
    EXPECT_EQ(got.elementCount, 3U) << "the mesh has only 14 labels";
}

// Different code numbers dense and sparse nodes, and sorts few and many. The host must not see a difference.
TEST(FaceGroups, NumberingIsAscendingForAnySpreadOfLabels)
{
    std::mt19937 random(3);
    for (const unsigned spread : {1U, 63U, 64U, 65U, 400U, 100000U}) {
        for (const std::size_t count : {100U, 5000U}) {
            Faces faces(count, Ints(3));
            std::set<int> distinct;
            for (Ints& face : faces) {
                std::ranges::generate(face, [&] { return 50 + static_cast<int>(random() % spread); });
                distinct.insert(face.begin(), face.end());
            }
            OFBoundary boundary = patch(0, count);
            const HostGroups got = deliver(meshOfFaces(faces, 50 + spread), &boundary);
            const Ints labels(distinct.begin(), distinct.end());
            EXPECT_EQ(boundary.faceNodeToNodeMapping(), labels) << spread;
            for (std::size_t i = 0; i < got.elements.connectivity.size(); ++i) {
                ASSERT_EQ(labels[static_cast<std::size_t>(got.elements.connectivity[i])], faces[i / 3][i % 3]);
            }
        }
    }
}

// One wrong "nFaces" must not cost the patches after it their faces.
TEST(BoundaryGroup, APatchThatClaimsTooMuchTakesNothingFromOthers)
{
    OFPolymesh mesh = meshOfFaces(Faces(9, {0, 1, 2}), 3);
    const OFPolymeshToDDP converter(&mesh);
    EXPECT_EQ(converter.facesPerPatch({patch(1, 99), patch(3, 4), patch(7, 2)}), (std::vector<std::size_t>{8, 4, 2}));
    EXPECT_EQ(converter.facesPerPatch({patch(1, 2), patch(3, 99), patch(0, 99), patch(7, 2)}),
              (std::vector<std::size_t>{2, 6, 8, 2}));
}
