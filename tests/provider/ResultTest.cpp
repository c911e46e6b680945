// SPDX-License-Identifier: MIT
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

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

/// Two cubes with the values 1 and 3. The patch "left side" has 7, the faces of "rest" take the value of their cell.
class Results : public testing::Test
{
protected:
    Results()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure(m_folder, "1");
    }

    TempFolder m_folder;
};

TEST_F(Results, CoverThePartAndItsPatchesButNotFaceZones)
{
    OpenCase openCase(m_folder.path(), settings({{"LOAD_FACE_ZONES", true}}));
    EXPECT_EQ(openCase.geometry().elementGroups.size(), 4U);
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{1, 3}, {7}, {1, 1, 1, 1, 3, 3, 3, 3, 3}}));
    // Nodes on the left side average one face of it and two of the rest, those in the middle two faces of each cell.
    const Values nodes = {3, 2, 3, 3, 2, 3, 3, 2, 3, 3, 2, 3};
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), (Groups{nodes, {3, 3, 3, 3}, nodes}));
    // Undefined values are set first, then replaced by those of the file.
    EXPECT_EQ(openCase.result("PRESSURE_E", 1)->groups[0].calls.operations.size(), 2U);
}

/// A field like that of `writePressure`.
std::string fieldLikePressure(const std::string& name)
{
    return fieldFile("volScalarField", name, "nonuniform List<scalar> \n2\n(\n1\n3\n)\n",
                     {{"left side", "type fixedValue;\n        value uniform 7;"}, {"rest", "type zeroGradient;"}});
}

TEST_F(Results, WithADotInTheNameComeFromThatFile)
{
    m_folder.write("1/alpha.water", fieldLikePressure("alpha.water"));
    m_folder.write("1/alpha.water.orig", fieldFile("volScalarField", "alpha.water", "uniform 9"));
    m_folder.writeGz("2/alpha.water.gz", fieldLikePressure("alpha.water"));
    m_folder.write("3/alpha.water", fieldLikePressure("alpha.water"));
    m_folder.write("4/alpha.water.orig", fieldLikePressure("alpha.water"));
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    for (const int state : {1, 2, 3}) {
        SCOPED_TRACE(state);
        EXPECT_EQ(openCase.values("ALPHA.WATER_E", state), openCase.values("PRESSURE_E", 1));
        EXPECT_EQ(openCase.values("ALPHA.WATER_N", state), openCase.values("PRESSURE_N", 1));
    }
    EXPECT_EQ(openCase.values("ALPHA.WATER_E", 4), undefined({2, 1, 9}));
}

// A field whose file has another name is listed, but its name must not lead to files in other folders.
TEST_F(Results, DoNotComeFromOutsideTheTimeFolder)
{
    m_folder.write("1/x", fieldLikePressure("../p.other"));
    m_folder.write("p.other", fieldLikePressure("../p.other"));
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    EXPECT_EQ(openCase.values("../P.OTHER_E", 1), undefined({2, 1, 9}));
}

TEST_F(Results, OfASurfaceWithADotInTheNameComeFromThatFile)
{
    const std::string surface = "postProcessing/sampleSurface/1/cut/";
    m_folder.write(surface + "points", "3\n(\n(0 0 0)\n(1 0 0)\n(0 1 0)\n)\n");
    m_folder.write(surface + "faces", "1\n(\n3(0 1 2)\n)\n");
    m_folder.write(surface + "faceCentres", "1\n(\n(0.3 0.3 0)\n)\n");
    m_folder.write(surface + "scalarField/alpha.water", "3\n(\n1\n2\n3\n)\n");
    m_folder.writeGz(surface + "scalarField/alpha.air.gz", "3\n(\n4\n5\n6\n)\n");
    m_folder.write(surface + "vectorField/U.air", "3\n(\n(1 0 0)\n(2 0 0)\n(3 0 0)\n)\n");
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    const auto surfaceValues = [&](const char* key) {
        const Groups groups = openCase.values(key, 1);
        return groups.size() == 4 ? groups.back() : Values();
    };
    EXPECT_EQ(surfaceValues("ALPHA.WATER_N*"), (Values{1, 2, 3}));
    EXPECT_EQ(surfaceValues("ALPHA.AIR_N*"), (Values{4, 5, 6}));
    EXPECT_EQ(surfaceValues("U.AIR_N*"), (Values{1, 0, 0, 2, 0, 0, 3, 0, 0}));
}

TEST_F(Results, AreUndefinedInStatesThatLackThem)
{
    m_folder.write("2/U", fieldFile("volVectorField", "U", "uniform (1 2 3)"));
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    EXPECT_EQ(openCase.values("PRESSURE_E", 2), undefined({2, 1, 9}));
    EXPECT_EQ(openCase.values("VELOCITY_N", 1), undefined({36, 12, 36}));
    // If the file has no patches, only the cells have values.
    Groups cellsAlone = undefined({6, 3, 27});
    cellsAlone[0] = {1, 2, 3, 1, 2, 3};
    EXPECT_EQ(openCase.values("VELOCITY_E", 2), cellsAlone);

    HostResult result;
    for (const HostResultSpec& spec : {HostResultSpec(99, 1), HostResultSpec(1, 99), HostResultSpec(-1, 1)}) {
        EXPECT_FALSE(openCase.provider.getResult(spec, &result));
    }
    EXPECT_TRUE(result.groups.empty());
}

TEST_F(Results, AreUndefinedWhereTheFileIsBad)
{
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    const std::string list = "nonuniform List<scalar> ";
    for (const std::string& interior :
         {list + "\n2\n(\n1\n", list + "\n3\n(\n1\n2\n3\n)\n", list + "0()", std::string("uniform x"),
          std::string("uniform (0 0 0)"), std::string("none")}) {
        SCOPED_TRACE(interior);
        writePressure(m_folder, "1", interior, interior.ends_with(" 0)") ? "volVectorField" : "volScalarField");
        if (interior == "none") {
            std::filesystem::remove(m_folder / "1/p");
        }
        // An empty list is not an error: it leaves the cells without values and their nodes undefined.
        EXPECT_TRUE(interior.ends_with("0()") || openCase.values("PRESSURE_E", 1) == undefined({2, 1, 9}));
        EXPECT_EQ(openCase.values("PRESSURE_N", 1), undefined({12, 4, 12}));
    }
}

// The interior comes before the patches, so it is good even if the file ends after it.
TEST_F(Results, KeepTheCellsOfAFileThatEndsAfterThem)
{
    OpenCase openCase(m_folder.path());
    openCase.geometry();
    m_folder.write("1/p", foamtext::header("volScalarField", "p") + "internalField uniform 5;\n");
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{5, 5}, {UNDEFINED}, Values(9, UNDEFINED)}));
    EXPECT_EQ(openCase.values("PRESSURE_N", 1), (Groups{Values(12, 5.0), Values(4, 5.0), Values(12, 5.0)}));
}

// Compatibility (docs/compatibility.md, "averages without patches").
TEST_F(Results, WithoutPatchesAverageTheUndefinedValue)
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
        m_folder.write(time + "/polyMesh/points", foamtext::header("vectorField", "points") + text + ")\n");
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
    // If there are fewer points than in the mesh, the other nodes stay undefined.
    const Groups third = openCase.values("POINTS", 3);
    EXPECT_EQ(third[0].size(), 12U);
    EXPECT_EQ(Values(third[1].begin(), third[1].begin() + 7), (Values{0, 0, 0.5, 3, 0, 0.5, UNDEFINED}));
    EXPECT_EQ(openCase.result("POINTS", 4), nullptr);
}

// The sums come from the tools that wrote the cases. Parts without values are left out: at time 1 only the region
// "right" has a velocity. Surfaces have their own pressure.
TEST(RealResults, ComeFromTheFoldersOfRegionsAndSurfaces)
{
    const auto sums = [](const char* name, const char* key, int state) {
        OpenCase openCase(dataCase(name));
        openCase.geometry();
        const Groups values = openCase.values(key, state);
        std::map<std::string, double> byGroup;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const HostGroup& group = *openCase.metaData().geometryGroups()[i];
            if (group.kind() != HostGroupKind::Boundary && !values[i].empty() && values[i][0] != UNDEFINED) {
                byGroup[group.name] = std::round(std::accumulate(values[i].begin(), values[i].end(), 0.0));
            }
        }
        return byGroup;
    };
    using Sums = std::map<std::string, double>;
    EXPECT_EQ(sums("two_regions", "TEMPERATURE_E", 2),
              (Sums{{"default_region", 65362}, {"left", 21694}, {"right", 43848}}));
    EXPECT_EQ(sums("two_regions", "VELOCITY_E", 2), (Sums{{"right", 58}}));
    EXPECT_EQ(sums("surfaces", "PRESSURE_N*", 3), (Sums{{"middle[Surf]", 56}, {"outlet[Surf]", 1}}));
    EXPECT_EQ(sums("surfaces", "PRESSURE_E", 3), (Sums{{"default_region", 80}}));
}

} // namespace
