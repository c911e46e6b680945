// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "casemodel/CaseFiles.h"
#include "provider/OpenCase.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace {

using Values = std::vector<double>;
using Groups = std::vector<Values>;

constexpr double UNDEFINED = 1.7976931348623157e308;

Values undefined(std::size_t count)
{
    return Values(count, UNDEFINED);
}

/// Two cubes with the values 1 and 3; the patch "left side" has 7, the faces of "rest" show their cells.
class Results : public testing::Test
{
protected:
    Results()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure(scalarList({1, 3}));
    }

    void writePressure(const std::string& interior, const std::string& className = "volScalarField")
    {
        m_folder.write("1/p", fieldFile(className, "p", interior, PATCHES));
    }

    static inline const std::vector<std::pair<std::string, std::string>> PATCHES = {
        {"left side", "type fixedValue;\n        value uniform 7;"}, {"rest", "type zeroGradient;"}};

    TempFolder m_folder;
    LogCapture m_log;
};

const Values FACES_OF_REST = {1, 1, 1, 1, 3, 3, 3, 3, 3};
/// Nodes on the left side take one face of it and two of the rest, those in the middle two of each cell.
const Values NODE_MEANS = {3, 2, 3, 3, 2, 3, 3, 2, 3, 3, 2, 3};

void expectNear(const Groups& groups, const Groups& expected)
{
    ASSERT_EQ(groups.size(), expected.size());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        ASSERT_EQ(groups[i].size(), expected[i].size()) << "group " << i;
        for (std::size_t j = 0; j < groups[i].size(); ++j) {
            EXPECT_DOUBLE_EQ(groups[i][j], expected[i][j]) << "group " << i << " value " << j;
        }
    }
}

TEST_F(Results, ComeForThePartAndItsPatchesButNotForFaceZones)
{
    HostOptions options;
    options.setBool("LOAD_FACE_ZONES", true);
    OpenCase openCase(m_folder.path(), options);
    EXPECT_EQ(openCase.geometry().elementGroups.size(), 4U);
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{1, 3}, {7}, FACES_OF_REST}));
    expectNear(openCase.values("PRESSURE_N", 1), {NODE_MEANS, Values(4, 3.0), NODE_MEANS});
    // The complete answer goes out first, what was read in its place.
    EXPECT_EQ(openCase.result("PRESSURE_E", 1)->groups[0].calls.operations.size(), 2U);
}

TEST_F(Results, AreUndefinedInStatesThatLackThem)
{
    m_folder.write("2/U", fieldFile("volVectorField", "U", "uniform (1 2 3)"));
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    EXPECT_EQ(openCase.values("PRESSURE_E", 2), (Groups{undefined(2), undefined(1), undefined(9)}));
    EXPECT_EQ(openCase.values("VELOCITY_N", 1), (Groups{undefined(36), undefined(12), undefined(36)}));
    // A field without patches in its file: the cells are there, the patches are not.
    EXPECT_EQ(openCase.values("VELOCITY_E", 2), (Groups{{1, 2, 3, 1, 2, 3}, undefined(3), undefined(27)}));
    EXPECT_EQ(openCase.result("VELOCITY_E", 2)->groups[2].dimension, 3);

    HostResult result;
    EXPECT_FALSE(openCase.provider.getResult(HostResultSpec(99, 1), &result));
    EXPECT_FALSE(openCase.provider.getResult(HostResultSpec(1, 99), &result));
    EXPECT_FALSE(openCase.provider.getResult(HostResultSpec(-1, 1), &result));
    EXPECT_TRUE(result.groups.empty());
}

TEST_F(Results, AreUndefinedWhereAFileCannotGiveThem)
{
    const Groups cells = {undefined(2), undefined(1), undefined(9)};
    const Groups nodes = {undefined(12), undefined(4), undefined(12)};
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    for (const char* const interior :
         {"nonuniform List<scalar> \n2\n(\n1\n", "nonuniform List<scalar> \n3\n(\n1\n2\n3\n)\n", "uniform x"}) {
        SCOPED_TRACE(interior);
        writePressure(interior);
        EXPECT_EQ(openCase.values("PRESSURE_E", 1), cells);
        EXPECT_EQ(openCase.values("PRESSURE_N", 1), nodes);
    }
    writePressure("uniform (0 0 0)", "volVectorField");
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), cells);
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), nodes);
    writePressure("nonuniform List<scalar> 0()");
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), nodes);
    std::filesystem::remove(m_folder.path() / "1/p");
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), cells);
}

// The interior stands in front of the patches in a file, so it is good even where the file breaks off behind it.
TEST_F(Results, KeepTheCellsOfAFileThatEndsBehindThem)
{
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    m_folder.write("1/p", foamFile("volScalarField", "p", "internalField uniform 5;\n"));
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{5, 5}, undefined(1), undefined(9)}));
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), (Groups{Values(12, 5.0), Values(4, 5.0), Values(12, 5.0)}));
}

TEST_F(Results, WithoutPatchesShowAnAverageOfTheUndefinedMark)
{
    HostOptions options;
    options.setBool("LOAD_BC_PARTS", false);
    OpenCase openCase(m_folder.path(), options);
    openCase.geometry();
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{1, 3}}));
    const Groups nodes = openCase.values("PRESSURE_N", 1);
    EXPECT_EQ(nodes[0][0], UNDEFINED);
    EXPECT_EQ(nodes[0][1], UNDEFINED / 2);
}

TEST_F(Results, AreEmptyBeforeTheGeometry)
{
    OpenCase openCase(m_folder.path());
    openCase.metaData();
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), Groups(3));
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), Groups(3));
}

TEST_F(Results, DisplaceNodesToThePointsOfTheState)
{
    const auto points = [](int count, double z) {
        std::string text = std::to_string(count) + "\n(\n";
        for (int i = 0; i < count; ++i) {
            text += "(" + std::to_string(i) + " 0 " + std::to_string(z) + ")\n";
        }
        return foamFile("vectorField", "points", text + ")\n");
    };
    m_folder.write("2/polyMesh/points", points(12, 0.5));
    m_folder.write("3/polyMesh/points", points(4, 0.25));
    m_folder.write("4/p", fieldFile("volScalarField", "p", "uniform 0"));
    OpenCase openCase(m_folder.path());
    const HostGeometry& geometry = openCase.geometry();

    // The first state shows the mesh itself.
    const Groups first = openCase.values("POINTS", 1);
    EXPECT_EQ(first, (Groups{geometry.nodeGroups[0].coordinates, geometry.nodeGroups[1].coordinates,
                             geometry.nodeGroups[2].coordinates}));
    const Groups second = openCase.values("POINTS", 2);
    EXPECT_EQ(Values(second[0].begin() + 33, second[0].end()), (Values{11, 0, 0.5}));
    EXPECT_EQ(second[1], (Values{0, 0, 0.5, 3, 0, 0.5, 6, 0, 0.5, 9, 0, 0.5}));
    // Fewer points than the mesh had: the nodes that are gone stay undefined.
    const Groups third = openCase.values("POINTS", 3);
    EXPECT_EQ(third[0].size(), 12U);
    EXPECT_EQ(Values(third[1].begin(), third[1].begin() + 6), (Values{0, 0, 0.25, 3, 0, 0.25}));
    EXPECT_EQ(Values(third[1].begin() + 6, third[1].end()), undefined(6));
    EXPECT_EQ(openCase.result("POINTS", 4), nullptr);
}

TEST_F(Results, IgnoreMappingsBeyondTheirSource)
{
    OpenFoamProvider provider;
    Values target(6, -1.0);
    EXPECT_TRUE(provider.applyNodalDataInFace({1, 2, 3, 4}, target, 2, {1, -1, 2}));
    EXPECT_EQ(target, (Values{3, 4, -1, -1, -1, -1}));
    Values none;
    EXPECT_TRUE(provider.applyNodalDataInFace({1, 2}, none, 3, {0}));
    EXPECT_TRUE(provider.applyNodalDataInFace({1, 2}, target, 0, {0}));
}

double sum(const Values& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0);
}

// The sums are those that the case's own description lists for the values on points.
TEST(SurfaceResults, ComeFromTheStatesOwnFolder)
{
    OpenCase openCase(dataCase("surfaces"));
    openCase.geometry();
    // Folders 0, 10, 2, 6 in text order: the state of time 2 has the id 3.
    const Groups onNodes = openCase.values("PRESSURE_N*", 3);
    ASSERT_EQ(onNodes.size(), 7U + 2U);
    Values sums = {sum(onNodes[7]), sum(onNodes[8])};
    std::ranges::sort(sums);
    EXPECT_NEAR(sums[0], 0.691541, 1e-4);
    EXPECT_NEAR(sums[1], 55.9255, 1e-3);
    // The part has a file of this name too, but one on cells.
    EXPECT_TRUE(std::ranges::all_of(onNodes[0], [](double value) { return value == UNDEFINED; }));
    // Cell results have no values on surfaces, and a result that a state lacks has not even groups there.
    EXPECT_NEAR(sum(openCase.values("PRESSURE_E", 3)[0]), 80.1529, 1e-3);
    EXPECT_EQ(openCase.values("PRESSURE_E", 3)[7][0], UNDEFINED);
    EXPECT_EQ(openCase.values("PRESSURE_N*", 1).size(), 7U);
}

TEST(RegionResults, ComeFromTheSubFoldersOfTheRegions)
{
    OpenCase openCase(dataCase("two_regions"));
    openCase.geometry();
    // Sums by region, in the order in which the folders list; time 1 lacks U of "left".
    for (const auto& [key, state, expected] : std::vector<std::tuple<std::string, int, Values>>{
             {"TEMPERATURE_E", 2, {21693.6, 43848.0, 65361.6}}, {"VELOCITY_E", 2, {28.8 + 144 - 115.2}}}) {
        Values sums;
        for (const Values& values : openCase.values(key, state)) {
            const bool isPart = values.size() >= 72 && values[0] != UNDEFINED;
            if (isPart) {
                sums.push_back(sum(values));
            }
        }
        std::ranges::sort(sums);
        ASSERT_EQ(sums.size(), expected.size()) << key;
        for (std::size_t i = 0; i < sums.size(); ++i) {
            EXPECT_NEAR(sums[i], expected[i], 0.1) << key;
        }
    }
}

} // namespace
