// SPDX-License-Identifier: MIT
#include "DvnCore/Undefined.h"
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

using namespace foamtext;

namespace {

using Values = std::vector<double>;

class OFFileFields : public testing::Test
{
protected:
    bool readInterior(const std::string& kind, const std::string& internalField, std::size_t size,
                      const std::string& format = "ascii")
    {
        folder.write("p", header("vol" + kind + "Field", "p", format) +
                              "dimensions [0 2 -2 0 0 0 0];\n\ninternalField   " + internalField);
        values.assign(size, -1.0);
        OFFile file(true);
        const bool isRead = file.readResult(folder.str("p"), "p", "vol" + kind + "Field", &values);
        EXPECT_EQ(file.interiorWasRead(), isRead);
        return isRead;
    }

    TempFolder folder;
    Values values;
};

} // namespace

TEST_F(OFFileFields, ReadsEveryFormOfTheInterior)
{
    struct Case
    {
        const char* kind;
        const char* text;
        Values expected;
    };
    const Case cases[] = {
        {"Scalar", "uniform 300;\n", {300, 300, 300}},
        {"Vector", "uniform (1 -2 3);\n", {1, -2, 3, 1, -2, 3, -1}},
        {"Tensor", "uniform (1 2 3 4 5 6 7 8 9);\n", {1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}},
        {"Scalar", "nonuniform List<scalar> \n3\n(\n1\n-2.5\n3e2\n)\n;\n", {1, -2.5, 300}},
        {"Scalar", "nonuniform List<scalar> \n3(1 2 3);\n", {1, 2, 3}},
        {"Vector", "nonuniform List<vector> \n2\n(\n(1 2 3)\n(4 5 6)\n)\n;\n", {1, 2, 3, 4, 5, 6}},
        {"Scalar", "nonuniform List<scalar> 3(1 2 3);\n", {1, 2, 3}},
        {"Scalar", "nonuniform List<scalar> 3(1 2 3);\r\n", {1, 2, 3}},
        {"Vector", "nonuniform List<vector> 2((1 2 3) (4 5 6));\n", {1, 2, 3, 4, 5, 6}},
        {"Vector", "uniform ( 1 -2 3 );\n", {1, -2, 3, 1, -2, 3, -1}},
        {"Vector", "nonuniform List<vector> 2(( 1 2 3 ) ( 4 5 6 ));\n", {1, 2, 3, 4, 5, 6}},
        {"Scalar", "nonuniform List<scalar> \n3 // cells\n(\n1\n2\n3\n)\n;\n", {1, 2, 3}},
        {"Scalar", "nonuniform List<scalar> \n3{300}\n;\n", {300, 300, 300}},
        {"Vector", "nonuniform List<vector> \n2{(1 0 -1)}\n;\n", {1, 0, -1, 1, 0, -1}},
        {"Scalar", "nonuniform List<scalar> 0();\n", {}},
        {"Scalar", "nonuniform List<scalar> \n0\n;\n", {}},
    };
    const LogCapture log;
    for (const Case& c : cases) {
        EXPECT_TRUE(readInterior(c.kind, c.text, std::max<std::size_t>(c.expected.size(), 1))) << c.text;
        EXPECT_EQ(values, c.expected) << c.text;
    }
    EXPECT_EQ(log.errors().size() + log.infos().size(), 0U);
}

TEST_F(OFFileFields, ReportsFormsThatCannotBeRead)
{
    const std::string list = "nonuniform List<";
    const std::string last = ", Error reading result";
    const std::string badCount = "Invalid number of items in result file" + last;
    const std::string badSize = "Error reading result, values buffer is not correctly dimensioned" + last;
    const std::string noNumber = "Could not convert uniform value to a double";
    struct Case
    {
        std::string kind;
        std::string text;
        std::string errors; ///< their messages up to the full stop
    };
    for (const auto& [kind, text, errors] :
         {Case{"Scalar", "uniform", "Failed to read uniform value in result file"},
          {"Vector", "uniform (1 y 3);\n", noNumber},
          {"Scalar", "uniform;\n", "Failed to read number of items in result file" + last},
          {"Symm", "uniform 1;\n", "Could not recognize result class volSymmField"},
          {"Scalar", list + "scalar> \n4\n(1 2 3 4);\n", badSize},
          {"Scalar", list + "scalar> 99999999999(1);\n", badCount},
          {"Vector", list + "vector> \n2147483646\n(\n", badCount},
          {"Tensor", list + "tensor> \n1\n((1 2 3 4 5 6 7 8 9));\n", badSize},
          {"Scalar", list + "scalar> \n4{7}\n;\n", badSize},
          {"Scalar", list + "scalar> \n3{x}\n;\n", noNumber + last},
          {"Scalar", list + "scalar> \n3{7", "Error reading result"},
          {"Scalar", list + "scalar> \n3\n(\n1\n\nx\n)\n", "Error reading result"}}) {
        const LogCapture log;
        EXPECT_FALSE(readInterior(kind, text, 3)) << text;
        std::string messages;
        for (const std::string& line : log.errors()) {
            const std::size_t end = std::min(line.find(". "), line.find(" from File"));
            messages += (messages.empty() ? "" : ", ") + line.substr(9, end - 9);
        }
        EXPECT_EQ(messages, errors) << text;
    }
    EXPECT_FALSE(readInterior("Tensor", list + "tensor> 1((1 2 3 4 5 6 7 8 9));\n", 6));
    EXPECT_THROW(readInterior("Scalar", list + "scalar> 3 (1 2 3);\n", 3), std::invalid_argument);
}

TEST_F(OFFileFields, UnreadableFilesLeaveTheValues)
{
    folder.write("p", header("volScalarField", "p") + "nothing\n");
    values.assign(3, 5.0);
    EXPECT_FALSE(OFFile(true).readResult(folder.str("none"), "none", "volScalarField", &values));
    EXPECT_FALSE(OFFile(true).readResult(folder.str("p"), "q", "volScalarField", &values)) << "another object";
    EXPECT_FALSE(OFFile(true).readResult(folder.str("p"), "p", "volScalarField", &values)) << "no interior";
    EXPECT_EQ(values, Values(3, 5.0));
}

TEST_F(OFFileFields, AnotherClassIsUndefined)
{
    folder.write("p", header("volScalarField", "p"));
    values.assign(3, 5.0);
    EXPECT_TRUE(OFFile(true).readResult(folder.str("p"), "p", "volVectorField", &values));
    EXPECT_EQ(values, Values(3, dvn::UNDEFINED_DOUBLE));
}

// Compatibility (docs/compatibility.md, "failed list, read file"): the answer is true once the file is open.
TEST_F(OFFileFields, FilesWithoutHeaderHoldOneList)
{
    values.assign(3, 5.0);
    for (const bool isWhole : {true, false}) {
        folder.write("p", isWhole ? "\n3\n(\n1\n2\n3\n)\n" : "\n3\n(\n4\n5\n)\n");
        OFFile file(false);
        EXPECT_TRUE(file.readResult(folder.str("p"), "p", "pointScalarField", &values));
        EXPECT_EQ(file.interiorWasRead(), isWhole);
    }
    EXPECT_EQ(values, (Values{4, 5, 3}));
}

TEST_F(OFFileFields, NoScalarIsLostAtAChunkBorder)
{
    for (std::size_t shift = 0; shift < 12; ++shift) {
        for (const std::string separator : {"\n", " ", "\n\n"}) {
            std::string items = std::string(shift, '0') + "1.25" + separator;
            Values expected = {1.25};
            for (; items.size() < OFFile::CHUNK_SIZE + 100; expected.push_back(-1.5e-2)) {
                items.append("-1.5e-2").append(separator);
            }
            const std::string count = std::to_string(expected.size());
            ASSERT_TRUE(readInterior("Scalar", "nonuniform List<scalar> \n" + count + "\n(" + items + ")\n;\n",
                                     expected.size()))
                << shift << "'" << separator << "'";
            ASSERT_EQ(values, expected);
        }
    }
}

// Compatibility (docs/compatibility.md, "short single-line lists"): missing values are 0.
TEST_F(OFFileFields, FillsAndReportsValuesMissingFromALine)
{
    const LogCapture log;
    EXPECT_TRUE(readInterior("Vector", "nonuniform List<vector> 2((1 2 3));\n", 6));
    EXPECT_EQ(values, (Values{1, 2, 3, 0, 0, 0}));
    EXPECT_TRUE(readInterior("Scalar", "nonuniform List<scalar> 2(1 2 3 4);\n", 2));
    EXPECT_EQ(values, (Values{1, 2})) << "extra words are ignored";
    EXPECT_FALSE(readInterior("Scalar", "nonuniform List<scalar> \n6\n(\n1\n2\n)\n;\n", 6))
        << "a list over several lines is refused";
    EXPECT_EQ(log.infos().size(), 2U);
}
