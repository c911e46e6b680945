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
    bool readInterior(const std::string& className, const std::string& internalField, std::size_t size,
                      const std::string& format = "ascii")
    {
        folder.write("p", header(className, "p", format) + "dimensions [0 2 -2 0 0 0 0];\n\ninternalField   " + internalField);
        values.assign(size, -1.0);
        OFFile file(true);
        const bool isRead = file.readResult(folder.str("p"), "p", className, &values);
        EXPECT_EQ(file.interiorWasRead(), isRead);
        return isRead;
    }
    std::vector<LogLine> errors(const std::vector<std::string>& messages) const
    {
        std::vector<LogLine> lines;
        for (const std::string& message : messages) {
            lines.push_back({1, "OFFile : " + message + folder.str("p").toStdString()});
        }
        return lines;
    }

    TempFolder folder;
    Values values;
};

const std::string LAST = "Error reading result. File basename is ";

} // namespace

TEST_F(OFFileFields, EveryFormOfTheInteriorIsRead)
{
    struct Case
    {
        std::string className;
        std::string text;
        Values expected;
    };
    const Case cases[] = {
        {"volScalarField", "uniform 300;\n", {300, 300, 300}},
        {"pointScalarField", "uniform -1.5e3;", {-1500, -1500, -1500}},
        {"volVectorField", "uniform (1 -2 3);\n", {1, -2, 3, 1, -2, 3, -1}},
        {"volTensorField", "uniform (1 2 3 4 5 6 7 8 9);\n", {1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}},
        {"volScalarField", "nonuniform List<scalar> \n3\n(\n1\n-2.5\n3e2\n)\n;\n", {1, -2.5, 300}},
        {"volScalarField", "nonuniform List<scalar> \n3(1 2 3);\n", {1, 2, 3}},
        {"volVectorField", "nonuniform List<vector> \n2\n(\n(1 2 3)\n(4 5 6)\n)\n;\n", {1, 2, 3, 4, 5, 6}},
        {"volScalarField", "nonuniform List<scalar> 3(1 2 3);\n", {1, 2, 3}},
        {"volScalarField", "nonuniform List<scalar> 3(1 2 3);\r\n", {1, 2, 3}},
        {"pointVectorField", "nonuniform List<vector> 2((1 2 3) (4 5 6));\n", {1, 2, 3, 4, 5, 6}},
        {"volScalarField", "nonuniform List<scalar> 0();\n", {}},
        {"volScalarField", "nonuniform List<scalar> \n0\n;\n", {}},
    };
    const LogCapture log;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_TRUE(readInterior(c.className, c.text, std::max<std::size_t>(c.expected.size(), 1)));
        EXPECT_EQ(values, c.expected);
    }
    EXPECT_EQ(log.errors(), std::vector<std::string>());
    EXPECT_EQ(log.infos(), std::vector<std::string>());
}

TEST_F(OFFileFields, FormsThatCannotBeReadAreTold)
{
    const std::string noDouble = "Could not convert uniform value to a double. File basename is ";
    const std::string badCount = "Invalid number of items in result file. File basename is ";
    const std::string badSize =
        "Error reading result, values buffer is not correctly dimensioned. File basename is ";
    const std::string tensors = "Error reading result, tensor results are currently not supported. File basename is ";
    struct Case
    {
        const char* className;
        const char* text;
        std::size_t size;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {"volScalarField", "uniform", 3, {"Failed to read uniform value in result file. File basename is "}},
        {"volScalarField", "uniform x;\n", 3, {noDouble}},
        {"volVectorField", "uniform (1 y 3);\n", 3, {noDouble}},
        {"volVectorField", "uniform (1 2", 3, {}},
        {"volScalarField", "uniform;\n", 3, {"Failed to read number of items in result file. File basename is ", LAST}},
        {"volScalarField", "nonuniform List<scalar> \n4\n(1 2 3 4);\n", 3, {badSize, LAST}},
        {"volScalarField", "nonuniform List<scalar> 4(1 2 3 4);\n", 3, {badSize, LAST}},
        {"volScalarField", "nonuniform List<scalar> 99999999999(1);\n", 3, {badCount, LAST}},
        {"volScalarField", "nonuniform List<scalar> -1(1);\n", 3, {badCount, LAST}},
        {"volVectorField", "nonuniform List<vector> \n2147483646\n(\n", 3, {badCount, LAST}},
        {"volTensorField", "nonuniform List<tensor> \n1\n((1 2 3 4 5 6 7 8 9));\n", 6, {tensors, LAST}},
        {"volTensorField", "nonuniform List<tensor> 1((1 2 3 4 5 6 7 8 9));\n", 6, {tensors, LAST}},
        {"volScalarField", "nonuniform List<scalar> \n2\n(\n1\n\nx\n)\n", 2, {LAST}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const LogCapture log;
        EXPECT_FALSE(readInterior(c.className, c.text, c.size));
        std::vector<LogLine> lines = log.lines();
        std::erase_if(lines, [](const LogLine& line) { return line.level == 3; });
        EXPECT_EQ(lines, errors(c.messages));
    }
    EXPECT_THROW(readInterior("volScalarField", "nonuniform List<scalar> 3 (1 2 3);\n", 3), std::invalid_argument);
    const LogCapture log;
    EXPECT_FALSE(readInterior("surfaceScalarField", "uniform 1;\n", 3));
    EXPECT_FALSE(readInterior("surfaceScalarField", "nonuniform List<scalar> \n3\n(1 2 3);\n", 3));
    const std::string unknown = "OFFile : Invalid resultClassName in open foam file. We do not recognize:  surfaceScalarField";
    EXPECT_EQ(log.errors(), (std::vector<std::string>{
                                "OFFile : Could not recognize result class surfaceScalarField from File " +
                                    folder.str("p").toStdString(),
                                unknown, errors({badSize})[0].text, errors({LAST})[0].text}));
}

TEST_F(OFFileFields, HeadersThatDoNotFitAreToldAndAnotherClassIsUndefined)
{
    folder.write("q", header("volScalarField", "p") + "internalField uniform 1;\n");
    folder.write("r", header("volScalarField", "r") + "nothing\n");
    const LogCapture log;
    values.assign(2, 5.0);
    EXPECT_FALSE(OFFile(true).readResult(folder.str("none"), "none", "volScalarField", &values));
    EXPECT_FALSE(OFFile(true).readResult(folder.str("q"), "q", "volScalarField", &values));
    EXPECT_FALSE(OFFile(true).readResult(folder.str("r"), "r", "volScalarField", &values));
    EXPECT_EQ(values, Values(2, 5.0));
    EXPECT_TRUE(OFFile(true).readResult(folder.str("r"), "r", "volVectorField", &values));
    EXPECT_EQ(values, Values(2, dvn::UNDEFINED_DOUBLE));
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{
                  "OFFile : Failed to open result file. File basename is " + folder.str("none").toStdString(),
                  "OFFile : Unexpected object in result file. File basename is " + folder.str("q").toStdString(),
                  "OFFile : Could not find internalField in File"}));
}

TEST_F(OFFileFields, AFileWithoutHeaderIsTheListAlone)
{
    folder.write("p", "\n3\n(\n1\n2\n3\n)\n");
    folder.write("q", "\n3\n(\n1\n2\n)\n");
    values.assign(3, -1.0);
    OFFile file(false);
    EXPECT_TRUE(file.readResult(folder.str("p"), "p", "pointScalarField", &values));
    EXPECT_TRUE(file.interiorWasRead());
    EXPECT_EQ(values, (Values{1, 2, 3}));
    EXPECT_TRUE(file.readResult(folder.str("q"), "q", "pointScalarField", &values)) << "true once the file is open";
    EXPECT_FALSE(file.interiorWasRead());
    EXPECT_FALSE(file.readResult(folder.str("none"), "none", "pointScalarField", &values));
}

TEST_F(OFFileFields, AsciiBinaryAndGzipGiveTheSame)
{
    const Values vectorsRead = someVectors(30000);
    const std::string rest = "\n;\n\nboundaryField\n{\n}\n";
    Values scalars(vectorsRead.begin(), vectorsRead.begin() + 60000);
    std::string scalarText;
    for (const double value : scalars) {
        char digits[40];
        std::snprintf(digits, sizeof(digits), "%.17g\n", value);
        scalarText += digits;
    }
    EXPECT_TRUE(readInterior("volScalarField", "nonuniform List<scalar> \n" + list(60000, scalarText) + rest, 60000));
    EXPECT_EQ(values, scalars);
    EXPECT_TRUE(readInterior("volScalarField", "nonuniform List<scalar> \n" + rawList(scalars) + rest, 60000, "binary"));
    EXPECT_EQ(values, scalars);
    std::replace(scalarText.begin(), scalarText.end(), '\n', ' ');
    EXPECT_TRUE(readInterior("volScalarField", "nonuniform List<scalar> 60000(" + scalarText + ");\n", 60000))
        << "one line of a megabyte";
    EXPECT_EQ(values, scalars);
    const std::string vectorText = list(30000, vectors(vectorsRead));
    EXPECT_TRUE(readInterior("volVectorField", "nonuniform List<vector> \n" + vectorText + rest, 90000));
    EXPECT_EQ(values, vectorsRead);
    EXPECT_TRUE(readInterior("volVectorField", "nonuniform List<vector> \n" + rawList(vectorsRead, 3) + rest, 90000, "binary"));
    EXPECT_EQ(values, vectorsRead);
}

TEST_F(OFFileFields, NoScalarIsLostAtAChunkBorder)
{
    for (std::size_t shift = 0; shift < 12; ++shift) {
        for (const std::string separator : {"\n", " ", "\n\n"}) {
            std::string items = std::string(shift, '0') + "1.25" + separator;
            Values expected = {1.25};
            while (items.size() < OFFile::CHUNK_SIZE + 100) {
                items += "-1.5e-2" + separator;
                expected.push_back(-1.5e-2);
            }
            ASSERT_TRUE(readInterior("volScalarField",
                                     "nonuniform List<scalar> \n" + std::to_string(expected.size()) + "\n(" + items + ")\n;\n",
                                     expected.size()))
                << shift << "'" << separator << "'";
            ASSERT_EQ(values, expected);
        }
    }
}

TEST_F(OFFileFields, AListThatIsTooShortTellsWhatItHolds)
{
    struct Case
    {
        const char* className;
        std::string text;
        std::size_t size;
        std::string format;
        bool isRead;
        int promised;
        int found;
    };
    const Case cases[] = {
        {"volScalarField", "nonuniform List<scalar> \n3\n(\n1\n2\n)\n;\n", 3, "ascii", false, 3, 2},
        {"volVectorField", "nonuniform List<vector> \n2\n(\n(1 2 3)\n)\n;\n", 6, "ascii", false, 2, 1},
        {"volScalarField", "nonuniform List<scalar> \n3\n(" + raw(Values{1, 2}), 3, "binary", false, 3, 2},
        {"volScalarField", "nonuniform List<scalar> 3(1 2);\n", 3, "ascii", true, 3, 2},
        {"volVectorField", "nonuniform List<vector> 2((1 2 3));\n", 6, "ascii", true, 2, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const LogCapture log;
        EXPECT_EQ(readInterior(c.className, c.text, c.size, c.format), c.isRead);
        EXPECT_EQ(log.infos(), (std::vector<std::string>{"OFFile : List is shorter than its count: " +
                                                         std::to_string(c.promised) + " items promised, " +
                                                         std::to_string(c.found) + " found. File is " +
                                                         folder.str("p").toStdString()}));
    }
    EXPECT_EQ(values, (Values{1, 2, 3, 0, 0, 0})) << "what a line lacks is zero";
}

TEST_F(OFFileFields, SizesOfTensorsDifferOnPurpose)
{
    const OFFile file(true);
    EXPECT_EQ(file.calculateNumberOfValues("volTensorField", 4), 24);
    EXPECT_EQ(file.calculateNumberOfValues("pointVectorField", 4), 12);
    EXPECT_EQ(file.calculateNumberOfValues("volVectorField", 2000000000), -1);
    EXPECT_EQ(resultSizeFromName("volTensorField"), 9);
    EXPECT_EQ(resultSizeFromName("pointVectorField"), 3);
    const LogCapture log;
    EXPECT_EQ(resultSizeFromName("other"), 1);
    EXPECT_EQ(file.calculateNumberOfValues("other", 4), 0);
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{
                  "OFFile : Unexpected result class name. Not supported other",
                  "OFFile : Invalid resultClassName in open foam file. We do not recognize:  other"}));
}
