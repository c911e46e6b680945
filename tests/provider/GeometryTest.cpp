// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "border/HostSet.h"
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// For each group in order: its number of nodes and elements, and the ids of the groups that its elements belong to.
std::string shapes(const HostGeometry& geometry)
{
    Texts texts;
    for (const HostElementGroup& group : geometry.elementGroups) {
        std::string text =
            std::to_string(geometry.nodesOf(group)->nodeCount()) + "/" + std::to_string(group.elementCount()) + ":";
        for (const std::int32_t id : group.partIds) {
            text += " " + std::to_string(id);
        }
        texts.push_back(text);
    }
    return joined(texts);
}

TEST(Geometry, ListsPartThenPatchesThenFaceZones)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    // The last label of the first zone wraps to a negative one.
    std::string zones = zonesFile(false, {{"a", {0, 1, 7, 429496729}}, {"b", {1}}});
    zones.insert(zones.find("429496729") + 9, "5");
    folder.write("constant/polyMesh/cellZones", zones);
    OpenCase openCase(folder.path(), settings({{"LOAD_FACE_ZONES", true}}));
    const LogCapture log;
    // A cell in two zones belongs to the later one.
    EXPECT_EQ(shapes(openCase.geometry()), "12/2: 2 3, 4/1: 4, 12/9: 5 5 5 5 5 5 5 5 5, 4/1: 6");
    // Cells that the mesh does not have are left out of the set.
    HostSet set;
    EXPECT_TRUE(openCase.provider.getSet(1, &set));
    ASSERT_EQ(set.items.size(), 1U);
    EXPECT_EQ(set.items[0].ids, (std::vector<std::int32_t>{0, 1}));
    EXPECT_FALSE(openCase.provider.getSet(3, &set));
    EXPECT_EQ(joined(log.errors()), "OpenFoamProvider :  Get Set with id=3 failure");

    HostGeometry untouched;
    EXPECT_FALSE(openCase.provider.getGeometry(HostGeometrySpec(1), &untouched));
    EXPECT_TRUE(untouched.nodeGroups.empty());
}

// A mesher may be rewriting the faces meanwhile. Groups of an unreadable part are empty, and nothing that was limited
// for one answer may stay limited for the next.
TEST(Geometry, RecoversOnceTheMeshIsReadable)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writeTwoCubes(folder, "constant/region/polyMesh");
    OpenCase openCase(folder.path(), settings({{"LOAD_FACE_ZONES", true}}));
    const std::string whole = shapes(openCase.geometry());
    // Regions have no zones. The file system decides which part comes first.
    const std::string none = "0/0:, 0/0:, 0/0:, 0/0:";
    const std::string withoutMesh = openCase.groups().starts_with("1 region")
                                        ? "12/2:, 4/1: 2, 12/9: 3 3 3 3 3 3 3 3 3, " + none
                                        : none + ", 12/2:, 4/1: 7, 12/9: 8 8 8 8 8 8 8 8 8";
    const std::string bytes = fileBytes(folder / "constant/polyMesh/faces");
    for (const auto& [faces, expected] : {std::pair(std::string("no list"), withoutMesh), std::pair(bytes, whole)}) {
        folder.write("constant/polyMesh/faces", faces);
        HostGeometry geometry;
        EXPECT_TRUE(openCase.provider.getGeometry(HostGeometrySpec(), &geometry));
        EXPECT_EQ(shapes(geometry), expected);
    }
}

// An exception cancels TBB loops that share its context, which would deliver half-filled arrays.
TEST(Geometry, OfAPartIsCompleteIfAnotherPartThrows)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeMesh(folder, "constant/large/polyMesh", asciiFiles(hexahedronMesh(40, 40, 40)));
    folder.write("constant/broken/polyMesh/owner", "FoamFile\n{\n    object owner;\n}\n");
    OpenCase openCase(folder.path());
    HostGeometry geometry;
    openCase.metaData();
    EXPECT_THROW((void)openCase.provider.getGeometry(HostGeometrySpec(), &geometry), std::out_of_range);
    std::ptrdiff_t solids = 0;
    for (const HostElementGroup& group : geometry.elementGroups) {
        solids += std::ranges::count(group.types, DDP_HEXAHEDRON);
    }
    EXPECT_EQ(solids, 40 * 40 * 40);
}

// Compares real cases with the figures of OpenFOAM's mesh checker, and runs the host's checks on them.
TEST(Geometry, MatchesTheCellCountsOfRealCases)
{
    for (const auto& [name, groupCount, cells] :
         std::vector<std::tuple<std::string, std::size_t, std::size_t>>{{"zones", 1 + 3 + 2, 120},
                                                                        {"two_regions", 3 + 5 + 5 + 5, 216 + 72 + 144},
                                                                        {"decomposed", 3 + 3 * 3, 64 * 3},
                                                                        {"surfaces", 1 + 6 + 2, 210}}) {
        SCOPED_TRACE(name);
        OpenCase openCase(dataCase(name), settings({{"LOAD_FACE_ZONES", true}}));
        const HostGeometry& geometry = openCase.geometry();
        EXPECT_EQ(geometry.elementGroups.size(), groupCount);
        EXPECT_NO_THROW(checkGeometry(openCase.metaData(), geometry));
        std::ptrdiff_t solids = 0;
        for (const HostElementGroup& group : geometry.elementGroups) {
            solids += std::ranges::count(group.types, DDP_HEXAHEDRON);
        }
        EXPECT_EQ(static_cast<std::size_t>(solids), cells);
    }
}

} // namespace
