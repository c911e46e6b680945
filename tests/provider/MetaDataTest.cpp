// SPDX-License-Identifier: MIT
#include "support/OpenCase.h"

#include <gtest/gtest.h>

namespace {

TEST(MetaData, DeclaresEachGroupByCallsInAFixedOrder)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    folder.write("postProcessing/sampleSurface/0/cut/x", "");
    writePressure(folder, "0");
    OpenCase openCase(folder.path(), settings({{"LOAD_FACE_ZONES", true}}));
    const HostMetaData& description = openCase.metaData();
    EXPECT_EQ(joined(description.calls),
              "setSimulationInfo(4, 0), setGeometryMode(0), addGroup(1), "
              "addGroup(2), setParentPart(2, 1), setBoundaryFlag(2, 0), setGroupProperty(2, type), "
              "addGroup(3), setParentPart(3, 1), setBoundaryFlag(3, 1), setGroupProperty(3, type), "
              "addGroup(4), setParentPart(4, 1), setBoundaryFlag(4, 1), setGroupProperty(4, type), "
              "addGroup(5), setParentPart(5, 1), setBoundaryFlag(5, 0), setGroupProperty(5, type), "
              "addGroup(6), setBoundaryFlag(6, 0), setGroupProperty(6, type), "
              "addState(1), addResult(0, 1, 1), addResult(0, 2, 0)");
    EXPECT_EQ(openCase.groups(), "1 default_region < 0 , 2 z %1 < 1 CellZone, 3 left side < 1 patch, "
                                 "4 rest < 1 wall, 5 inner [FZ] < 1 FaceZone, 6 cut[Surf] < 0 SampledSurface");
    EXPECT_EQ(openCase.results(), "1 Pressure PRESSURE_E 010 m s-1 , 2 Pressure [node] PRESSURE_N 000 m s-1 ");
    EXPECT_EQ(description.title, folder.path().filename().string());
    EXPECT_EQ(description.description, "Single-Region Simulation");
}

TEST(MetaData, NumbersTheGroupsOfEachPartAfterThePart)
{
    const TempFolder folder;
    writeControlDict(folder);
    for (const char* const part : {"processor0", "processor1"}) {
        writeTwoCubes(folder, std::string(part) + "/constant/polyMesh");
    }
    std::filesystem::remove(folder.path() / "processor1/constant/polyMesh/cellZones");
    OpenCase openCase(folder.path(), settings({{"LOAD_FACE_ZONES", true}}));
    const std::string declared = openCase.groups();
    // Folders are listed in any order. The part without a cell zone is declared as a part, the other as a group.
    EXPECT_EQ(declared, declared.starts_with("1 processor0")
                            ? "1 processor0 < 0 , 2 z %1 < 1 CellZone, 3 left side < 1 patch, 4 rest < 1 wall, "
                              "5 inner [FZ] < 1 FaceZone, 6 processor1 < 0 , 7 left side < 6 patch, 8 rest < 6 wall, "
                              "9 inner [FZ] < 6 FaceZone"
                            : "1 processor1 < 0 , 2 left side < 1 patch, 3 rest < 1 wall, 4 inner [FZ] < 1 FaceZone, "
                              "5 processor0 < 0 , 6 z %1 < 5 CellZone, 7 left side < 5 patch, 8 rest < 5 wall, "
                              "9 inner [FZ] < 5 FaceZone");
}

// Compatibility (docs/compatibility.md, "encoded twice").
TEST(MetaData, SendsNonAsciiNamesInTheEncodingOfEachField)
{
    const std::string name = "l\xC3\xA9 %1";
    const std::string twice = "l\xC3\x83\xC2\xA9 %1";
    const TempFolder folder;
    writeControlDict(folder);
    const std::string mesh = "processor" + name + "/constant/polyMesh";
    folder.write(mesh + "/boundary", boundaryFile({{name, "patch", 1, 0}}));
    folder.write("0/f", fieldFile("volScalarField", name, "uniform 0"));
    HostOptions options;
    options.setString("RESULTS_NAMES_MAPPING", name + "=" + name + " shown");
    {
        OpenCase openCase(folder.path(), options);
        const HostMetaData& description = openCase.metaData();
        EXPECT_EQ(openCase.groups(), "1 processor" + name + " < 0 , 2 " + name + " < 1 patch");
        EXPECT_EQ(description.results[0].name, name + " shown");
        EXPECT_EQ(description.results[0].key, "L\xC3\x83\xC2\xA9 %1_E");
    }
    // With zones, the name of the part is encoded twice.
    folder.write(mesh + "/cellZones", zonesFile(false, {{name, {0}}}));
    OpenCase openCase(folder.path(), options);
    EXPECT_EQ(openCase.groups(),
              "1 processor" + twice + " < 0 , 2 " + name + " < 1 CellZone, 3 " + name + " < 1 patch");
}

// Fields on faces, and those in other sub-folders, are not results.
TEST(MetaData, NumbersResultsInOrderOfFirstAppearance)
{
    const TempFolder folder;
    writeControlDict(folder);
    folder.writeGz("0/T.gz", fieldFile("volScalarField", "T", "uniform 0"));
    folder.write("0/phi", fieldFile("surfaceScalarField", "phi", "uniform 0"));
    folder.write("0/cloud/x", fieldFile("volScalarField", "x", "uniform 0"));
    folder.write("1/T", fieldFile("volVectorField", "T", "uniform 0"));
    folder.write("2/polyMesh/points", foamtext::header("vectorField", "points"));
    folder.write("3/s", fieldFile("volTensorField", "s", "uniform 0"));
    folder.write("4/v", foamtext::header("pointVectorField", "alpha.v") + "dimensions [0 1];\n");
    OpenCase openCase(folder.path(), settings({{"NODE_AVG_RES", false}}));
    EXPECT_EQ(openCase.metaData().stateMode, 4);
    EXPECT_EQ(openCase.results(), "1 Temperature TEMPERATURE_E 010 m s-1 , 2 points POINTS 201 m , "
                                  "3 s S_E 410 m s-1 , 4 alpha.v [N] ALPHA.V_N* 100 DIMENSIONLESS");
}

} // namespace
