// SPDX-License-Identifier: MIT
#include "casemodel/OFReader.h"
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

using foamtext::header;
using Values = std::vector<double>;

constexpr double NO_VALUE = 1.7976931348623157e308;

// A square and a triangle beside it:
//
//     3---2.
//     |   | 4
//     0---1'
const std::string POINTS = "\n5\n(\n(0 0 0)\n(1 0 0)\n(1 1 0)\n(0 1 0)\n(2 0.5 0)\n)\n";
const std::string FACES = "\n2\n(\n4(0 1 2 3)\n3(1 4 2)\n)\n";

/// Two cubes with p at the time 1, and surfaces of several functions.
class SampledSurfaces : public testing::Test
{
protected:
    SampledSurfaces()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure(m_folder, "1");
    }

    void writeSurface(const std::string& surface, const std::string& points = POINTS,
                      const std::string& faces = FACES) const
    {
        writeFile(surface + "/points", points);
        writeFile(surface + "/faces", faces);
    }
    void writeFile(const std::string& path, const std::string& text) const
    {
        m_folder.write("postProcessing/" + path, text);
    }
    void writeGz(const std::string& path, const std::string& text) const
    {
        m_folder.writeGz("postProcessing/" + path, text);
    }

    const std::filesystem::path& path() const { return m_folder.path(); }

    TempFolder m_folder;
    const HostOptions m_extended = settings({{"EXTENDED_READING", true}, {"LOAD_BC_PARTS", false}});
};

/// What the host gets for the last group, a surface.
Values valuesOfLast(OpenCase& openCase, const std::string& key, int stateId = 1)
{
    const std::vector<Values> groups = openCase.values(key, stateId);
    return groups.empty() ? Values() : groups.back();
}

Texts keysOf(OpenCase& openCase)
{
    Texts keys;
    for (const HostResultInfo& result : openCase.metaData().results) {
        keys.push_back(result.key);
    }
    std::ranges::sort(keys);
    return keys;
}

TEST_F(SampledSurfaces, HaveTrianglesForPolygonsAndValuesOfFacesOrPoints)
{
    writeSurface("cuts/1/roof");
    // As many as faces, which makes them part of the field on cells.
    writeFile("cuts/1/roof/scalarField/p", "\n2\n(\n7\n9\n)\n");
    writeFile("cuts/1/roof/scalarField/alpha.air", "\n2{0.5}");
    writeGz("cuts/1/roof/vectorField/V.gz", header("vectorField", "V") + "\n2((1 2 3) (4 5 6))\n");
    writeFile("cuts/1/roof/symmTensorField/R", "\n2\n(\n(1 2 3 4 5 6)\n(7 8 9 10 11 12)\n)\n");
    writeFile("cuts/1/roof/tensorField/G", "\n2\n(\n(1 2 3 4 5 6 7 8 9)\n(0 0 0 0 0 0 0 0 0)\n)\n");
    // As many as points.
    writeFile("cuts/1/roof/scalarField/T", "5(1 2 3 4 5)");
    writeFile("cuts/1/roof/sphericalTensorField/I", "5{(2)}");
    OpenCase openCase(path(), m_extended);
    const HostElementGroup& elements = openCase.geometry().elementGroups.back();
    EXPECT_EQ(elements.types, std::vector<int>(3, DDP_TRIANGLE));
    EXPECT_EQ(elements.connectivity, (std::vector<int>{0, 1, 2, 0, 2, 3, 1, 4, 2}));
    EXPECT_EQ(keysOf(openCase),
              (Texts{"ALPHA.AIR_E", "G_E", "I_N*", "PRESSURE_E", "PRESSURE_N", "R_E", "TEMPERATURE_N*", "V_E"}));
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (std::vector<Values>{{1, 3}, {7, 7, 9}}));
    EXPECT_EQ(valuesOfLast(openCase, "ALPHA.AIR_E"), (Values{0.5, 0.5, 0.5}));
    EXPECT_EQ(valuesOfLast(openCase, "V_E"), (Values{1, 2, 3, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(valuesOfLast(openCase, "R_E"), (Values{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(valuesOfLast(openCase, "G_E"), (Values{1, 3, 5, 5, 7, 9, 1, 3, 5, 5, 7, 9, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(valuesOfLast(openCase, "TEMPERATURE_N*"), (Values{1, 2, 3, 4, 5}));
    const Values identity = {2, 0, 0, 2, 0, 2};
    Values identities;
    for (int i = 0; i < 5; ++i) {
        identities.insert(identities.end(), identity.begin(), identity.end());
    }
    EXPECT_EQ(valuesOfLast(openCase, "I_N*"), identities);
    EXPECT_EQ(valuesOfLast(openCase, "PRESSURE_N"), Values(5, NO_VALUE));
    // The result of the cells and the surface is one, and a surface has no averages of its own.
    OFReader reader;
    reader.setReading(Reading::Extended);
    ASSERT_TRUE(reader.init(m_folder.str()));
    EXPECT_EQ(reader.state(0).resultCount(), 7U);
}

TEST_F(SampledSurfaces, WithoutValuesThatFitHaveNoResults)
{
    writeSurface("cuts/1/roof");
    for (const char* const name : {"short", "p.orig", "q~", "empty", "text"}) {
        writeFile(std::string("cuts/1/roof/scalarField/") + name, "\n2\n(\n7\n9\n)\n");
    }
    writeFile("cuts/1/roof/scalarField/short", "\n4\n(\n1\n2\n3\n4\n)\n");
    writeFile("cuts/1/roof/scalarField/empty", "\n0()\n");
    writeFile("cuts/1/roof/scalarField/text", "none");
    writeFile("cuts/1/roof/scalarField/folder/p", "\n2\n(\n7\n9\n)\n");
    writeSurface("cuts/1/nothing", "\n0()\n", "\n0()\n");
    writeFile("cuts/1/nothing/scalarField/T", "\n0()\n");
    // The field of this name on the cells is a scalar.
    writeFile("cuts/1/roof/vectorField/p", "2((1 2 3) (4 5 6))");
    // The count fits, but there are other values than that.
    writeFile("cuts/1/roof/scalarField/broken", "\n2\n(\n7\nx\n)\n");
    const LogCapture log;
    OpenCase openCase(path(), m_extended);
    openCase.geometry();
    EXPECT_EQ(keysOf(openCase), (Texts{"BROKEN_E", "PRESSURE_E", "PRESSURE_N"}));
    EXPECT_EQ(valuesOfLast(openCase, "BROKEN_E"), Values(3, NO_VALUE));
    EXPECT_EQ(valuesOfLast(openCase, "PRESSURE_E"), Values(3, NO_VALUE));
    EXPECT_EQ(log.errors(), Texts{"OFFile : The values of a sampled surface cannot be read from " +
                                  (path() / "postProcessing/cuts/1/roof/scalarField/broken").string()});
}

TEST_F(SampledSurfaces, OfAllFunctionsAndTimesAreListedOnce)
{
    // Later in the order of names, but earlier in time.
    writeSurface("zCuts/10/b", "\n3((9 9 9) (1 0 0) (0 1 0))", "\n1(3(0 1 2))");
    writeSurface("zCuts/2/b");
    writeSurface("zCuts/10/a");
    writeGz("sampleSurface/1/plane/points.gz", header("vectorField", "points") + POINTS);
    writeFile("sampleSurface/1/plane/faces", header("faceList", "faces") + FACES);
    writeSurface("cuts/solid/1/wall");
    writeSurface("cuts/latest/roof");
    writeFile("cuts/1/noFaces/points", POINTS);
    writeFile("probes/0/p", "# Probe 0 (0 0 0)\n");
    OpenCase openCase(path(), m_extended);
    EXPECT_EQ(openCase.groups(),
              "1 default_region < 0 , 2 z %1 < 1 CellZone, 3 cuts/solid/wall[Surf] < 0 SampledSurface, 4 plane[Surf] < "
              "0 SampledSurface, 5 zCuts/a[Surf] < 0 SampledSurface, 6 zCuts/b[Surf] < 0 SampledSurface");
    const auto& groups = openCase.geometry().nodeGroups;
    EXPECT_EQ(groups.back().nodeCount(), 5U);
    EXPECT_EQ(groups[groups.size() - 3].nodeCount(), 5U);
}

TEST_F(SampledSurfaces, ThatChangeHaveNoValuesAtThatTime)
{
    writePressure(m_folder, "2");
    writeSurface("cuts/1/iso");
    writeSurface("cuts/2/iso", "\n3((0 0 0) (1 0 0) (0 1 0))", "\n1(3(0 1 2))");
    writeFile("cuts/1/iso/scalarField/p", "5(1 2 3 4 5)");
    writeFile("cuts/2/iso/scalarField/p", "3(1 2 3)");
    writeFile("cuts/1/iso/scalarField/q", "2(7 9)");
    writeFile("cuts/2/iso/scalarField/q", "1(7)");
    OpenCase openCase(path(), m_extended);
    openCase.geometry();
    const LogCapture log;
    EXPECT_EQ(valuesOfLast(openCase, "PRESSURE_N*", 1), (Values{1, 2, 3, 4, 5}));
    EXPECT_EQ(valuesOfLast(openCase, "PRESSURE_N*", 2), Values(5, NO_VALUE));
    EXPECT_EQ(valuesOfLast(openCase, "PRESSURE_E", 2), Values(3, NO_VALUE)) << "p is on nodes";
    const std::string root = (path() / "postProcessing/cuts/").string();
    const Texts infos = log.infos();
    EXPECT_EQ(std::ranges::count(infos, "SampledSurface : The surface in " + root +
                                            "2/iso has other points or faces than that in " + root +
                                            "1/iso, which is shown. Its values are undefined."),
              1);
    EXPECT_EQ(valuesOfLast(openCase, "Q_E", 1), (Values{7, 7, 9}));
    EXPECT_EQ(valuesOfLast(openCase, "Q_E", 2), Values(3, NO_VALUE));
    // The cells have p too, but their values are not those of nodes.
    EXPECT_EQ(openCase.values("PRESSURE_N*", 1).front(), Values(12, NO_VALUE));
    EXPECT_EQ(log.errors(), Texts());
}

TEST_F(SampledSurfaces, OfATimeThatIsAddedLaterHaveTheirValues)
{
    writeSurface("cuts/1/roof");
    OpenCase openCase(path(), m_extended);
    openCase.geometry();
    writeSurface("cuts/2/roof");
    writeFile("cuts/2/roof/scalarField/p", "2(7 9)");
    writePressure(m_folder, "2");
    EXPECT_EQ(openCase.poll(), "add 1002 Time 2.00000 #1");
    EXPECT_EQ(valuesOfLast(openCase, "PRESSURE_E", 1002), (Values{7, 7, 9}));
}

/// All that the host gets for each surface of a case: its nodes and elements, and its values by key and state.
std::map<std::string, std::vector<Values>> deliveredSurfaces(const std::string& name, const HostOptions& options)
{
    OpenCase openCase(dataCase(name), options);
    const HostGeometry& geometry = openCase.geometry();
    std::map<std::string, std::vector<Values>> surfaces;
    std::size_t place = 0;
    for (const HostGroup& group : openCase.metaData().groups) {
        if (group.type() == "SampledSurface") {
            std::vector<Values>& delivered = surfaces[group.name];
            const std::vector<int>& labels = geometry.elementGroups[place].connectivity;
            delivered = {geometry.nodeGroups[place].coordinates, Values(labels.begin(), labels.end())};
            for (const std::string& key : keysOf(openCase)) {
                for (const HostState& state : openCase.metaData().states) {
                    const std::vector<Values> values = openCase.values(key, state.id);
                    // A state that lacks the result gives none to surfaces.
                    delivered.push_back(place < values.size() ? values[place] : Values());
                }
            }
        }
        ++place;
    }
    return surfaces;
}

// Triangles with values on their nodes are what plain reading knows, too.
TEST(SampledSurfacesOfARealCase, AreTheSameInPlainAndExtendedReading)
{
    const auto plain = deliveredSurfaces("surfaces", {});
    ASSERT_EQ(plain.size(), 2U);
    EXPECT_GT(plain.at("outlet[Surf]").front().size(), 0U);
    EXPECT_EQ(plain, deliveredSurfaces("surfaces", settings({{"EXTENDED_READING", true}})));
}

} // namespace
