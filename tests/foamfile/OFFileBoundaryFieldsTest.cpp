// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace foamtext;

namespace {

using Values = std::vector<double>;
using Map = std::map<std::string, std::string>;

constexpr double PRESET = -1.0;

class OFFileBoundaryFields : public testing::Test
{
protected:
    /// Reads a field of two cells with the values 1 and 2 (or the vectors 1 2 3, 4 5 6); each patch of `faceCounts` is
    /// named by its letter and has `faceCounts` faces, all on the second cell.
    bool readField(const std::string& patches, const std::vector<std::size_t>& faceCounts,
                   const std::string& className = "volScalarField", const std::string& format = "ascii")
    {
        const bool isVector = className.find("Vector") != std::string::npos;
        const bool isTensor = className.find("Tensor") != std::string::npos;
        const std::size_t width = isTensor ? 6 : isVector ? 3 : 1;
        const std::string internalField = isTensor ? "uniform (1 2 3 4 5 6 7 8 9);\n"
                                     : format == "binary"
                                         ? "nonuniform List<scalar> \n" + rawList(Values{1, 2}) + ";\n"
                                         : (isVector ? "nonuniform List<vector> \n2\n(\n(1 2 3)\n(4 5 6)\n)\n;\n"
                                                     : "nonuniform List<scalar> \n2\n(\n1\n2\n)\n;\n");
        folder.write("f", header(className, "f", format) + "internalField   " + internalField + patches);
        std::vector<OFBoundary> boundaries(faceCounts.size());
        values.clear();
        for (std::size_t b = 0; b < faceCounts.size(); ++b) {
            boundaries[b].setPatchName(names[b]);
            boundaries[b].createFaceToCellMapping(faceCounts[b]);
            boundaries[b].createNodeFaceToNodeMapping(faceCounts[b]);
            for (std::size_t face = 0; face < faceCounts[b]; ++face) {
                boundaries[b].cellIndex(face) = 1;
            }
            values.emplace_back(faceCounts[b] * width, PRESET);
        }
        interior.assign(2 * width, PRESET);
        OFFile file(true);
        const bool isRead =
            file.readValuesOfCellAndBoundaries(folder.str("f"), "f", className, &interior, boundaries, values);
        interiorWasRead = file.interiorWasRead();
        return isRead;
    }
    static std::string section(const std::string& patches) { return "\nboundaryField\n{\n" + patches + "}\n\n// * //\n"; }
    static std::string patch(const std::string& name, const std::string& entries)
    {
        return "    " + name + "\n    {\n" + entries + "    }\n";
    }

    TempFolder folder;
    std::vector<std::string> names = {"a", "b", "c", "d"};
    std::vector<Values> values;
    Values interior;
    bool interiorWasRead = false;
};

} // namespace

TEST_F(OFFileBoundaryFields, PatchesGetTheValuesOfTheFileOrOfTheirCells)
{
    EXPECT_TRUE(readField(section(patch("a", "        type            fixedValue;\n        value           uniform 300;\n") +
                                  patch("b", "        type zeroGradient;\n") +
                                  patch("c", "        type calculated;\n") +
                                  patch("d", "        type mixed;\n        value nonuniform List<scalar> \n"
                                             "3\n(\n7\n8\n9\n)\n;\n")),
                          {2, 2, 2, 3}));
    EXPECT_EQ(interior, (Values{1, 2}));
    EXPECT_EQ(values, (std::vector<Values>{{300, 300}, {2, 2}, {PRESET, PRESET}, {7, 8, 9}}));

    EXPECT_TRUE(readField(section(patch("a", "type fixedValue;\nvalue uniform (1 0 -2);\n") +
                                  patch("b", "type slip;\n") +
                                  patch("c", "type x;\nvalue nonuniform List<vector> 2((1 2 3) (4 5 6));\n") +
                                  patch("d", "type x;\nvalue nonuniform List<vector> 0();\n")),
                          {1, 2, 2, 0}, "volVectorField"));
    EXPECT_EQ(values, (std::vector<Values>{{1, 0, -2}, {4, 5, 6, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, {}}));

    EXPECT_TRUE(readField(section(patch("a", "type symmetry;\n")), {2}, "pointScalarField"));
    EXPECT_EQ(values, (std::vector<Values>{{1, 1}})) << "the value of the point, not of the cell";
}

// The types that continue the value of the cell, and a few that look like them.
TEST_F(OFFileBoundaryFields, OnlySomeTypesContinueTheCellValue)
{
    for (const std::string type : {"zeroGradient", "empty", "uniformFixedValue", "slip", "symmetry", "symmetryPlane"}) {
        EXPECT_TRUE(readField(section(patch("a", "type " + type + ";\nvalue uniform 9;\n")), {1}));
        EXPECT_EQ(values[0], Values{2}) << type << ", whatever the file says";
    }
    for (const std::string type : {"noSlip", "calculated", "cyclic", "fixedValue", "emptyish"}) {
        EXPECT_TRUE(readField(section(patch("a", "type " + type + ";\n")), {1}));
        EXPECT_EQ(values[0], Values{PRESET}) << type;
    }
}

TEST_F(OFFileBoundaryFields, MixedPatchesAreLookedAtInPairs)
{
    const std::string twoAhead = patch("a", "refValue uniform 0;\nvalueFraction uniform 1;\nvalue uniform 2;\n");
    const std::string oneAhead = patch("b", "refValue uniform 0;\nvalue uniform 3;\n");
    const std::string lists = patch("c", "refValue nonuniform List<scalar> \n2\n(\n5\n6\n)\n;\nvalue uniform 4;\n");
    const std::string full = patch("d", "type mixed;\nrefValue uniform 280;\nrefGradient uniform 0;\n"
                                        "valueFraction uniform 0.25;\nvalue nonuniform List<scalar> 2(1 2);\n");
    EXPECT_TRUE(readField(section(twoAhead + oneAhead + lists + full), {1, 1, 1, 2}));
    EXPECT_EQ(values, (std::vector<Values>{{2}, {3}, {4}, {1, 2}}));
}

TEST_F(OFFileBoundaryFields, InnerBlocksAndOddLinesPassBy)
{
    const LogCapture log;
    EXPECT_TRUE(readField(section(patch("other", "type x;\nvalue uniform 9;\n") +
                                  patch("a", "type coded;\ntable\n3\n(\n(0 300)\n)\n;\ninner\n{\nvalue uniform 8;\n}\n"
                                             "value uniform 5;\n}\n") +
                                  patch("b", "type x;\nvalue uniform;\n") + patch("c", "value nonuniform 0();\n")),
                          {1, 1, 1}));
    EXPECT_EQ(values, (std::vector<Values>{{5}, {0}, {PRESET}}));
    std::vector<std::string> texts = log.texts(4);
    for (std::string& text : texts) {
        text = text.substr(0, text.find("Time used"));
    }
    EXPECT_EQ(texts, (std::vector<std::string>{
                         "OFFile : treated 1 chunks for reading 2 doubles", "OFFile : readed cells values for result f",
                         "OFFile : Found internal Tree in BC :a", "OFFile : Found closing char for internal Tree in BC :a",
                         "OFFile : read uniform value",
                         "OFFile : Boundary 0. Named a of Type coded defined with uniform values. ",
                         "OFFile : read uniform value",
                         "OFFile : Boundary 1. Named b of Type x defined with uniform values. ",
                         "OFFile : read Non-uniform value",
                         "OFFile : Boundary 2. Named c of Type UNFOUND defined with nonuniform values. "}));
}

TEST_F(OFFileBoundaryFields, AMissingPatchTakesThoseBehindItAlong)
{
    names = {"a", "gone", "c"};
    EXPECT_TRUE(readField(section(patch("a", "value uniform 5;\n") + patch("c", "value uniform 6;\n")), {1, 1, 1}));
    EXPECT_EQ(values, (std::vector<Values>{{5}, {PRESET}, {PRESET}}));
}

TEST_F(OFFileBoundaryFields, NamesAreComparedByteByByte)
{
    names = {"w\xc3\xa4nde", "w\xe4nde"};
    EXPECT_TRUE(readField(section(patch(names[0], "value uniform 5;\n") + patch(names[1], "value uniform 6;\n")), {1, 1}));
    EXPECT_EQ(values, (std::vector<Values>{{5}, {6}}));
}

// Every line of the section and every value of a list comes to stand on a chunk border.
TEST_F(OFFileBoundaryFields, NoPatchIsLostAtAChunkBorder)
{
    const std::string tail = patch("b", "        type x;\n        value           nonuniform List<scalar> 3(1.5 2.5 3.5);\n") +
                             patch("c", "        refValue uniform 0;\n        value           uniform 300;\n") +
                             patch("d", "        value           nonuniform List<scalar> \n3\n(\n7\n8\n9\n)\n;\n");
    const std::size_t count = 43000;
    std::string many;
    for (std::size_t i = 0; i < count; ++i) {
        many += "1.375\n";
    }
    const std::string text =
        section(patch("a", "        value           nonuniform List<scalar> \n" + list(count, many) + ";\n") + tail);
    const std::size_t border = OFFile::CHUNK_SIZE - (text.size() - tail.size());
    for (std::size_t shift = border - tail.size(); shift < border + 40; ++shift) {
        EXPECT_TRUE(readField("\n" + std::string(shift, ' ') + "x" + text, {count, 3, 1, 3}));
        ASSERT_EQ(values[0], Values(count, 1.375)) << shift;
        ASSERT_EQ(values[1], (Values{1.5, 2.5, 3.5})) << shift;
        ASSERT_EQ(values[2], (Values{300})) << shift;
        ASSERT_EQ(values[3], (Values{7, 8, 9})) << shift;
    }
}

TEST_F(OFFileBoundaryFields, ABinaryCaseShowsWhatItsAsciiTwinShows)
{
    // Bytes that look like line ends, braces and semicolons; a list longer and one shorter than its patch.
    std::string nasty = "\n}\n{\n;\n}value uniform 9;\n\n\n;\n(\n";
    nasty.resize(40, '\n');
    Values tricky(5);
    std::copy(nasty.begin(), nasty.end(), reinterpret_cast<char*>(tricky.data()));
    const auto rawScalars = [](const Values& list) { return "nonuniform List<scalar> \n" + rawList(list) + "\n;\n"; };
    const std::string patches =
        patch("a", "type x;\nrefGradient " + rawScalars(tricky) + "refValue " + rawScalars(tricky) +
                       "value uniform 3;\n") +
        patch("b", "type x;\nvalue " + rawScalars(tricky) + "gradient " + rawScalars(tricky)) +
        patch("c", "inner\n{\nlist " + rawScalars(tricky) + "}\ntype zeroGradient;\nvalue nonuniform List<scalar> \n0\n;\n") +
        patch("d", "type x;\nvalue " + rawScalars({4, 5, 6}));
    EXPECT_TRUE(readField(section(patches), {1, 5, 2, 2}, "volScalarField", "binary"));
    EXPECT_EQ(interior, (Values{1, 2}));
    EXPECT_EQ(values[0], Values{3});
    EXPECT_EQ(raw(values[1]), raw(tricky));
    EXPECT_EQ(values[2], (Values{2, 2}));
    EXPECT_EQ(values[3], (Values{4, 5}));
    EXPECT_TRUE(readField(section(patch("a", "value nonuniform List<scalar> 0();\n") + patch("b", "value " + rawScalars({4})) +
                                  patch("c", "value uniform 7;\n")),
                          {0, 3, 1}, "volScalarField", "binary"));
    EXPECT_EQ(values, (std::vector<Values>{{}, {4, PRESET, PRESET}, {7}}));
}

TEST_F(OFFileBoundaryFields, ABrokenSectionLeavesTheInteriorAndWhatCouldBeRead)
{
    const LogCapture log;
    EXPECT_FALSE(readField("", {1}));
    EXPECT_TRUE(interiorWasRead);
    EXPECT_EQ(interior, (Values{1, 2}));
    EXPECT_EQ(log.infos(), (std::vector<std::string>{"OFFile : Problem parsing file"}));
    EXPECT_TRUE(readField(section(patch("a", "value nonuniform List<scalar> 2(x y);\n") + patch("b", "value uniform 5;\n") +
                                  patch("c", "value nonuniform List<scalar> \n3\n(\n7\n8\n)\n;\n") +
                                  patch("d", "value uniform 6;\n")),
                          {2, 1, 3, 1}));
    // A token that is no number is stored as what it begins with, and ends the list.
    EXPECT_EQ(values, (std::vector<Values>{{0, PRESET}, {5}, {7, 8, PRESET}, {6}}));
    EXPECT_TRUE(readField("boundaryField\n{\na\n{\nvalue nonuniform List<scalar> \n2\n(\n1\n", {2}));
    EXPECT_EQ(values, (std::vector<Values>{{1, PRESET}}));
    folder.write("g", header("volScalarField", "g") + "internalField uniform x;\n");
    std::vector<Values> none;
    OFFile file(true);
    EXPECT_FALSE(file.readValuesOfCellAndBoundaries(folder.str("g"), "g", "volScalarField", &interior, {}, none));
    EXPECT_FALSE(file.interiorWasRead());
    EXPECT_EQ(log.infos().back(), "OFFile : Could not read result values for Cells");
}

TEST_F(OFFileBoundaryFields, TensorsAreWalkedInStepsOfNineWithinTheirArrays)
{
    EXPECT_TRUE(readField(section(patch("a", "type x;\nvalue uniform (1 2 3 4 5 6 7 8 9);\n") + patch("b", "type slip;\n") +
                                  patch("c", "type x;\nvalue nonuniform List<tensor> \n1\n(\n(1 2 3 4 5 6 7 8 9)\n)\n;\n")),
                          {3, 3, 1}, "volTensorField"));
    // Two rounds of nine over eighteen values, the second three places on.
    EXPECT_EQ(values[0], (Values{1, 2, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, PRESET, PRESET, PRESET, PRESET, PRESET, PRESET}));
    // Cell 1 in steps of nine begins at value 9 of 12: three values exist of it.
    EXPECT_EQ(values[1],
              (Values{4, 5, 6, PRESET, PRESET, PRESET, PRESET, PRESET, PRESET, 4, 5, 6, PRESET, PRESET, PRESET, PRESET,
                      PRESET, PRESET}));
    EXPECT_EQ(values[2], Values(6, PRESET));
}

TEST_F(OFFileBoundaryFields, AMappingThatIsTooShortOrWrongTouchesNothing)
{
    const OFFile file(true);
    const Values mesh = {1, 2, 3};
    Values items(5, PRESET);
    const LogCapture log;
    EXPECT_TRUE(file.applyMeshItemValueInBoundaryItem(&items, 1, &mesh, {2, -1, 3, 0}));
    EXPECT_EQ(items, (Values{3, PRESET, PRESET, 1, PRESET}));
    EXPECT_TRUE(file.applyMeshItemValueInBoundaryItem(&items, 0, &mesh, {0, 0}));
    EXPECT_TRUE(file.applyMeshItemValueInBoundaryItem(&items, 6, &mesh, {0, 0}));
    EXPECT_EQ(items, (Values{3, PRESET, PRESET, 1, PRESET}));
    EXPECT_EQ(log.lines(), std::vector<LogLine>(3, {4, "OFFile : copy Cell data into Face : values copied 5"}));
}

TEST_F(OFFileBoundaryFields, AFieldIsCheckedUpToItsBoundarySection)
{
    folder.write("f", header("volScalarField", "f") + "internalField uniform 1;\n\nboundaryField\n{\n a\n");
    const LogCapture log;
    OFFile file(true);
    EXPECT_TRUE(file.checkResultFile(folder.str("f"), "f", "volScalarField"));
    std::string line;
    EXPECT_TRUE(file.getNextLineStartingWith(" a", line));
    EXPECT_FALSE(OFFile(true).checkResultFile(folder.str("f"), "f", "volVectorField"));
    EXPECT_FALSE(OFFile(true).checkResultFile(folder.str("f"), "g", "volScalarField"));
    EXPECT_FALSE(OFFile(true).checkResultFile(folder.str("g"), "g", "volScalarField"));
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{
                  "OFFile : Unexpected class in result file. File basename is " + folder.str("f").toStdString(),
                  "OFFile : Unexpected object in dictionary file. File basename is " + folder.str("f").toStdString(),
                  "OFFile : Failed to open boundary file. File basename is " + folder.str("g").toStdString()}));
    EXPECT_EQ(file.findValueKeys(Map{{"a", "1"}, {"value", "2"}, {"refValue", "3"}}), "3");
    EXPECT_EQ(file.findValueKeys(Map{{"a", "1"}}), "");
}
