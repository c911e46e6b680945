// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "border/HostSet.h"
#include "casemodel/CaseFiles.h"
#include "provider/OpenCase.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace {

using Ids = std::vector<std::int32_t>;
using Texts = std::vector<std::string>;

HostOptions withFaceZones()
{
    HostOptions options;
    options.setBool("LOAD_FACE_ZONES", true);
    return options;
}

/// Nodes, elements and the ids of the groups that these show in, for each group in order.
Texts shapes(const HostGeometry& geometry)
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
    return texts;
}

TEST(Geometry, LaysGroupsOutAsPartThenPatchesThenFaceZones)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    folder.write("constant/polyMesh/cellZones", cellZonesFile({{"a", {0, 1, 7}}, {"b", {1}}}));
    OpenCase openCase(folder.path(), withFaceZones());
    LogCapture log;
    // The later zone wins the cell that both hold.
    EXPECT_EQ(shapes(openCase.geometry()), (Texts{"12/2: 2 3", "4/1: 4", "12/9: 5 5 5 5 5 5 5 5 5", "4/1: 6"}));
    ASSERT_EQ(log.infos().size(), 2U);
    EXPECT_TRUE(std::regex_match(log.infos()[0], std::regex("OpenFoamProvider :  Get Part 0\\. Nodes=12, Elements=2\\. "
                                                            "Total time \\[read\\] \\+ \\[convert\\] \\+ \\[send\\] : "
                                                            "[0-9.e-]+")));
    EXPECT_TRUE(
        std::regex_match(log.infos()[1], std::regex("OpenFoamProvider : >>>> Get Geometry \\[Parallel\\] done\\. "
                                                    "Total time used : [0-9.e-]+")));

    // The built mesh has taken the cells that do not exist out of the zone.
    HostSet set;
    EXPECT_TRUE(openCase.provider.getSet(1, &set));
    ASSERT_EQ(set.items.size(), 1U);
    EXPECT_EQ(set.items[0].kind, 0);
    EXPECT_EQ(set.items[0].partIndex, 0U);
    EXPECT_EQ(set.items[0].ids, (Ids{0, 1}));
    EXPECT_FALSE(openCase.provider.getSet(3, &set));
    EXPECT_EQ(log.errors(), Texts{"OpenFoamProvider :  Get Set with id=3 failure"});

    HostGeometry untouched;
    EXPECT_FALSE(openCase.provider.getGeometry(HostGeometrySpec(1), &untouched));
    EXPECT_TRUE(untouched.nodeGroups.empty());
}

TEST(Geometry, LeavesElementsWithoutPartIdsWhereThereAreNoCellZones)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    HostOptions options;
    options.setBool("LOAD_CELL_ZONES", false);
    options.setBool("LOAD_BC_PARTS", false);
    OpenCase openCase(folder.path(), options);
    EXPECT_EQ(shapes(openCase.geometry()), Texts{"12/2:"});
    // Before a geometry, a set is what the file says; without zones there is none.
    HostSet set;
    EXPECT_FALSE(openCase.provider.getSet(1, &set));
}

TEST(Geometry, KeepsTheGroupsOfAPartThatCannotBeReadEmpty)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writeTwoCubes(folder, "constant/region/polyMesh");
    folder.write("constant/polyMesh/owner", "broken");
    OpenCase openCase(folder.path());
    const LogCapture log;
    const Texts delivered = shapes(openCase.geometry());
    EXPECT_FALSE(log.errors().empty());
    EXPECT_EQ(std::ranges::count(delivered, "0/0:"), 1);
    EXPECT_EQ(std::ranges::count(delivered, "12/2:"), 1);
    EXPECT_EQ(delivered.size(), 6U);
}

// Real cases, held against the figures that the mesh checker of the solvers gives and against the host's own checks.
TEST(Geometry, AgreesWithTheCellCountsOfRealCases)
{
    const auto check = [](const std::string& name, std::size_t groupCount, std::size_t cells,
                          const HostOptions& options) {
        SCOPED_TRACE(name);
        OpenCase openCase(dataCase(name), options);
        ASSERT_TRUE(openCase.isOpen);
        const HostGeometry& geometry = openCase.geometry();
        EXPECT_EQ(geometry.elementGroups.size(), groupCount);
        EXPECT_NO_THROW(checkGeometry(openCase.metaData(), geometry));
        std::size_t solids = 0;
        for (const HostElementGroup& group : geometry.elementGroups) {
            solids += static_cast<std::size_t>(std::ranges::count(group.types, DDP_HEXAHEDRON));
        }
        EXPECT_EQ(solids, cells);
    };
    check("zones", 1 + 3 + 2, 120, withFaceZones());
    check("two_regions", 3 + 5 + 5 + 5, 216 + 72 + 144, {});
    check("decomposed", 3 + 3 + 3 + 3, 64 * 3, {});
    check("surfaces", 1 + 6 + 2, 210, {});
}

TEST(Geometry, ShowsTheCellsOfZonesAsTheFileListsThem)
{
    OpenCase openCase(dataCase("zones"));
    const HostGeometry& geometry = openCase.geometry();
    const Ids& partIds = geometry.elementGroups[0].partIds;
    EXPECT_EQ(std::ranges::count(partIds, 1), 120 - 20 - 8);
    EXPECT_EQ(std::ranges::count(partIds, 2), 20);
    EXPECT_EQ(std::ranges::count(partIds, 3), 8);
    for (const std::size_t cell : {0U, 1U, 6U, 49U, 54U, 55U}) {
        EXPECT_EQ(partIds[cell], 2) << cell;
    }
    HostSet set;
    EXPECT_TRUE(openCase.provider.getSet(2, &set));
    EXPECT_EQ(set.items[0].ids.size(), 8U);
}

} // namespace
