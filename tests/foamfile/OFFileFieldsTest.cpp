// SPDX-License-Identifier: MIT
#include "DvnCore/Undefined.h"
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
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
    std::string path() const { return folder.str("p").toStdString(); }

    TempFolder folder;
    Values values;
};

} // namespace

TEST_F(OFFileFields, EveryFormOfTheInteriorIsRead)
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

TEST_F(OFFileFields, FormsThatCannotBeReadAreTold)
{
    const std::string noNumber = "Could not convert uniform value to a double";
    const std::string badCount = "Invalid number of items in result file";
    const std::string badSize = "Error reading result, values buffer is not correctly dimensioned";
    const std::string tensors = "Error reading result, tensor results are currently not supported";
    const std::string noClass = "Invalid resultClassName in open foam file";
    const std::string last = "Error reading result";
    // The messages up to their full stop.
    const auto told = [&](const std::string& kind, const std::string& text, std::size_t size) {
        const LogCapture log;
        EXPECT_FALSE(readInterior(kind, text, size)) << text;
        std::vector<std::string> messages = log.errors();
        for (std::string& message : messages) {
            message = message.substr(9, std::min(message.find(". "), message.find(" from File")) - 9);
        }
        return messages;
    };
    using Messages = std::vector<std::string>;
    EXPECT_EQ(told("Scalar", "uniform", 3), Messages{"Failed to read uniform value in result file"});
    EXPECT_EQ(told("Scalar", "uniform x;\n", 3), Messages{noNumber});
    EXPECT_EQ(told("Vector", "uniform (1 y 3);\n", 3), Messages{noNumber});
    EXPECT_EQ(told("Vector", "uniform (1 2", 3), Messages{});
    EXPECT_EQ(told("Scalar", "uniform;\n", 3), (Messages{"Failed to read number of items in result file", last}));
    EXPECT_EQ(told("Symm", "uniform 1;\n", 3), Messages{"Could not recognize result class volSymmField"});
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> \n4\n(1 2 3 4);\n", 3), (Messages{badSize, last}));
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> 4(1 2 3 4);\n", 3), (Messages{badSize, last}));
    EXPECT_EQ(told("Symm", "nonuniform List<scalar> \n3\n(1 2 3);\n", 3), (Messages{noClass, badSize, last}));
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> 99999999999(1);\n", 3), (Messages{badCount, last}));
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> -1(1);\n", 3), (Messages{badCount, last}));
    EXPECT_EQ(told("Vector", "nonuniform List<vector> \n2147483646\n(\n", 3), (Messages{badCount, last}));
    EXPECT_EQ(told("Tensor", "nonuniform List<tensor> \n1\n((1 2 3 4 5 6 7 8 9));\n", 6), (Messages{tensors, last}));
    EXPECT_EQ(told("Tensor", "nonuniform List<tensor> 1((1 2 3 4 5 6 7 8 9));\n", 6), (Messages{tensors, last}));
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> \n2\n(\n1\n\nx\n)\n", 2), Messages{last});
    EXPECT_THROW(readInterior("Scalar", "nonuniform List<scalar> 3 (1 2 3);\n", 3), std::invalid_argument);
}

TEST_F(OFFileFields, HeadersThatDoNotFitAreToldAndAnotherClassIsUndefined)
{
    folder.write("p", header("volScalarField", "p") + "nothing\n");
    values.assign(2, 5.0);
    const LogCapture log;
    EXPECT_FALSE(OFFile(true).readResult(folder.str("none"), "none", "volScalarField", &values));
    EXPECT_FALSE(OFFile(true).readResult(folder.str("p"), "q", "volScalarField", &values));
    EXPECT_FALSE(OFFile(true).readResult(folder.str("p"), "p", "volScalarField", &values));
    EXPECT_EQ(values, Values(2, 5.0));
    EXPECT_TRUE(OFFile(true).readResult(folder.str("p"), "p", "volVectorField", &values));
    EXPECT_EQ(values, Values(2, dvn::UNDEFINED_DOUBLE));
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{
                  {1, "OFFile : Failed to open result file. File basename is " + folder.str("none").toStdString()},
                  {1, "OFFile : Unexpected object in result file. File basename is " + path()},
                  {1, "OFFile : Could not find internalField in File"}}));
}

TEST_F(OFFileFields, AFileWithoutHeaderIsTheListAlone)
{
    values.assign(3, -1.0);
    for (const bool isWhole : {true, false}) {
        folder.write("p", isWhole ? "\n3\n(\n1\n2\n3\n)\n" : "\n3\n(\n4\n5\n)\n");
        OFFile file(false);
        EXPECT_TRUE(file.readResult(folder.str("p"), "p", "pointScalarField", &values)) << "true once the file is open";
        EXPECT_EQ(file.interiorWasRead(), isWhole);
    }
    EXPECT_EQ(values, (Values{4, 5, 3}));
}

TEST_F(OFFileFields, AllFormsGiveTheSame)
{
    const Values expected = someVectors(30000);
    const std::string rest = "\n;\n\nboundaryField\n{\n}\n";
    const std::string rows = vectors(expected);
    std::string scalars;
    std::remove_copy_if(rows.begin(), rows.end(), std::back_inserter(scalars),
                        [](char c) { return c == '(' || c == ')'; });
    std::string onOneLine = scalars;
    std::replace(onOneLine.begin(), onOneLine.end(), '\n', ' ');
    const auto expectValues = [&](const std::string& kind, const std::string& text, const std::string& format) {
        EXPECT_TRUE(readInterior(kind, text, expected.size(), format));
        EXPECT_EQ(values, expected);
    };
    expectValues("Scalar", "nonuniform List<scalar> \n" + list(90000, scalars) + rest, "ascii");
    expectValues("Scalar", "nonuniform List<scalar> \n" + rawList(expected) + rest, "binary");
    expectValues("Scalar", "nonuniform List<scalar> 90000(" + onOneLine + ");\n", "ascii");
    expectValues("Vector", "nonuniform List<vector> \n" + list(30000, rows) + rest, "ascii");
    expectValues("Vector", "nonuniform List<vector> \n" + rawList(expected, 3) + rest, "binary");
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

TEST_F(OFFileFields, AListThatIsTooShortTellsWhatItHolds)
{
    const auto told = [&](const std::string& kind, const std::string& text, const std::string& format = "ascii") {
        const LogCapture log;
        const std::string answer = readInterior(kind, text, 6, format) ? "true, " : "false, ";
        return log.infos().size() == 1 ? answer + log.infos()[0].substr(41) : "nothing";
    };
    const std::string two = "6 items promised, 2 found. File is " + path();
    const std::string one = "2 items promised, 1 found. File is " + path();
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> \n6\n(\n1\n2\n)\n;\n"), "false, " + two);
    EXPECT_EQ(told("Vector", "nonuniform List<vector> \n2\n(\n(1 2 3)\n)\n;\n"), "false, " + one);
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> \n6\n(" + raw(Values{1, 2}), "binary"), "false, " + two);
    EXPECT_EQ(told("Scalar", "nonuniform List<scalar> 6(1 2);\n"), "true, " + two);
    EXPECT_EQ(told("Vector", "nonuniform List<vector> 2((1 2 3));\n"), "true, " + one);
    EXPECT_EQ(values, (Values{1, 2, 3, 0, 0, 0})) << "what a line lacks is zero";
}

TEST(OFFileFieldSizes, TensorsHaveSixValuesInArraysAndNineInPatches)
{
    const OFFile file(true);
    EXPECT_EQ(file.calculateNumberOfValues("volTensorField", 4), 24);
    EXPECT_EQ(file.calculateNumberOfValues("pointVectorField", 4), 12);
    EXPECT_EQ(file.calculateNumberOfValues("volVectorField", 2000000000), -1);
    EXPECT_EQ(file.calculateNumberOfValues("other", 4), 0);
    EXPECT_EQ(resultSizeFromName("volTensorField"), 9);
    EXPECT_EQ(resultSizeFromName("pointVectorField"), 3);
    EXPECT_EQ(resultSizeFromName("other"), 1);
}
