// SPDX-License-Identifier: MIT
#include "casemodel/OFReader.h"
#include "records/OFUnit.h"
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>

using foamtext::header;

namespace {

/// What the reader finds in a folder, as hosts see it.
class OFReaderCase : public testing::Test
{
protected:
    OFReaderCase() { writeControlDict(m_folder); }

    void writeGroups(const std::string& meshFolder)
    {
        m_folder.writeGz(meshFolder + "/boundary.gz", boundaryFile({{"in", "patch", 2, 4},
                                                                    {"gone", "wall", 0, 6},
                                                                    {"minus", "wall", -3, 6},
                                                                    {"procBoundary0to1", "processor", 2, 6}}));
        m_folder.write(meshFolder + "/cellZones", zonesFile(false, {{"core", {0}}, {"rim", {1}}}));
        m_folder.write(meshFolder + "/faceZones", zonesFile(true, {{"cut", {0}}}));
    }
    std::string lastErrorOfOpening(const dvn::Str& folder)
    {
        const LogCapture log;
        OFReader reader;
        reader.setLoadBoundariesFlag(true);
        reader.setLoadCellZonesFlag(true);
        EXPECT_FALSE(reader.init(folder));
        return log.errors().back();
    }

    TempFolder m_folder;
};

} // namespace

// Interfaces are hidden. A part with a broken file loses its patches, and ids go on as if it had none.
TEST_F(OFReaderCase, PrefersProcessorFolders)
{
    writeGroups("constant/polyMesh");
    writeGroups("processorData/constant/polyMesh");
    m_folder.write("processor1/constant/polyMesh/boundary", "no header");
    m_folder.write("processor2/constant/x", "");
    m_folder.write("postProcessing/sampleSurface/0/plane/x", "");
    const std::pair<const char*, bool> switches[] = {{"HIDE_PARALLEL_INTERFACES", true},
                                                     {"LOAD_GLOBAL_MESH", false},
                                                     {"LOAD_LOCAL_MESHES", false},
                                                     {"LOAD_FACE_ZONES", true}};
    OpenCase openCase(m_folder.path(), settings({std::begin(switches), std::end(switches)}));
    EXPECT_EQ(openCase.metaData().description, "Parallel Simulation\n");
    const std::string groups = openCase.groups();
    EXPECT_EQ(groups, groups.starts_with("1 processorData")
                          ? "1 processorData < 0 , 2 core < 1 CellZone, 3 rim < 1 CellZone, 4 in < 1 patch, "
                            "5 cut [FZ] < 1 FaceZone, 6 processor1 < 0 "
                          : "1 processor1 < 0 , 2 processorData < 0 , 3 core < 2 CellZone, 4 rim < 2 CellZone, "
                            "5 in < 2 patch, 6 cut [FZ] < 2 FaceZone");
}

TEST_F(OFReaderCase, FallsBackToTheMeshOfTimeZeroWithoutItsGroups)
{
    writeGroups("0/polyMesh");
    EXPECT_EQ(OpenCase(m_folder.path()).groups(), "1 default_region < 0 ");
    // Compatibility (docs/compatibility.md, "time zero mesh").
    m_folder.write("0polyMesh/cellZones", "broken");
    EXPECT_EQ(lastErrorOfOpening(m_folder.str()), "OFReader : Cannot init cell zones. A parsing problem occurred in " +
                                                      (m_folder / "0/polyMesh/cellZones").string() + ".");
}

TEST_F(OFReaderCase, ReportsWhyItDoesNotOpen)
{
    const auto path = [&](const char* relative) { return (m_folder / relative).string(); };
    EXPECT_EQ(lastErrorOfOpening("no\\such"), "OFReader : Failed to open case no/such - file does not exist");
    m_folder.write("constant/polyMesh/boundary", "broken");
    EXPECT_EQ(lastErrorOfOpening(m_folder.str()), "OFReader : Cannot init Boundary. A parsing problem occurred in " +
                                                      path("constant/polyMesh/boundary") + ".");
    std::filesystem::remove_all(m_folder / "constant");
    EXPECT_EQ(lastErrorOfOpening(m_folder.str()),
              "OFReader : Cannot init geometry. Folder " + path("constant") + " does not exist.");
    std::filesystem::remove_all(m_folder / "system");
    EXPECT_EQ(lastErrorOfOpening(m_folder.str()),
              "OFReader : Failed to open case " + m_folder.path().string() + " - could not read system/controlDict");
}

TEST_F(OFReaderCase, TakesTheSurfacesOfTheFirstTimeInTextOrder)
{
    std::filesystem::create_directories(m_folder / "postProcessing/sampleSurface");
    EXPECT_EQ(OpenCase(m_folder.path()).groups(), "") << "no time has surfaces yet";
    m_folder.write("postProcessing/sampleSurface/2/old/x", "");
    m_folder.write("postProcessing/sampleSurface/10/cut/x", "");
    EXPECT_EQ(OpenCase(m_folder.path()).groups(), "1 cut[Surf] < 0 SampledSurface");
}

// Ids follow the text order of the folders whose names begin with a number; the list is sorted by time.
TEST_F(OFReaderCase, TakesStepIndicesFromTheFoldersOrFromTheInterval)
{
    for (const char* const name : {"0", "1", "10", "2", "postProcessing", "dynamicCode", "0.orig", "-1"}) {
        std::filesystem::create_directory(m_folder / name);
    }
    EXPECT_EQ(OpenCase(m_folder.path()).states(),
              "1 Time -1.00000 #0, 2 Time 0.00000 #1, 3 Time 0.00000 #2, 4 Time 1.00000 #3, 6 Time 2.00000 #4, "
              "5 Time 10.00000 #5");
    const TempFolder other;
    std::filesystem::create_directory(other / "0");
    other.write("0.1/uniform/time", header("dictionary", "time") + "index 150;\n");
    other.write("0.2/uniform/time", header("dictionary", "time") + "index -1;\n");
    for (const auto& [interval, step] : {std::pair("20", "40"), {"0.5", "0"}, {"every $n", "2"}}) {
        writeControlDict(other, std::string("writeInterval ") + interval + ";\n");
        EXPECT_EQ(OpenCase(other.path()).states(),
                  std::string("1 Time 0.00000 #0, 2 Time 0.10000 #150, 3 Time 0.20000 #") + step);
    }
}

// Compatibility (docs/compatibility.md, "surface results of rejected folders"). "+" sorts before the digits, so that
// folder comes first, when no state can take its values yet.
TEST_F(OFReaderCase, AddsSurfaceValuesOfRejectedFoldersToTheStateBefore)
{
    for (const char* const file : {"1/cut/scalarField/p", "1/cut/vectorField/U.gz", "1/rim/scalarField/p",
                                   "abc/cut/scalarField/q", "+a/cut/scalarField/lost"}) {
        m_folder.write(std::string("postProcessing/sampleSurface/") + file, "");
    }
    for (const char* const name : {"+a", "0", "1", "abc"}) {
        std::filesystem::create_directory(m_folder / name);
    }
    OpenCase openCase(m_folder.path());
    Texts keys;
    for (const HostResultInfo& result : openCase.metaData().results) {
        keys.push_back(result.key + " " + std::to_string(result.kind) + std::to_string(result.mapping));
    }
    std::ranges::sort(keys);
    EXPECT_EQ(joined(keys), "PRESSURE_N* 00, Q_N* 00, VELOCITY_N* 10");
}

TEST_F(OFReaderCase, ThrowsForAFieldWithoutClass)
{
    m_folder.write("0.5/p", "FoamFile\n{\n    object p;\n}\n");
    try {
        OFReader().init(m_folder.str());
        FAIL() << "nothing thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "map::at:  key not found");
    }
}

// Otherwise many small files that share a base name with a large one would each cost a read of it.
TEST_F(OFReaderCase, OpensOneFilePerBaseName)
{
    m_folder.write("0/a.gz", gzipped(header("volScalarField", "a")).substr(0, 40));
    for (const char* const file : {"0/a.1", "0/a.2", "0/a.3"}) {
        m_folder.write(file, "");
    }
    const LogCapture log;
    EXPECT_EQ(OpenCase(m_folder.path()).results(), "");
    EXPECT_EQ(std::ranges::count_if(log.infos(), [](const std::string& line) { return line.find("damaged") < 99; }), 1);
}

// U.orig and T.0 are copies of U and T. A copy beside its field must not list the field twice.
TEST_F(OFReaderCase, ListsFieldsWithADotButNotCopiesOfFields)
{
    for (const auto& [file, field] : {std::pair("alpha", "alpha"),
                                      {"alpha.air", "alpha.air"},
                                      {"alpha.water", "alpha.water"},
                                      {"alpha.water.orig", "alpha.water"},
                                      {"T.gas.liquid", "T.gas.liquid"},
                                      {"U.orig", "U"},
                                      {"k.air.orig", "k.air"},
                                      {"T.0", "T"}}) {
        m_folder.write(std::string("0/") + file, fieldFile("volScalarField", field, "uniform 0"));
    }
    m_folder.writeGz("0/U.air.gz", fieldFile("volVectorField", "U.air", "uniform (0 0 0)"));
    m_folder.write("0/phi.air", fieldFile("surfaceScalarField", "phi.air", "uniform 0"));
    // Not fields, so their headers may lack anything.
    m_folder.write("0/notes.txt", "FoamFile\n{\n    object notes.txt;\n}\n");
    m_folder.write("0/fields.list", "FoamFile\n{\n    class volScalarField;\n}\n");
    const LogCapture log;
    OFReader reader;
    ASSERT_TRUE(reader.init(m_folder.str()));
    ASSERT_EQ(reader.stateCount(), 1U);
    Texts ids;
    for (std::size_t i = 0; i < reader.state(0).resultCount(); ++i) {
        ids.push_back(reader.state(0).result(i).idString().toUtf8());
    }
    std::ranges::sort(ids);
    EXPECT_EQ(joined(ids), "ALPHA.AIR_E, ALPHA.WATER_E, ALPHA_E, T.GAS.LIQUID_E, U.AIR_E");
    EXPECT_EQ(std::ranges::count(log.infos(), "OFState : Ignoring class::surfaceScalarField foung in " +
                                                  (m_folder / "0/phi.air").string() +
                                                  ", result not supported in this reader"),
              1);
}

// Fields found by their base name keep their places and their classes, even if the object is that of another file.
TEST_F(OFReaderCase, ListsFieldsWithADotAfterTheOthers)
{
    m_folder.write("0/alpha.water", fieldFile("volScalarField", "alpha.water", "uniform 0"));
    m_folder.write("0/p", fieldFile("volScalarField", "p", "uniform 0"));
    m_folder.write("0/U.air", fieldFile("volVectorField", "U.air", "uniform (0 0 0)"));
    m_folder.write("0/x", fieldFile("volVectorField", "alpha.water", "uniform (0 0 0)"));
    OFReader reader;
    ASSERT_TRUE(reader.init(m_folder.str()));
    ASSERT_EQ(reader.state(0).resultCount(), 3U);
    EXPECT_EQ(reader.state(0).result(2).nativeName(), "U.air");
    const std::size_t alpha = reader.state(0).result(0).nativeName() == dvn::Str("p") ? 1 : 0;
    EXPECT_EQ(reader.state(0).result(alpha).className(), "volVectorField");
}

// Files of surface values have no header to name the field.
TEST_F(OFReaderCase, ListsSurfaceValuesByWholeNameUnlessTheBaseNameIsAFile)
{
    std::filesystem::create_directory(m_folder / "0");
    for (const char* const file : {"alpha.air", "alpha.water", "U.orig", "U", "p.orig", "p.gz", "beta.air.gz"}) {
        m_folder.write(std::string("postProcessing/sampleSurface/0/cut/scalarField/") + file, "");
    }
    OFReader reader;
    ASSERT_TRUE(reader.init(m_folder.str()));
    Texts names;
    for (std::size_t i = 0; i < reader.state(0).resultCount(); ++i) {
        names.push_back(reader.state(0).result(i).nativeName().toUtf8());
    }
    std::ranges::sort(names);
    EXPECT_EQ(joined(names), "U, U, alpha.air, alpha.water, beta.air, p, p");
}

TEST_F(OFReaderCase, FindsSurfaceValuesOfALaterTime)
{
    std::filesystem::create_directory(m_folder / "0");
    OFReader reader;
    ASSERT_TRUE(reader.init(m_folder.str()));
    m_folder.write("postProcessing/sampleSurface/1/cut/scalarField/p", "");
    std::filesystem::create_directory(m_folder / "1");
    const OFState* const added = reader.stateById(reader.addState("1"));
    ASSERT_TRUE(added != nullptr && added->resultCount() == 1);
    EXPECT_EQ(added->result(0).idString(), "PRESSURE_N*");
}

// Placeholders in the class name are replaced like those of the message.
TEST_F(OFReaderCase, ReportsAForeignClassInABoundedLine)
{
    std::string name;
    for (int i = 0; i < 1500; ++i) {
        name += "%1";
    }
    m_folder.write("0/x", header(name, "x"));
    const LogCapture log;
    EXPECT_EQ(OpenCase(m_folder.path()).results(), "");
    EXPECT_TRUE(std::ranges::all_of(
        log.infos(), [&](const std::string& line) { return line.size() < 200 * m_folder.path().string().size(); }));
}

TEST(ResultNames, AreReadAsPairsSkippingIncompleteOnes)
{
    dvn::Str text(" U = Speed ; p=;k;T=Heat;T=Warmth;;a=b=c\n");
    EXPECT_EQ(OFReader().buildResultsNamesMap(text),
              (std::map<dvn::Str, dvn::Str>{{"U", "Speed"}, {"T", "Warmth"}, {"a", "b"}}));
}

TEST(OFUnit, TranslatesADimensionsLine)
{
    const auto translated = [](const char* line) {
        return OFUnit::fromString(dvn::Str(line).split(" ")).translate().toStdString();
    };
    EXPECT_EQ(translated("dimensions [1 -1 -2 2 -3 0 0];"), "Kg m-1 s-2 K2 mol-3 ");
    EXPECT_EQ(translated("dimensions [0 2 -2 0 0];"), "DIMENSIONLESS");
    EXPECT_EQ(translated("dimensions [ 0 2 -2 0 0 0 0];"), "DIMENSIONLESS");
    // Compatibility (docs/compatibility.md, "last dimension exponent").
    EXPECT_EQ(translated("dimensions [0 0 0 0 0 -1 2];"), "A-1 cd2 ");
}
