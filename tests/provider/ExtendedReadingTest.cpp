// SPDX-License-Identifier: MIT
//
// What a host gets that asks for extended reading: cases as OpenFOAM and its users write them.

#include "foamfile/ExtendedField.h"
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using foamtext::header;

namespace {

using Values = std::vector<double>;
using Groups = std::vector<Values>;

constexpr double UNSET = 1.7976931348623157e308;

/// The patches of two cubes: the face x = 0, the faces of cell 0 at its sides, and all other faces of cell 1.
const char* const BOUNDARY = "( // no count\n"
                             " in { type patch; inGroups 2(open flow); nFaces 1; startFace 1; }\n"
                             " side { type wall; nFaces 4; startFace 2; }\n"
                             " rest { type empty; nFaces 5; startFace 6; } )\n";

class ExtendedReading : public testing::Test
{
protected:
    ExtendedReading()
    {
        writeControlDict(m_folder);
        writeCubes("constant/polyMesh");
    }

    void writeCubes(const std::string& meshFolder)
    {
        writeTwoCubes(m_folder, meshFolder);
        m_folder.write(meshFolder + "/boundary", header("polyBoundaryMesh", "boundary") + BOUNDARY);
        std::filesystem::remove(m_folder / (meshFolder + "/cellZones"));
    }
    void writeVelocity(const std::string& time, const std::string& patches,
                       const std::string& interior = "nonuniform List<vector> 2((1 2 3) (4 5 6))")
    {
        m_folder.write(time + "/U", header("volVectorField", "U") + "dimensions [ 0 1 -1 0 0 0 0 ];\ninternalField " +
                                        interior + ";\nboundaryField\n{\n" + patches + "\n}\n");
    }
    void writeScalar(const std::string& path, const std::string& interior)
    {
        m_folder.write(path, fieldFile("volScalarField", "p", interior, {{"\".*\"", "type zeroGradient;"}}));
    }
    static HostOptions extended(std::vector<std::pair<std::string, bool>> switches = {})
    {
        switches.emplace_back("EXTENDED_READING", true);
        return settings(switches);
    }
    Groups valuesOf(const std::string& key, int stateId, const HostOptions& options = extended())
    {
        OpenCase openCase(m_folder.path(), options);
        openCase.geometry();
        return openCase.values(key, stateId);
    }

    TempFolder m_folder;
};

Values undefined(std::size_t count)
{
    return Values(count, UNSET);
}

} // namespace

TEST_F(ExtendedReading, PatchesWithoutValuesHaveThoseOfTheirType)
{
    // The face of the patch looks towards -x, and its cell has (1 2 3).
    const std::pair<const char*, Values> types[] = {
        {"type noSlip;", {0, 0, 0}},
        {"type slip;", {0, 2, 3}},
        {"type symmetryPlane;", {0, 2, 3}},
        {"type fixedNormalSlip; fixedValue uniform (9 9 9);", {9, 2, 3}},
        {"type wedge;", {1, 2, 3}},
        {"type cyclic;", {1, 2, 3}},
        {"type zeroGradient; value uniform (9 9 9);", {1, 2, 3}},
        {"type processor; value nonuniform List<vector> 1{( 7 8 9 )};", {7, 8, 9}},
        {"type inletOutlet; inletValue uniform (4 5 6);", {4, 5, 6}},
        {"type uniformFixedValue; uniformValue (1 1 1); value uniform (7 8 9);", {7, 8, 9}},
        {"type uniformFixedValue; uniformValue (1 1 1);", {1, 1, 1}},
        {"type uniformFixedValue; uniformValue constant $item; item (1 1 1);", undefined(3)},
        {"item (1 1 1); type uniformFixedValue; uniformValue constant $item;", {1, 1, 1}},
        {"type uniformFixedValue; uniformValue table ((0 (1 2 3)) (2 (3 4 5)) (9 (0 0 0)));", {2, 3, 4}},
        {"type uniformFixedValue; uniformValue table 2 ((0 (1 2 3)) (0.5 (7 8 9)));", {7, 8, 9}},
        {"type uniformFixedValue; uniformValue table ((0 (1 2 3)) (0.5 (7 8)));", undefined(3)},
        {"type uniformFixedValue; uniformValue table ((0 (1 2 3)) (0.5 ()));", undefined(3)},
        {"type mixed; refValue uniform (0 0 0); value $vector;", {7, 8, 9}},
        {"type fixedValue; value uniform (1 $number nan);", {1, 5, std::nan("")}},
        {"type fixedValue;", undefined(3)},
        {"type fixedValue; value uniform (1 2);", undefined(3)},
        {"type fixedValue; value uniform;", undefined(3)},
        {"type fixedValue; value nonuniform;", undefined(3)},
        {"type fixedValue; value nonuniform List<vector>;", undefined(3)},
        {"type fixedValue; value uniform $missing;", undefined(3)},
        {"type fixedValue; value nonuniform List<vector> 2((1 2 3) (4 5 6));", undefined(3)},
        {"type cyclic; value uniform (1 2 x);", undefined(3)},
        {"type someoneElses;", undefined(3)},
    };
    for (const auto& [entries, expected] : types) {
        writeVelocity("1", "vector uniform (7 8 9); number 5; in { " + std::string(entries) + " }");
        const Groups groups = valuesOf("VELOCITY_E", 1);
        ASSERT_EQ(groups.size(), 4U) << entries;
        EXPECT_EQ(groups[0], (Values{1, 2, 3, 4, 5, 6})) << entries;
        ASSERT_EQ(groups[1].size(), 3U) << entries;
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_TRUE(groups[1][k] == expected[k] || (std::isnan(expected[k]) && std::isnan(groups[1][k])))
                << entries << " has " << groups[1][k];
        }
        EXPECT_EQ(groups[2], undefined(12));
        // Nobody writes an entry for the patch at the front and back.
        EXPECT_EQ(Values(groups[3].begin(), groups[3].begin() + 3), (Values{4, 5, 6}));
    }
}

TEST_F(ExtendedReading, AReferenceLevelIsAddedToAllValues)
{
    writeVelocity("1", "in { type noSlip; }", "uniform (1 2 3); referenceLevel (1 0 10)");
    const Groups groups = valuesOf("VELOCITY_E", 1);
    EXPECT_EQ(groups.at(0), (Values{2, 2, 13, 2, 2, 13}));
    EXPECT_EQ(groups.at(1), (Values{1, 0, 10}));
    EXPECT_EQ(groups.at(2), undefined(12));
}

TEST_F(ExtendedReading, CyclicPatchesInterpolateToTheCellBeyond)
{
    // The face x = 0 of cell 0 continues in the face y = 1 of cell 1, so x beyond it is -y here, and y is x.
    const auto patch = [](const char* name, const char* neighbour, int face) {
        return std::string(name) + " { type cyclic; neighbourPatch " + neighbour + "; nFaces 1; startFace " +
               std::to_string(face) + "; }\n";
    };
    const auto boundary = [this](const std::string& patches) {
        m_folder.write("constant/polyMesh/boundary", header("polyBoundaryMesh", "boundary") + "(" + patches + ")");
    };
    const std::string first = patch("in", "back", 1);
    boundary(first + patch("back", "in", 8));
    const char* const fields[] = {"in { type cyclic; }", "\".*\" { type cyclic; value uniform (9 9 9); }", ""};
    for (const char* const patches : fields) {
        writeVelocity("1", patches);
        EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(1), (Values{3, -1, 4.5})) << patches;
    }
    EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(2), (Values{1, 3, 4.5}));
    m_folder.write("1/p", fieldFile("volScalarField", "p", "nonuniform List<scalar> 2(1 4)"));
    EXPECT_EQ(valuesOf("PRESSURE_E", 1).at(1), (Values{2.5}));
    m_folder.write("1/a",
                   fieldFile("volSymmTensorField", "a", "nonuniform List<symmTensor> 2((1 2 3 4 5 6) (6 5 4 3 2 1))"));
    EXPECT_EQ(valuesOf("A_E", 1).at(1), (Values{2, -1.5, 2.5, 5, 0.5, 3.5}));

    // What continues in a patch that is not there has the value of its cell, or that of the file. Only the type
    // `cyclic` interpolates.
    for (const auto& [type, hasNeighbour] : {std::pair("cyclic", false), std::pair("jumpCyclic", true)}) {
        boundary(first + (hasNeighbour ? patch("back", "in", 8) : std::string()));
        writeVelocity("1", "in { type " + std::string(type) + "; }");
        EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(1), (Values{1, 2, 3})) << type;
        writeVelocity("1", "in { type " + std::string(type) + "; value uniform (9 9 9); }");
        EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(1), (Values{9, 9, 9})) << type;
    }
}

TEST_F(ExtendedReading, PatchesAreFoundByNameThenGroupThenExpression)
{
    const auto entry = [](const char* name, int value) {
        return std::string(name) + " { type fixedValue; value uniform (" + std::to_string(value) + " 0 0); }\n";
    };
    const std::string expressions = entry("\"i.*\"", 1) + entry("\"(in|out)\"", 2) + entry("\"n.*\"", 3);
    const std::pair<std::string, double> files[] = {
        {expressions + entry("flow", 4) + entry("open", 5) + entry("in", 6), 6},
        {entry("open", 5) + entry("flow", 4) + expressions, 4},
        {expressions, 2},
        {entry("in", 6) + entry("in", 7), 7},
        {"#include \"more\"\n" + entry("\"rest\"", 1), 8},
    };
    m_folder.write("1/more", entry("in", 8));
    for (const auto& [patches, expected] : files) {
        writeVelocity("1", patches);
        EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(1).at(0), expected) << patches;
    }
    // Its type makes a patch member of a group only where OpenFOAM has it so: a wall, but not a "patch".
    writeVelocity("1", entry("patch", 9) + entry("wall", 8) + entry("\".*\"", 1));
    EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(1).at(0), 1);
    EXPECT_EQ(valuesOf("VELOCITY_E", 1).at(2).at(0), 8);
    // The patch "rest" is empty, so its field is too, and the expression is meant for others.
    writeVelocity("1", entry("\".*\"", 9));
    const Groups groups = valuesOf("VELOCITY_E", 1);
    EXPECT_EQ(groups.at(1).at(0), 9);
    EXPECT_EQ(groups.at(3).at(0), 4);
}

// Each of these once cost the patch that has it and all after it.
TEST_F(ExtendedReading, ListsThatAreNotValuesArePassedOver)
{
    const std::string many = "12((0 0) (1 1) (2 2) (3 3) (4 4) (5 5) (6 6) (7 7) (8 8) (9 9) (10 10) (11 11))";
    const std::string lists[] = {"table " + many, "names 12(a b c d e f g h i j k l)", "more 12{(1 0 0)}",
                                 "map List<label> 12{3}", "words List<word> 12(a b c d e f g h i j k l)"};
    for (const std::string& list : lists) {
        for (const char* const format : {"ascii", "binary"}) {
            m_folder.write("1/U",
                           header("volVectorField", "U", format) +
                               "dimensions [0 1 -1 0 0 0 0];\ninternalField uniform (1 2 3);\nboundaryField { in { "
                               "type other; coeffs " +
                               list + "; value uniform (7 8 9); } side { type noSlip; } }");
            const Groups groups = valuesOf("VELOCITY_E", 1);
            EXPECT_EQ(groups.at(1), (Values{7, 8, 9})) << list << format;
            EXPECT_EQ(groups.at(2), Values(12, 0)) << list << format;
        }
    }
}

TEST_F(ExtendedReading, APlainFileWinsOverACompressedOne)
{
    writeScalar("1/p", "uniform 7");
    m_folder.writeGz("1/p.gz", fieldFile("volScalarField", "p", "uniform 70"));
    EXPECT_EQ(valuesOf("PRESSURE_E", 1).at(0), (Values{7, 7}));
}

TEST_F(ExtendedReading, AveragesLeaveOutEmptyPatchesAndWorkWithoutPatches)
{
    m_folder.write("1/p", fieldFile("volScalarField", "p", "nonuniform List<scalar> 2(1 3)",
                                    {{"in", "type fixedValue; value uniform 7;"}, {"side", "type zeroGradient;"}}));
    // Four nodes are on the patch "in", with two faces of "side" each; of the nodes of cell 1 the left ones are on
    // "side", and the right ones only on the empty patch.
    const Values nodes = {3, 1, 3, 3, 1, 3, 3, 1, 3, 3, 1, 3};
    EXPECT_EQ(valuesOf("PRESSURE_N", 1).at(0), nodes);
    const Values fromCells = {1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3};
    EXPECT_EQ(valuesOf("PRESSURE_N", 1, extended({{"LOAD_BC_PARTS", false}})), Groups{fromCells});
}

TEST_F(ExtendedReading, TensorsAreSixNumbersAndInternalFieldsHaveNoPatches)
{
    struct Form
    {
        const char* className;
        const char* interior;
        Values expected;
    };
    const Form forms[] = {
        {"volSymmTensorField",
         "internalField nonuniform List<symmTensor> 2((1 2 3 4 5 6) (6 5 4 3 2 1));",
         {1, 2, 3, 4, 5, 6, 6, 5, 4, 3, 2, 1}},
        {"volTensorField", "internalField uniform (1 2 3 4 5 6 7 8 9);", {1, 3, 5, 5, 7, 9, 1, 3, 5, 5, 7, 9}},
        {"volSphericalTensorField",
         "internalField nonuniform List<sphericalTensor> 2((2) (3));",
         {2, 0, 0, 2, 0, 2, 3, 0, 0, 3, 0, 3}},
        {"volScalarField::Internal", "value nonuniform List<scalar> 2(8 9);", {8, 9}},
    };
    for (const Form& form : forms) {
        m_folder.write("1/a", header(form.className, "other") + "dimensions [0 0 0 0 0 0 0];\n" + form.interior +
                                  "\nboundaryField { side { type slip; } }\n");
        const Groups groups = valuesOf("A_E", 1);
        ASSERT_EQ(groups.size(), 4U) << form.className;
        EXPECT_EQ(groups[0], form.expected) << form.className;
        EXPECT_EQ(groups[1], undefined(groups[1].size())) << form.className;
    }
}

TEST_F(ExtendedReading, TimesAndFieldsGoByTheNamesOfTheirFiles)
{
    for (const char* const path :
         {"0/p", "0/p.orig", "0/q", "0/Q", "0.orig/p", "3abc/p", "1e-1/beta.gas", "1e-1/q", "0/q~"}) {
        writeScalar(path, "uniform 1");
    }
    m_folder.writeGz("1e-1/uniform/time.gz", "FoamFile { object other; }\nindex 12; // not the first line\n");
    std::filesystem::create_directory_symlink("1e-1", m_folder / "2");
    m_folder.write("0/phi", header("surfaceScalarField", "phi"));
    m_folder.write("2/phi", header("surfaceScalarField", "phi"));
    m_folder.write("2/lagrangian/cloud/positions", "");
    const LogCapture log;
    OpenCase openCase(m_folder.path(), extended());
    EXPECT_EQ(openCase.states(), "1 Time 0.00000 #0, 2 Time 0.10000 #12, 3 Time 2.00000 #12");
    EXPECT_EQ(openCase.results(), "1 Q Q_E 010 m s-1 , 2 Q [node] Q_N 000 m s-1 , "
                                  "3 Pressure PRESSURE_E 010 m s-1 , 4 Pressure [node] PRESSURE_N 000 m s-1 , "
                                  "5 q q_E 010 m s-1 , 6 q [node] q_N 000 m s-1 , "
                                  "7 beta.gas BETA.GAS_E 010 m s-1 , 8 beta.gas [node] BETA.GAS_N 000 m s-1 ");
    const Texts lines = log.infos();
    EXPECT_EQ(std::ranges::count_if(
                  lines, [](const std::string& line) { return line.find("Not shown: ") != std::string::npos; }),
              2);
}

TEST_F(ExtendedReading, PiecesHaveResultsInBothLayoutsAndRegions)
{
    std::filesystem::remove_all(m_folder / "constant");
    for (const char* const piece : {"processor10/constant", "processor2/constant", "processor2/constant/air"}) {
        writeCubes(piece + std::string("/polyMesh"));
    }
    writeScalar("0/processor2/p", "uniform 1");
    writeScalar("processor2/0/p", "uniform 2");
    writeScalar("processor10/0/p", "uniform 3");
    writeScalar("processor10/0.5/p", "uniform 4");
    writeScalar("processor2/0.5/air/p", "uniform 5");
    writeScalar("processor2/0.5/p.gas", "uniform 9");
    const LogCapture log;
    OpenCase openCase(m_folder.path(), extended({{"LOAD_BC_PARTS", false}}));
    EXPECT_EQ(openCase.groups(), "1 processor2 < 0 , 2 processor2/air < 0 , 3 processor10 < 0 ");
    EXPECT_EQ(openCase.states(), "1 Time 0.00000 #0, 2 Time 0.50000 #1");
    openCase.geometry();
    EXPECT_EQ(openCase.values("PRESSURE_E", 1), (Groups{{1, 1}, undefined(2), {3, 3}}));
    EXPECT_EQ(openCase.values("PRESSURE_E", 2), (Groups{undefined(2), {5, 5}, {4, 4}}));
    EXPECT_EQ(log.errors(), std::vector<std::string>()) << "the file of another field is no file that fails";
    writeScalar("processor10/1/p", "uniform 6");
    EXPECT_EQ(openCase.poll(), "add 1003 Time 1.00000 #2");
    std::filesystem::remove_all(m_folder / "processor10/1");
    openCase.poll();
    EXPECT_NE(openCase.poll().find("remove 3"), std::string::npos);
    // Only the time that vanished is forgotten, so nothing is new.
    openCase.poll();
    EXPECT_EQ(openCase.poll(), "");

    // A whole mesh beside the pieces is shown where it has results of its own, as after putting the pieces together.
    writeCubes("constant/polyMesh");
    writeScalar("0/p", "uniform 7");
    const auto groups = [this] { return OpenCase(m_folder.path(), extended({{"LOAD_BC_PARTS", false}})).groups(); };
    EXPECT_EQ(groups(), "1 processor2 < 0 , 2 processor2/air < 0 , 3 processor10 < 0 ");
    writeScalar("0.5/p", "uniform 8");
    EXPECT_EQ(groups(), "1 processor2 < 0 , 2 processor2/air < 0 , 3 processor10 < 0 , 4 default_region < 0 ");
}

TEST_F(ExtendedReading, DescriptionsMayHaveAnyLayoutAndDamageIsLeftOut)
{
    m_folder.write("system/controlDict", "\nFoamFile\n{\n\n object other; }\n#include \"interval\"\n");
    m_folder.write("system/interval", "writeInterval $step; step 3;");
    m_folder.write("constant/polyMesh/faceZones", header("regIOobject", "faceZones") +
                                                      "2 ( one { type faceZone; faceLabels List<label> 2(0 1);"
                                                      " flipMap List<bool> 2{0}; } none { faceLabels 0(); } )");
    m_folder.write("constant/polyMesh/cellZones",
                   header("regIOobject", "cellZones") + "2 ( a { cellLabels 1 (1); } b { cellLabels");
    writeScalar("0/p", "uniform 1");
    writeScalar("1/p", "uniform 1");
    OpenCase openCase(m_folder.path(), extended({{"LOAD_FACE_ZONES", true}}));
    EXPECT_EQ(openCase.groups(), "1 default_region < 0 , 2 a < 1 CellZone, 3 in < 1 patch, 4 side < 1 wall, "
                                 "5 rest < 1 empty, 6 one [FZ] < 1 FaceZone, 7 none [FZ] < 1 FaceZone");
    EXPECT_EQ(openCase.geometry().elementGroups.at(4).types.size(), 2U);
    // The macro stands before the entry that it names, so the interval is not known.
    EXPECT_EQ(openCase.states(), "1 Time 0.00000 #0, 2 Time 1.00000 #1");
}

TEST_F(ExtendedReading, AMeshInTheFirstTimeComesBeforeThatInConstant)
{
    const auto groups = [this] { return OpenCase(m_folder.path(), extended()).groups(); };
    m_folder.write("0/polyMesh/points", fileBytes(m_folder / "constant/polyMesh/points"));
    EXPECT_NE(groups().find("side"), std::string::npos);
    writeCubes("0/polyMesh");
    m_folder.write("0/polyMesh/boundary", boundaryFile({{"baffle", "wall", 1, 1}}));
    EXPECT_EQ(groups(), "1 default_region < 0 , 2 baffle < 1 wall");
}

TEST_F(ExtendedReading, MovedPointsCountUntilTheNextOnesAndMustFit)
{
    const std::string points = fileBytes(m_folder / "constant/polyMesh/points");
    for (const char* const time : {"0", "1", "2", "3"}) {
        writeScalar(time + std::string("/p"), "uniform 1");
    }
    std::string moved = points;
    moved.replace(moved.find("(0 0 0)"), 7, "(9 9 9)");
    m_folder.write("1/polyMesh/points", moved);
    m_folder.write("3/polyMesh/points", header("vectorField", "points") + "2\n(\n(0 0 0)\n(1 1 1)\n)\n");
    const LogCapture log;
    OpenCase openCase(m_folder.path(), extended());
    openCase.geometry();
    const double firstX[] = {0, 9, 9, UNSET};
    for (int state = 1; state <= 4; ++state) {
        const Groups groups = openCase.values("POINTS", state);
        ASSERT_EQ(groups.size(), 4U);
        EXPECT_EQ(groups[0].size(), 36U);
        EXPECT_EQ(groups[0][0], firstX[state - 1]);
        EXPECT_EQ(groups[1][0], firstX[state - 1]);
    }
    EXPECT_NE(joined(log.infos()).find("do not fit the mesh"), std::string::npos);
}

TEST_F(ExtendedReading, ValuesOnPointsGoByTheOrderOfThePatch)
{
    // The face x = 0 names its nodes in the order 0 6 9 3, while a host gets them ascending.
    m_folder.write("1/a", header("pointScalarField", "a") + "internalField nonuniform List<scalar> 12{4};\n"
                                                            "boundaryField { in { type fixedValue; value nonuniform "
                                                            "List<scalar> 4(0 6 9 3); } side { type calculated; } }");
    const Groups groups = valuesOf("A_N*", 1);
    ASSERT_EQ(groups.size(), 4U);
    EXPECT_EQ(groups[1], (Values{0, 3, 6, 9}));
    EXPECT_EQ(groups[2], Values(groups[2].size(), 4));
}

// Memory that runs out while a mesh is read leaves patches whose arrays do not fit each other.
TEST_F(ExtendedReading, PatchesThatWereBuiltInPartStayInBounds)
{
    std::vector<OFBoundary> patches(1);
    patches[0].setPatchName("in");
    patches[0].nodeCountPerFace() = {4};
    patches[0].faceConnectivity() = {0, 6, 9, 3};
    patches[0].createFaceToCellMapping(1);
    patches[0].createNodeFaceToNodeMapping(4);
    for (std::size_t i = 0; i < 4; ++i) {
        patches[0].nodeIndex(i) = static_cast<int>(3 * i);
    }
    Values interior = undefined(7);
    Groups patchValues = {undefined(3)};
    const auto read = [&](OFResultMapping mapping, int dimension) {
        return ExtendedField::read(m_folder.str("1/a"), {mapping, dimension, &interior, &patches, &patchValues});
    };
    // Without normals a slip wall has the values of its cells. The last number of the array belongs to no item.
    m_folder.write("1/a", header("volVectorField", "a") + "internalField uniform (1 2 3);\n"
                                                          "boundaryField { in { type slip; } }");
    EXPECT_TRUE(read(OFResultOnCell, 3));
    EXPECT_EQ(interior, (Values{1, 2, 3, 1, 2, 3, UNSET}));
    EXPECT_EQ(patchValues, (Groups{{1, 2, 3}}));
    // A coupling of the patch as it was: the values of the cells, and no face that it does not have.
    CyclicCoupling coupling;
    coupling.cells.assign(1000, 1);
    coupling.weights.assign(1000, 0.5);
    patches[0].setCyclicCoupling(std::move(coupling));
    m_folder.write("1/a", header("volVectorField", "a") + "internalField uniform (1 2 3);\n"
                                                          "boundaryField { in { type cyclic; } }");
    EXPECT_TRUE(read(OFResultOnCell, 3));
    EXPECT_EQ(patchValues, (Groups{{1, 2, 3}}));
    // There are four points, but the array is that of three.
    m_folder.write("1/a", header("pointScalarField", "a") + "internalField uniform 0;\nboundaryField { in { type "
                                                            "fixedValue; value nonuniform List<scalar> 3(7 8 9); } }");
    EXPECT_TRUE(read(OFResultOnNode, 1));
    EXPECT_EQ(patchValues, (Groups{{7, 8, 9}}));
}

TEST_F(ExtendedReading, IsAskedForByTheHostElseByTheEnvironment)
{
    m_folder.write("constant/polyMesh/boundary", boundaryFile({{"in", "patch", 1, 1}}));
    writeVelocity("1", "in { type noSlip; }");
    const auto isExtended = [this](const char* variable, const HostOptions& options) {
        setenv("OPENFOAM_PLUGIN_EXTENDED_READING", variable, 1);
        const Groups groups = valuesOf("VELOCITY_E", 1, options);
        unsetenv("OPENFOAM_PLUGIN_EXTENDED_READING");
        return !groups.empty() && groups.at(1) == Values{0, 0, 0};
    };
    for (const char* const on : {"1", "true", "TRUE"}) {
        EXPECT_TRUE(isExtended(on, {})) << on;
    }
    for (const char* const off : {"", "0", "false", "yes"}) {
        EXPECT_FALSE(isExtended(off, {})) << off;
    }
    EXPECT_FALSE(isExtended("1", settings({{"EXTENDED_READING", false}})));
    EXPECT_TRUE(isExtended("0", extended()));
}
