// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using namespace foamtext;

namespace {

using Values = std::vector<double>;
using Patches = std::vector<Values>;

/// Content of the arrays before a file is read.
constexpr double P = -1.0;

class OFFileBoundaryFields : public testing::Test
{
protected:
    /// Reads a field of two cells with the values 1 and 2 (or the vectors 1 2 3 and 4 5 6). Patch i is called
    /// `names[i]` and has `faceCounts[i]` faces, all on the second cell and the first point.
    bool readField(const std::string& tail, const std::vector<std::size_t>& faceCounts,
                   const std::string& className = "volScalarField", const std::string& format = "ascii")
    {
        const std::size_t width = className == "volTensorField" ? 6 : className == "volVectorField" ? 3 : 1;
        const std::string field = width == 6           ? "uniform (1 2 3 4 5 6 7 8 9);\n"
                                  : width == 3         ? "nonuniform List<vector> \n2\n(\n(1 2 3)\n(4 5 6)\n)\n;\n"
                                  : format == "binary" ? "nonuniform List<scalar> \n" + rawList(Values{1, 2}) + ";\n"
                                                       : "nonuniform List<scalar> \n2\n(\n1\n2\n)\n;\n";
        folder.write("f", header(className, "f", format) + "internalField   " + field + tail);
        std::vector<OFBoundary> boundaries(faceCounts.size());
        values.clear();
        for (std::size_t b = 0; b < faceCounts.size(); ++b) {
            boundaries[b].setPatchName(names[b]);
            boundaries[b].createFaceToCellMapping(faceCounts[b]);
            boundaries[b].createNodeFaceToNodeMapping(faceCounts[b]);
            for (std::size_t face = 0; face < faceCounts[b]; ++face) {
                boundaries[b].cellIndex(face) = 1;
            }
            values.emplace_back(faceCounts[b] * width, P);
        }
        interior.assign(2 * width, P);
        OFFile file(true);
        const bool isRead =
            file.readValuesOfCellAndBoundaries(folder.str("f"), "f", className, &interior, boundaries, values);
        interiorWasRead = file.interiorWasRead();
        return isRead;
    }

    /// A boundary section; block i belongs to patch i, and "|" is a line end.
    std::string section(const std::vector<std::string>& blocks) const
    {
        std::string text = "\nboundaryField\n{\n";
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            std::string lines = "|    {|        " + blocks[i] + "|    }|";
            std::replace(lines.begin(), lines.end(), '|', '\n');
            text.append("    ").append(names[i]).append(lines);
        }
        return text + "}\n\n// * //\n";
    }

    TempFolder folder;
    std::vector<std::string> names = {"a", "b", "c", "d"};
    Patches values;
    Values interior;
    bool interiorWasRead = false;
};

} // namespace

TEST_F(OFFileBoundaryFields, PatchesGetValuesFromTheFileOrFromTheirCells)
{
    EXPECT_TRUE(
        readField(section({"type            fixedValue;|        value           uniform 300;", "type zeroGradient;",
                           "type calculated;", "type x;|value nonuniform List<scalar> |3|(|7|8|9|)|;"}),
                  {2, 2, 2, 3}));
    EXPECT_EQ(interior, (Values{1, 2}));
    EXPECT_EQ(values, (Patches{{300, 300}, {2, 2}, {P, P}, {7, 8, 9}}));
    EXPECT_TRUE(
        readField(section({"value uniform (1 0 -2);", "type slip;", "value nonuniform List<vector> 2((1 2 3) (4 5 6));",
                           "value nonuniform List<vector> 0();"}),
                  {1, 2, 2, 0}, "volVectorField"));
    EXPECT_EQ(values, (Patches{{1, 0, -2}, {4, 5, 6, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, {}}));
    EXPECT_TRUE(readField(section({"type symmetry;"}), {2}, "pointScalarField"));
    EXPECT_EQ(values, (Patches{{1, 1}})) << "the value of the point, not of the cell";
}

TEST_F(OFFileBoundaryFields, EntersTheSectionOnlyForTheRightObjectAndClass)
{
    EXPECT_TRUE(readField(section({"type slip;"}), {1}));
    OFFile file(true);
    EXPECT_FALSE(file.checkResultFile(folder.str("g"), "f", "volScalarField"));
    EXPECT_FALSE(file.checkResultFile(folder.str("f"), "g", "volScalarField"));
    EXPECT_FALSE(file.checkResultFile(folder.str("f"), "f", "volVectorField"));
    EXPECT_TRUE(file.checkResultFile(folder.str("f"), "f", "volScalarField"));
    std::string line;
    EXPECT_TRUE(file.getNextLineStartingWith("    a", line));
    folder.write("f", header("volScalarField", "f", "ascii"));
    EXPECT_FALSE(file.checkResultFile(folder.str("f"), "f", "volScalarField")) << "no section";
}

TEST_F(OFFileBoundaryFields, FindsTheEntryThatHoldsValues)
{
    const OFFile file(true);
    EXPECT_EQ(file.findValueKeys({{"type", "a"}, {"value", "uniform 1"}}), "uniform 1");
    EXPECT_EQ(file.findValueKeys({{"type", "a"}}), "");
}

// Compatibility (docs/compatibility.md, "continued cell values").
TEST_F(OFFileBoundaryFields, SomeTypesTakeTheCellValueWhateverTheFileSays)
{
    const std::string continuing = "zeroGradient empty uniformFixedValue slip symmetry symmetryPlane";
    for (const dvn::Str& type : dvn::Str(continuing + " noSlip calculated cyclic fixedValue emptyish").split(" ")) {
        EXPECT_TRUE(readField(section({"type " + type.toUtf8() + ";|value uniform 9;"}), {1}));
        const bool continues = continuing.find(type.toUtf8()) != std::string::npos;
        EXPECT_EQ(values[0], Values{continues ? 2.0 : 9.0}) << type.toUtf8();
    }
}

// Compatibility (docs/compatibility.md, "lines after refValue").
TEST_F(OFFileBoundaryFields, MixedPatchesTakeTheirValueEntry)
{
    EXPECT_TRUE(
        readField(section({"refValue uniform 0;|valueFraction uniform 1;|value uniform 2;",
                           "refValue uniform 0;|value uniform 3;",
                           "refValue nonuniform List<scalar> |2|(|5|6|)|;|value uniform 4;",
                           "type mixed;|refValue uniform 280;|refGradient uniform 0;|valueFraction uniform 0.25;|"
                           "value nonuniform List<scalar> 2(1 2);"}),
                  {1, 1, 1, 2}));
    EXPECT_EQ(values, (Patches{{2}, {3}, {4}, {1, 2}}));
}

// A heated or coupled wall: the list of "value" takes several lines, right after an entry that is looked past.
TEST_F(OFFileBoundaryFields, MixedPatchesTakeALongListOfValues)
{
    EXPECT_TRUE(
        readField(section({"type mixed;|refValue uniform 280;|refGradient uniform 0;|valueFraction uniform 1;|"
                           "value           nonuniform List<scalar> |2|(|5|6|)|;",
                           "type externalWallHeatFluxTemperature;|refValue nonuniform List<scalar> |2|(|1|2|)|;|"
                           "value nonuniform List<scalar>|2|(|7|8|)|;|valueFraction uniform 1;",
                           "type fixedValue;|value uniform 9;"}),
                  {2, 2, 1}));
    EXPECT_EQ(values, (Patches{{5, 6}, {7, 8}, {9}}));
}

// Tools that edit dictionaries put blanks inside brackets.
TEST_F(OFFileBoundaryFields, BlanksInsideBracketsDoNotCount)
{
    EXPECT_TRUE(
        readField(section({"value uniform ( 1 0 -2 );", "value uniform (4  5 6 );"}), {2, 1}, "volVectorField"));
    EXPECT_EQ(values, (Patches{{1, 0, -2, 1, 0, -2}, {4, 5, 6}}));
}

TEST_F(OFFileBoundaryFields, SkipsBlocksWithinBlocks)
{
    EXPECT_TRUE(readField(section({"type codedMixed;|uniformValue|{|type table;|file|{|format csv;|}|value uniform 8;|"
                                   "}|value uniform 5;",
                                   "value uniform 6;"}),
                          {1, 1}));
    EXPECT_EQ(values, (Patches{{5}, {6}}));
}

TEST_F(OFFileBoundaryFields, SkipsInnerBlocksAndOddLines)
{
    names = {"other", "a", "b", "c"};
    const std::string text = section({"type x;|value uniform 9;",
                                      "type coded;|table|3|(|(0 300)|)|;|in|{|value uniform 8;|}|value uniform 5;|}",
                                      "type x;|value uniform;", "value nonuniform 0();"});
    names.erase(names.begin());
    EXPECT_TRUE(readField(text, {1, 1, 1}));
    EXPECT_EQ(values, (Patches{{5}, {0}, {P}}));
}

// Compatibility (docs/compatibility.md, "patches in mesh order").
TEST_F(OFFileBoundaryFields, FindsPatchesInOrderByTheBytesOfTheirNames)
{
    names = {"w\xc3\xa4nde", "w\xe4nde", "d"};
    const std::string text = section({"value uniform 5;", "value uniform 6;", "value uniform 7;"});
    names = {"w\xc3\xa4nde", "w\xe4nde", "gone", "d"};
    EXPECT_TRUE(readField(text, {1, 1, 1, 1}));
    EXPECT_EQ(values, (Patches{{5}, {6}, {P}, {P}})) << "patches after a missing one are not found";
}

// Every line of the section and every value of its lists is cut by a chunk border once.
TEST_F(OFFileBoundaryFields, NoPatchIsLostAtAChunkBorder)
{
    constexpr std::size_t COUNT = 43000;
    std::string many;
    for (std::size_t i = 0; i < COUNT; ++i) {
        many += "1.375|";
    }
    const std::string text = section({"value nonuniform List<scalar> |43000|(|" + many + ")|;",
                                      "type x;|        value           nonuniform List<scalar> 3(1.5 2.5 3.5);",
                                      "refValue uniform 0;|        value           uniform 300;",
                                      "        value           nonuniform List<scalar> |3|(|7|8|9|)|;"});
    const std::size_t border = OFFile::CHUNK_SIZE - text.find(")\n;");
    for (std::size_t shift = border - 450; shift < border + 20; ++shift) {
        EXPECT_TRUE(readField("\n" + std::string(shift, ' ') + "x" + text, {COUNT, 3, 1, 3}));
        ASSERT_EQ(values, (Patches{Values(COUNT, 1.375), {1.5, 2.5, 3.5}, {300}, {7, 8, 9}})) << shift;
    }
}

TEST_F(OFFileBoundaryFields, BinarySectionsReadLikeAscii)
{
    // Bytes that look like line ends, braces and semicolons.
    std::string nasty = "\n}\n{\n;\n}value uniform 9;\n\n\n;\n(\n";
    nasty.resize(40, '\n');
    Values tricky(5);
    std::copy(nasty.begin(), nasty.end(), reinterpret_cast<char*>(tricky.data()));
    const std::string list = "nonuniform List<scalar> |" + rawList(tricky) + "|;|";
    EXPECT_TRUE(readField(section({"type x;|refGradient " + list + "refValue " + list + "value uniform 3;",
                                   "type x;|value " + list + "gradient " + list,
                                   "in|{|list " + list + "}|type zeroGradient;|value nonuniform List<scalar> |0|;",
                                   "type x;|value nonuniform List<scalar> |" + rawList(Values{4, 5, 6}) + "|;"}),
                          {1, 5, 2, 2}, "volScalarField", "binary"));
    EXPECT_EQ(interior, (Values{1, 2}));
    EXPECT_EQ(raw(values[1]), raw(tricky));
    values[1].clear();
    EXPECT_EQ(values, (Patches{{3}, {}, {2, 2}, {4, 5}})) << "values past the patch are skipped";
    std::string tensor = "|    b|    {|value uniform 9;|}|";
    tensor.resize(72, '|');
    EXPECT_TRUE(readField(section({"value nonuniform List<tensor> |1|(" + tensor + ")|;",
                                   "value nonuniform List<scalar> |" + rawList(Values{4}) + "|;",
                                   "value nonuniform List<scalar> 0();", "value uniform 7;"}),
                          {1, 3, 0, 1}, "volScalarField", "binary"));
    EXPECT_EQ(values, (Patches{{P}, {4, P, P}, {}, {7}}));
}

TEST_F(OFFileBoundaryFields, BrokenSectionsKeepTheInteriorAndReadableValues)
{
    EXPECT_FALSE(readField("", {1}));
    EXPECT_TRUE(interiorWasRead);
    EXPECT_EQ(interior, (Values{1, 2}));
    EXPECT_TRUE(readField(section({"value nonuniform List<scalar> 2(x y);", "value uniform 5;",
                                   "value nonuniform List<scalar> |3|(|7|8|)|;", "value uniform 6;"}),
                          {2, 1, 3, 1}));
    // A token that is not a number is stored as the number it begins with, or as 0, and ends the list.
    EXPECT_EQ(values, (Patches{{0, P}, {5}, {7, 8, P}, {6}}));
}

// Compatibility (docs/compatibility.md, "tensor patches").
TEST_F(OFFileBoundaryFields, TensorsStepByNineWithinTheirArrays)
{
    EXPECT_TRUE(readField(section({"type x;|value uniform (1 2 3 4 5 6 7 8 9);", "type slip;",
                                   "type x;|value nonuniform List<tensor> |1|(|(1 2 3 4 5 6 7 8 9)|)|;"}),
                          {3, 3, 1}, "volTensorField"));
    // Two rounds of nine values over eighteen, the second three places further.
    EXPECT_EQ(values[0], (Values{1, 2, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, P, P, P, P, P, P}));
    // In steps of nine, cell 1 begins at value 9 of 12, so only three of its values exist.
    EXPECT_EQ(values[1], (Values{4, 5, 6, P, P, P, P, P, P, 4, 5, 6, P, P, P, P, P, P}));
    EXPECT_EQ(values[2], Values(6, P));
    EXPECT_TRUE(readField(section({"value uniform (1 2 3 4 5 6 7 8 9);"}), {1}, "volTensorField"));
    EXPECT_EQ(values[0], Values(6, P)) << "nine values do not fit";
}

TEST_F(OFFileBoundaryFields, ValuesOfTheWrongShapeStayWithinTheirPatch)
{
    EXPECT_TRUE(readField(section({"value nonuniform List<vector> |2|(|(1 2 3)|(4 5 6)|)|;", "value ;"}), {4, 1}));
    EXPECT_EQ(values, (Patches{{1, 2, 3, 4}, {P}}));
    EXPECT_TRUE(readField(section({"value uniform (;", "value nonuniform;"}), {1, 1}, "volVectorField"));
    EXPECT_EQ(values, (Patches{{0, 0, 0}, {P, P, P}})) << "a lone bracket is not a number";
    Values four(4, P);
    std::vector<dvn::Str> tokens = {"uniform", "(1", "2", "3)"};
    EXPECT_TRUE(OFFile(true).readUniformValues("volVectorField", tokens, &four));
    EXPECT_EQ(four, (Values{1, 2, 3, P}));
}

TEST_F(OFFileBoundaryFields, MappingsThatAreShortOrWrongStayInBounds)
{
    const Values mesh = {1, 2, 3};
    Values items(5, P);
    for (const std::size_t components : std::array<std::size_t, 3>{1, 0, 6}) {
        EXPECT_TRUE(OFFile(true).applyMeshItemValueInBoundaryItem(&items, components, &mesh, {2, -1, 4, 0}));
    }
    EXPECT_EQ(items, (Values{3, P, P, 1, P}));
}
