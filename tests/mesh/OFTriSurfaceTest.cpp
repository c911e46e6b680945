// SPDX-License-Identifier: MIT
#include "mesh/OFTriSurfaceReader.h"
#include "mesh/OFTriSurfaceToDDP.h"
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
