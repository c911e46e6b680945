// SPDX-License-Identifier: MIT
#include "mesh/OFTriSurfaceReader.h"
#include "mesh/OFTriSurfaceToDDP.h"
#include "support/LogCapture.h"
#include "support/RecordingGroups.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

std::string block(const std::string& className, const std::string& object)
{
    return "FoamFile\n{\n    version 2.0;\n    format ascii;\n    class " + className + ";\n    object " + object +
           ";\n}\n";
}

const std::string POINTS = "\n4\n(\n(0 0 0)\n(1 0 0)\n(0 1 0)\n(0 0 1)\n)\n";
const std::string CENTERS = "\n2\n(\n(0.25 0.25 0)\n(0.5 0.5 0.5)\n)\n";
/// The count is that of the offsets, one more than faces.
const std::string COMPACT_FACES = "\n3\n(\n3(0 1 2)\n3(1 3 2)\n)\n";
const std::string FACES = "\n2\n(\n3(0 1 2)\n3(1 3 2)\n)\n";

struct Delivered
{
    RecordingNodeGroup nodes;
    RecordingElementGroup elements;
    std::size_t nodeCount = 99;
    std::size_t elementCount = 99;
};

Delivered deliver(OFTriSurface* surface)
{
    Delivered delivered;
    EXPECT_TRUE(OFTriSurfaceToDDP(surface).populateNodeAndElementGroup(&delivered.nodes, &delivered.elements,
                                                                       &delivered.nodeCount, &delivered.elementCount));
    return delivered;
}

FacesData facesOf(const std::vector<std::vector<int>>& faces)
{
    FacesData data;
    for (const std::vector<int>& nodes : faces) {
        data.nodeCounts.push_back(static_cast<std::uint8_t>(nodes.size()));
        data.nodeOffsets.push_back(static_cast<int>(data.nodes.size()));
        data.nodes.insert(data.nodes.end(), nodes.begin(), nodes.end());
    }
    return data;
}

} // namespace

TEST(TriSurface, IsReadWithAndWithoutAHeaderAndDeliveredAsTriangles)
{
    const TempFolder folder;
    folder.write("bare/points", POINTS);
    folder.write("bare/faces", FACES);
    folder.write("bare/faceCentres", CENTERS);
    folder.write("headed/points", block("vectorField", "points") + POINTS);
    folder.writeGz("headed/faces.gz", block("faceCompactList", "faces") + COMPACT_FACES);
    folder.write("headed/faceCentres", block("vectorField", "faceCentres") + CENTERS);
    for (const std::string name : {"bare", "headed"}) {
        SCOPED_TRACE(name);
        const LogCapture log;
        OFTriSurface surface;
        EXPECT_TRUE(OFTriSurfaceReader().read(folder.str(name), &surface));
        EXPECT_TRUE(log.errors().empty());
        std::vector<std::string> lines = log.texts(4);
        std::sort(lines.begin(), lines.end());
        ASSERT_EQ(lines.size(), 3U);
        EXPECT_EQ(lines[0].rfind("OFTriSUrfaceReader : FaceCentres file done. Read 6 items. Time used : ", 0), 0U);
        EXPECT_EQ(lines[1].rfind("OFTriSurfaceReader : Faces file done. Read 2 items. Time used : ", 0), 0U);
        EXPECT_EQ(lines[2].rfind("OFTriSurfaceReader : Points file done. Read 12 items. Time used : ", 0), 0U);
        EXPECT_EQ(surface.facecenters(), (std::vector<double>{0.25, 0.25, 0, 0.5, 0.5, 0.5}));
        Delivered delivered = deliver(&surface);
        EXPECT_EQ(delivered.nodeCount, 4U);
        EXPECT_EQ(delivered.nodes.coordinates, (std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}));
        EXPECT_EQ(delivered.nodes.ids, (std::vector<int>{1, 2, 3, 4}));
        EXPECT_EQ(delivered.elementCount, 2U);
        EXPECT_EQ(delivered.elements.uniformType, DDP_TRIANGLE);
        // The list of a compact file ends in slack, which goes with it.
        ASSERT_GE(delivered.elements.connectivity.size(), 6U);
        delivered.elements.connectivity.resize(6);
        EXPECT_EQ(delivered.elements.connectivity, (std::vector<int>{0, 1, 2, 1, 3, 2}));
        EXPECT_EQ(delivered.elements.ids, (std::vector<int>{1, 2}));
    }
}

TEST(TriSurface, AMissingFileFailsTheWhole)
{
    const TempFolder folder;
    folder.write("points", POINTS);
    folder.write("faces", FACES);
    const LogCapture log;
    OFTriSurface surface;
    OFTriSurfaceReader reader;
    EXPECT_FALSE(reader.read(folder.str(), &surface));
    EXPECT_EQ(surface.faces().faceCount(), 2U);
    EXPECT_EQ(log.errors(), std::vector<std::string>{"OFFile : Failed to open vector field file. File basename is " +
                                                     folder.str("faceCentres").toUtf8()});
    EXPECT_FALSE(reader.readTriSurfaceSeq(folder.str(), &surface));
    folder.write("faceCentres", CENTERS);
    EXPECT_TRUE(reader.readTriSurfaceSeq(folder.str(), &surface));
    EXPECT_EQ(log.texts(4).back().rfind("OFPolymeshReader : >>> Polymesh reading done (sequential). Time used : ", 0),
              0U);
}

TEST(TriSurface, AnEmptySurfaceIsDelivered)
{
    OFTriSurface surface;
    const Delivered delivered = deliver(&surface);
    EXPECT_EQ(delivered.nodeCount + delivered.elementCount, 0U);
    EXPECT_EQ(delivered.nodes.calls, 2);
    EXPECT_EQ(delivered.elements.elementCalls, 1);
}

TEST(TriSurface, FacesWithoutPointsOrLabelsAreDroppedAndTheOthersKeptAsTheyStand)
{
    OFTriSurface surface;
    surface.points().resize(12);
    // A quadrilateral stays, though hosts see it shift the rest; the last two faces are what a short file leaves.
    surface.faces() = facesOf({{0, 1, 2}, {1, 4, 2}, {}, {0, 1, 2, 3}, {-1, 0, 1}, {3, 2, 1}, {}, {}});
    surface.faces().nodeOffsets[6] = 0;
    surface.faces().nodeOffsets[7] = 0;
    const Delivered delivered = deliver(&surface);
    EXPECT_EQ(delivered.elementCount, 3U);
    EXPECT_EQ(delivered.elements.ids, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(delivered.elements.connectivity, (std::vector<int>{0, 1, 2, 0, 1, 2, 3, 3, 2, 1}));
}

TEST(TriSurface, OffsetsThatLeadAstrayReachNothingAndMultiplyNothing)
{
    for (const int offset : {-1, 4, 6, 2147483647}) {
        OFTriSurface surface;
        surface.points().resize(12);
        surface.faces() = facesOf({{0, 1, 2}, {1, 3, 2}});
        surface.faces().nodeOffsets[1] = offset;
        EXPECT_LE(deliver(&surface).elementCount, 2U);
        EXPECT_LE(surface.faces().nodes.size(), 6U);
    }
    OFTriSurface surface;
    surface.points().resize(12);
    surface.faces() = facesOf({{0, 1, 2}, {1, 3, 2}, {0, 1, 3}, {}});
    surface.faces().nodeOffsets = {0, 6, 0, 0};
    EXPECT_EQ(deliver(&surface).elementCount, 2U);
    EXPECT_EQ(surface.faces().nodes.size(), 9U);
}
