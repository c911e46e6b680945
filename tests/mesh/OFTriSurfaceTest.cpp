// SPDX-License-Identifier: MIT
#include "mesh/OFTriSurfaceReader.h"
#include "mesh/OFTriSurfaceToDDP.h"
#include "mesh/SurfaceFans.h"
#include "support/FoamText.h"
#include "support/HostArrays.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

const std::string POINTS = "\n4\n(\n(0 0 0)\n(1 0 0)\n(0 1 0)\n(0 0 1)\n)\n";
const std::string CENTERS = "\n2\n(\n(0.25 0.25 0)\n(0.5 0.5 0.5)\n)\n";
/// Its count is that of the offsets, one more than there are faces.
const std::string COMPACT_FACES = "\n3\n(\n3(0 1 2)\n3(1 3 2)\n)\n";
const std::string FACES = "\n2\n(\n3(0 1 2)\n3(1 3 2)\n)\n";

HostGroups deliver(OFTriSurface* surface)
{
    HostGroups got;
    EXPECT_TRUE(OFTriSurfaceToDDP(surface).populateNodeAndElementGroup(&got.nodes, &got.elements, &got.nodeCount,
                                                                       &got.elementCount));
    EXPECT_EQ(got.nodes.nodeCount(), got.nodeCount);
    EXPECT_EQ(got.elements.elementCount(), got.elementCount);
    return got;
}

/// A surface of four points at one place.
OFTriSurface surfaceOf(const foamtext::Faces& faces)
{
    OFTriSurface surface;
    surface.points().resize(12);
    surface.faces() = foamtext::packed(faces);
    return surface;
}

} // namespace

TEST(TriSurface, SmallFacesLeaveRoomForThreeLabelsEach)
{
    OFTriSurface surface = surfaceOf({{0, 1}, {2}});
    EXPECT_EQ(deliver(&surface).elements.connectivity, (std::vector<int>{0, 1, 2}));
    EXPECT_GE(surface.faces().nodes.capacity(), 6U) << "a host may read three labels per face";
}

TEST(TriSurface, IsReadWithOrWithoutAHeaderAndDeliveredAsTriangles)
{
    const TempFolder folder;
    folder.write("bare/points", POINTS);
    folder.write("bare/faces", FACES);
    folder.write("bare/faceCentres", CENTERS);
    folder.write("headed/points", foamtext::header("vectorField", "points") + POINTS);
    folder.writeGz("headed/faces.gz", foamtext::header("faceCompactList", "faces") + COMPACT_FACES);
    folder.write("headed/faceCentres", foamtext::header("vectorField", "faceCentres") + CENTERS);
    for (const std::string name : {"bare", "headed"}) {
        SCOPED_TRACE(name);
        const LogCapture log;
        OFTriSurface surface;
        EXPECT_TRUE(OFTriSurfaceReader().read(folder.str(name), &surface));
        EXPECT_TRUE(log.errors().empty());
        EXPECT_EQ(surface.facecenters(), (std::vector<double>{0.25, 0.25, 0, 0.5, 0.5, 0.5}));
        HostGroups delivered = deliver(&surface);
        EXPECT_EQ(delivered.nodes.coordinates, (std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}));
        EXPECT_EQ(delivered.nodes.ids, (std::vector<int>{1, 2, 3, 4}));
        EXPECT_EQ(delivered.elements.types, std::vector<int>(2, DDP_TRIANGLE));
        EXPECT_TRUE(delivered.elements.uniform);
        // The list of a compact file ends in slack, which is delivered with it.
        ASSERT_GE(delivered.elements.connectivity.size(), 6U);
        delivered.elements.connectivity.resize(6);
        EXPECT_EQ(delivered.elements.connectivity, (std::vector<int>{0, 1, 2, 1, 3, 2}));
        EXPECT_EQ(delivered.elements.ids, (std::vector<int>{1, 2}));
    }
}

TEST(TriSurface, FailsIfAFileIsMissing)
{
    const TempFolder folder;
    folder.write("points", POINTS);
    folder.write("faces", FACES);
    const LogCapture log;
    OFTriSurface surface;
    OFTriSurfaceReader reader;
    EXPECT_FALSE(reader.read(folder.str(), &surface));
    EXPECT_EQ(log.errors(), std::vector<std::string>{"OFFile : Failed to open vector field file. File basename is " +
                                                     folder.str("faceCentres").toUtf8()});
    EXPECT_FALSE(reader.readTriSurfaceSeq(folder.str(), &surface));
    folder.write("faceCentres", CENTERS);
    EXPECT_TRUE(reader.readTriSurfaceSeq(folder.str(), &surface));
}

TEST(TriSurface, DropsFacesWithoutPointsOrLabelsAndKeepsTheOthers)
{
    // Compatibility (docs/compatibility.md, "surface elements are triangles"): a quadrilateral stays and shifts the
    // rest. The last two faces are those that a short file lacks.
    OFTriSurface surface = surfaceOf({{0, 1, 2}, {1, 4, 2}, {}, {0, 1, 2, 3}, {-1, 0, 1}, {3, 2, 1}, {}, {}});
    surface.faces().nodeOffsets[6] = 0;
    surface.faces().nodeOffsets[7] = 0;
    const HostGroups delivered = deliver(&surface);
    EXPECT_EQ(delivered.elements.ids, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(delivered.elements.connectivity, (std::vector<int>{0, 1, 2, 0, 1, 2, 3, 3, 2, 1}));
    // A face of 256 labels has the count 0 in its byte.
    surface = surfaceOf({{0, 1, 2}, std::vector<int>(256, 3)});
    EXPECT_EQ(deliver(&surface).elements.connectivity.size(), 259U);
    OFTriSurface empty;
    EXPECT_EQ(deliver(&empty).elements.calls.operations, std::vector<std::string>{"setUniformElements"});
}

// Because of the empty face the others are copied, and nothing after the last one may be taken for its labels.
TEST(TriSurface, DropsSlackAndFacesThatWereNeverFilled)
{
    OFTriSurface surface = surfaceOf({{0, 1, 2}, {}, {3, 2, 1}});
    surface.faces().nodes.resize(11);
    EXPECT_EQ(deliver(&surface).elements.connectivity, (std::vector<int>{0, 1, 2, 3, 2, 1}));
    surface = surfaceOf({{0, 1, 2}, {}});
    surface.faces().nodes.assign(256, 0);
    surface.faces().nodeOffsets = {-1, 0};
    EXPECT_EQ(deliver(&surface).elementCount, 0U);
}

TEST(TriSurface, WrongOffsetsStayInBoundsAndAddNothing)
{
    for (const int offset : {-1, 4, 6, 2147483647}) {
        OFTriSurface surface = surfaceOf({{0, 1, 2}, {1, 3, 2}});
        surface.faces().nodeOffsets[1] = offset;
        EXPECT_EQ(deliver(&surface).elementCount, 1U) << offset;
        EXPECT_LE(surface.faces().nodes.size(), 6U);
    }
    OFTriSurface surface = surfaceOf({{0, 1, 2}, {1, 3, 2}, {0, 1, 3}, {}});
    surface.faces().nodeOffsets = {0, 6, 0, 0};
    EXPECT_EQ(deliver(&surface).elementCount, 2U);
    EXPECT_EQ(surface.faces().nodes.size(), 9U);
}

// The centres of faces are of no use to anyone, so their file may be missing.
TEST(TriSurface, NeedsNoFaceCentresInExtendedReading)
{
    const TempFolder folder;
    folder.writeGz("points.gz", foamtext::header("vectorField", "points") + POINTS);
    folder.write("faces", FACES);
    const LogCapture log;
    OFTriSurface surface;
    OFTriSurfaceReader reader(Reading::Extended);
    EXPECT_TRUE(reader.read(folder.str(), &surface) && reader.readTriSurfaceSeq(folder.str(), &surface));
    EXPECT_EQ(surface.nodeCount(), 4U);
    EXPECT_EQ(foamtext::unpacked(surface.faces()), (foamtext::Faces{{0, 1, 2}, {1, 3, 2}}));
    EXPECT_TRUE(log.errors().empty());
}

TEST(SurfaceFans, KeepTheOrderOfNodesAndTheFaceOfEachTriangle)
{
    const SurfaceFans fans =
        fansOf(foamtext::packed({{4, 3, 2, 1, 0}, {0, 1}, {5, 2, 1}, {}, {0, 1, 2, 6}, {-1, 0, 1}}), 6);
    EXPECT_EQ(foamtext::unpacked(fans.triangles), (foamtext::Faces{{4, 3, 2}, {4, 2, 1}, {4, 1, 0}, {5, 2, 1}}));
    EXPECT_EQ(fans.faceOfTriangle, (std::vector<int>{0, 0, 0, 2}));
}

// The byte with their number of nodes says 0, 1 and 44.
TEST(SurfaceFans, CoverFacesOfMoreNodesThanTheirCountHolds)
{
    const std::vector<std::size_t> sizes = {256, 257, 300};
    foamtext::Faces faces;
    std::vector<int> expected;
    for (const std::size_t size : sizes) {
        expected.insert(expected.end(), size - 2, static_cast<int>(faces.size()));
        faces.push_back(foamtext::someLabels(size));
    }
    EXPECT_EQ(fansOf(foamtext::packed(faces), 300).faceOfTriangle, expected);
}

TEST(SurfaceFans, StayInBoundsWhateverTheOffsetsAre)
{
    // The labels of the faces are 0 1 2 and 1 3 2 0.
    const std::vector<std::pair<int, std::vector<int>>> expected = {
        {-1, {0}}, {0, {0}}, {1, {1, 1, 1, 1}}, {4, {0, 0}}, {7, {0, 0, 0, 0, 0}}, {2147483647, {0}}};
    for (const auto& [offset, faceOfTriangle] : expected) {
        FacesData faces = foamtext::packed({{0, 1, 2}, {1, 3, 2, 0}, {}});
        faces.nodeOffsets[1] = offset;
        EXPECT_EQ(fansOf(faces, 4).faceOfTriangle, faceOfTriangle) << offset;
    }
}
