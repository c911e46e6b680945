// SPDX-License-Identifier: MIT
#include "provider/OpenCase.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <regex>

namespace {

using Values = std::vector<double>;
using Groups = std::vector<Values>;

constexpr double UNDEFINED = 1.7976931348623157e308;

Groups undefined(const std::vector<std::size_t>& counts)
{
    Groups groups;
    for (const std::size_t count : counts) {
        groups.emplace_back(count, UNDEFINED);
    }
    return groups;
}

double sum(const Values& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0);
}

/// Two cubes with the values 1 and 3; the patch "left side" has 7, the faces of "rest" show their cells.
class Results : public testing::Test
{
protected:
    Results()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure("nonuniform List<scalar> \n2\n(\n1\n3\n)\n");
    }

    void writePressure(const std::string& interior, const std::string& className = "volScalarField")
    {
        m_folder.write("1/p", fieldFile(className, "p", interior,
                                        {{"left side", "type fixedValue;\n        value uniform 7;"},
                                         {"rest", "type zeroGradient;"}}));
    }

    TempFolder m_folder;
    LogCapture m_log;
};

TEST_F(Results, ComeForThePartAndItsPatchesButNotForFaceZones)
{
    OpenCase openCase(m_folder.path(), settings({{"LOAD_FACE_ZONES", true}}));
    EXPECT_EQ(openCase.geometry().elementGroups.size(), 4U);
    m_log.clear();
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{1, 3}, {7}, {1, 1, 1, 1, 3, 3, 3, 3, 3}}));
    const std::string lines = joined(m_log.infos());
    EXPECT_TRUE(std::regex_match(
        lines, std::regex("OFResultReader : Result p file done\\. Read 2 cellItems\\. Read 2 boundary patches "
                          "containing 10 boundaryItems\\. Time used : [0-9.e-]+, "
                          "OpenFoamProvider : getResult \\[Parallel\\] in [0-9.e-]+ seconds")))
        << lines;
    // Nodes on the left side take one face of it and two of the rest, those in the middle two of each cell.
    const Values nodes = {3, 2, 3, 3, 2, 3, 3, 2, 3, 3, 2, 3};
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), (Groups{nodes, {3, 3, 3, 3}, nodes}));
    // The complete answer goes out first, what was read in its place.
    EXPECT_EQ(openCase.result("PRESSURE_E", 1)->groups[0].calls.operations.size(), 2U);
}

TEST_F(Results, AreUndefinedInStatesThatLackThem)
{
    m_folder.write("2/U", fieldFile("volVectorField", "U", "uniform (1 2 3)"));
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    EXPECT_EQ(openCase.values("PRESSURE_E", 2), undefined({2, 1, 9}));
    EXPECT_EQ(openCase.values("VELOCITY_N", 1), undefined({36, 12, 36}));
    // Without patches in its file a field has its cells alone.
    Groups cellsAlone = undefined({6, 3, 27});
    cellsAlone[0] = {1, 2, 3, 1, 2, 3};
    EXPECT_EQ(openCase.values("VELOCITY_E", 2), cellsAlone);

    HostResult result;
    for (const HostResultSpec& spec : {HostResultSpec(99, 1), HostResultSpec(1, 99), HostResultSpec(-1, 1)}) {
        EXPECT_FALSE(openCase.provider.getResult(spec, &result));
    }
    EXPECT_TRUE(result.groups.empty());
}

TEST_F(Results, AreUndefinedWhereAFileCannotGiveThem)
{
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    const std::string list = "nonuniform List<scalar> \n";
    for (const std::string& interior : {list + "2\n(\n1\n", list + "3\n(\n1\n2\n3\n)\n", std::string("uniform x")}) {
        SCOPED_TRACE(interior);
        writePressure(interior);
        EXPECT_EQ(openCase.values("PRESSURE_E", 1), undefined({2, 1, 9}));
        EXPECT_EQ(openCase.values("PRESSURE_N", 1), undefined({12, 4, 12}));
    }
    writePressure("uniform (0 0 0)", "volVectorField");
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), undefined({2, 1, 9}));
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), undefined({12, 4, 12}));
    writePressure("nonuniform List<scalar> 0()");
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), undefined({12, 4, 12}));
    std::filesystem::remove(m_folder.path() / "1/p");
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), undefined({2, 1, 9}));
}

// The interior stands in front of the patches in a file, so it is good even where the file breaks off behind it.
TEST_F(Results, KeepTheCellsOfAFileThatEndsBehindThem)
{
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    m_folder.write("1/p", foamFile("volScalarField", "p", "internalField uniform 5;\n"));
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{5, 5}, {UNDEFINED}, Values(9, UNDEFINED)}));
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), (Groups{Values(12, 5.0), Values(4, 5.0), Values(12, 5.0)}));
}

TEST_F(Results, WithoutPatchesShowAnAverageOfTheUndefinedMark)
{
    OpenCase openCase(m_folder.path(), settings({{"LOAD_BC_PARTS", false}}));
    openCase.geometry();
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{1, 3}}));
    const Groups nodes = openCase.values("PRESSURE_N", 1);
    EXPECT_EQ(Values(nodes[0].begin(), nodes[0].begin() + 3), (Values{UNDEFINED, UNDEFINED / 2, UNDEFINED}));
}

TEST_F(Results, AreEmptyBeforeTheGeometry)
{
    OpenCase openCase(m_folder.path());
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), Groups(3));
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), Groups(3));
}

TEST_F(Results, DisplaceNodesToThePointsOfTheState)
{
    const auto writePoints = [&](const std::string& time, int count) {
        std::string text = std::to_string(count) + "\n(\n";
        for (int i = 0; i < count; ++i) {
            text += "(" + std::to_string(i) + " 0 0.5)\n";
        }
        m_folder.write(time + "/polyMesh/points", foamFile("vectorField", "points", text + ")\n"));
    };
    writePoints("2", 12);
    writePoints("3", 4);
    m_folder.write("4/p", fieldFile("volScalarField", "p", "uniform 0"));
    OpenCase openCase(m_folder.path());
    const HostGeometry& geometry = openCase.geometry();
    // The first state shows the mesh itself.
    const Groups first = openCase.values("POINTS", 1);
    ASSERT_EQ(first.size(), 3U);
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i], geometry.nodeGroups[i].coordinates);
    }
    EXPECT_EQ(openCase.values("POINTS", 2)[1], (Values{0, 0, 0.5, 3, 0, 0.5, 6, 0, 0.5, 9, 0, 0.5}));
    // With fewer points than the mesh had, the nodes that are gone stay undefined.
    const Groups third = openCase.values("POINTS", 3);
    EXPECT_EQ(third[0].size(), 12U);
    EXPECT_EQ(Values(third[1].begin(), third[1].begin() + 7), (Values{0, 0, 0.5, 3, 0, 0.5, UNDEFINED}));
    EXPECT_EQ(openCase.result("POINTS", 4), nullptr);
}

// The sums are those that the description of the case lists for the values on points.
TEST(SurfaceResults, ComeFromTheStatesOwnFolder)
{
    OpenCase openCase(dataCase("surfaces"));
    openCase.geometry();
    // Folders 0, 10, 2, 6 in text order: the state of time 2 has the id 3.
    const Groups onNodes = openCase.values("PRESSURE_N*", 3);
    ASSERT_EQ(onNodes.size(), 7U + 2U);
    EXPECT_NEAR(std::min(sum(onNodes[7]), sum(onNodes[8])), 0.691541, 1e-4);
    EXPECT_NEAR(std::max(sum(onNodes[7]), sum(onNodes[8])), 55.9255, 1e-3);
    // Cell results have no values on surfaces, and a result that a state lacks has not even groups there.
    EXPECT_NEAR(sum(openCase.values("PRESSURE_E", 3)[0]), 80.1529, 1e-3);
    EXPECT_EQ(openCase.values("PRESSURE_E", 3)[7][0], UNDEFINED);
    EXPECT_EQ(openCase.values("PRESSURE_N*", 1).size(), 7U);
}

TEST(RegionResults, ComeFromTheSubFoldersOfTheRegions)
{
    OpenCase openCase(dataCase("two_regions"));
    openCase.geometry();
    const std::vector<const HostGroup*> groups = openCase.metaData().geometryGroups();
    // Sums by part, as far as there are values: at time 1 only the region "right" has a velocity.
    const auto sums = [&](const std::string& key) {
        const Groups values = openCase.values(key, 2);
        std::map<std::string, double> byPart;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (groups[i]->kind() == HostGroupKind::Part && values[i][0] != UNDEFINED) {
                byPart[groups[i]->name] = std::round(sum(values[i]));
            }
        }
        return byPart;
    };
    using Sums = std::map<std::string, double>;
    EXPECT_EQ(sums("TEMPERATURE_E"), (Sums{{"default_region", 65362}, {"left", 21694}, {"right", 43848}}));
    EXPECT_EQ(sums("VELOCITY_E"), (Sums{{"right", 58}}));
}

} // namespace
