// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>

using foamtext::header;

namespace {

class OFFileBoundary : public testing::Test
{
protected:
    bool readBoundary(const std::string& body)
    {
        folder.write("boundary", header("polyBoundaryMesh", "boundary") + body);
        return OFFile(true).readBoundary(folder.str("boundary"), "boundary", boundaries, 7);
    }

    TempFolder folder;
    std::vector<OFBoundary> boundaries;
};

} // namespace

TEST(OFFileDictionary, EntriesAreTheLinesThatEndInASemicolon)
{
    TempFolder folder;
    folder.writeGz("controlDict.gz", header("dictionary", "controlDict") + "application\n    icoFoam;\n"
                                                                           "startTime 0;\n"
                                                                           "endTime   0.5 s;\r\n"
                                                                           "deltaT 1; // comment\n"
                                                                           "startTime 9;\n"
                                                                           "    writeControl timeStep;\n"
                                                                           "word;\n"
                                                                           "functions\n{\ninner value;\n}\n"
                                                                           "last one;");
    std::map<dvn::Str, dvn::Str> entries;
    EXPECT_TRUE(OFFile(true).readDictionary(folder.str("controlDict"), "controlDict", &entries));
    // The value of an indented line is counted off from the start of the line.
    const std::map<dvn::Str, dvn::Str> expected = {{"startTime", "0"},
                                                   {"endTime", "0.5 s"},
                                                   {"writeControl", "trol timeStep"},
                                                   {"inner", "value"},
                                                   {"last", "one"}};
    EXPECT_EQ(entries, expected);
}

TEST(OFFileDictionary, FailuresAreTold)
{
    TempFolder folder;
    folder.write("a", header("dictionary", "b"));
    folder.write("b", header("other", "b"));
    folder.write("c", header("other", "c"));
    std::map<dvn::Str, dvn::Str> entries;
    std::vector<OFBoundary> boundaries;
    std::vector<OFCellZone> cellZones;
    std::vector<OFFaceZone> faceZones;
    const LogCapture log;
    EXPECT_FALSE(OFFile(true).readDictionary(folder.str("none"), "none", &entries));
    EXPECT_FALSE(OFFile(true).readDictionary(folder.str("a"), "a", &entries));
    EXPECT_FALSE(OFFile(true).readDictionary(folder.str("b"), "b", &entries));
    EXPECT_FALSE(OFFile(true).readBoundary(folder.str("none"), "none", boundaries, 1));
    EXPECT_FALSE(OFFile(true).readBoundary(folder.str("a"), "a", boundaries, 1));
    EXPECT_FALSE(OFFile(true).readBoundary(folder.str("c"), "c", boundaries, 1));
    EXPECT_FALSE(OFFile(true).readCellZones(folder.str("none"), "none", cellZones, 1));
    EXPECT_FALSE(OFFile(true).readCellZones(folder.str("a"), "a", cellZones, 1));
    EXPECT_FALSE(OFFile(true).readCellZones(folder.str("c"), "c", cellZones, 1));
    EXPECT_FALSE(OFFile(true).readFaceZones(folder.str("none"), "none", faceZones, 1));
    EXPECT_FALSE(OFFile(true).readFaceZones(folder.str("a"), "a", faceZones, 1));
    EXPECT_FALSE(OFFile(true).readFaceZones(folder.str("c"), "c", faceZones, 1));
    const auto line = [&](const std::string& message, const std::string& name) {
        return "OFFile : " + message + " File basename is " + folder.str(name).toStdString();
    };
    EXPECT_EQ(log.errors(), (std::vector<std::string>{
                                line("Failed to open dictionary file.", "none"),
                                line("Unexpected object in dictionary file.", "a"),
                                line("Unexpected class in dictionary file.", "b"),
                                line("Failed to open boundary file.", "none"),
                                line("Unexpected object in dictionary file.", "a"),
                                line("Failed to read number of boundaries in boundary file.", "c"),
                                line("Failed to open CellZone file.", "none"),
                                line("Unexpected object in dictionary file.", "a"),
                                line("Failed to read number of CellZones from file.", "c"),
                                line("Failed to open FaceZone file.", "none"),
                                line("Unexpected object in dictionary file.", "a"),
                                line("Failed to read number of FaceZones from file.", "c")}));
}

TEST_F(OFFileBoundary, PatchesComeWithTheirEntries)
{
    boundaries.resize(5);
    EXPECT_TRUE(readBoundary("2\n(\n    inlet\n    {\n        type            patch;\n"
                             "        inGroups        1(wall);\n        nFaces 20; // comment\n        nFaces 9;\n"
                             "        startFace       760x;\n        indented without semicolon\n    }\n"
                             "\n    w\xc3\xa4nde \n  {\r\n type wall;\r\n nFaces -3;\r\n startFace none;\r\n  }\r\n)\n"));
    ASSERT_EQ(boundaries.size(), 2U);
    EXPECT_EQ(boundaries[0].patchName(), "inlet");
    EXPECT_EQ(boundaries[0].type(), "patch");
    EXPECT_EQ(boundaries[0].faceCount(), 20U);
    EXPECT_EQ(boundaries[0].startFaceIndex(), 760);
    EXPECT_EQ(boundaries[0].partID(), 7);
    EXPECT_EQ(boundaries[1].patchName().toUtf8(), "w\xc3\xa4nde ");
    EXPECT_EQ(boundaries[1].faceCount(), 0U) << "a negative count is none, and not the largest";
    EXPECT_EQ(boundaries[1].startFaceIndex(), 0);
    EXPECT_TRUE(readBoundary("0\n(\n)\n"));
    EXPECT_TRUE(boundaries.empty());
}

TEST_F(OFFileBoundary, APatchKeepsAllItsKeysAndTheFirstOfEach)
{
    folder.write("info", "// comment\n{\n  a 1 ;\n  b;\n  a 2;\n  {\n  c 3;\n  }\n  d 4;\n");
    OFFile file(false);
    EXPECT_TRUE(file.open(folder.str("info")));
    // The comment in front is taken for the name, and the brace of the inner block ends the entry.
    const std::map<std::string, std::string> expected = {
        {"patchName", "// comment"}, {"a", "1 "}, {"", ""}, {"c", "3"}};
    EXPECT_EQ(file.readBoundaryInfo(), expected);
    EXPECT_EQ(file.readBoundaryInfo(), (std::map<std::string, std::string>{{"patchName", "d 4;"}}));
}

TEST_F(OFFileBoundary, MissingPiecesLeaveByException)
{
    const std::string patch = "a\n{\ntype wall;\nnFaces 1;\nstartFace 2;\n}\n";
    for (const std::string key : {"type", "nFaces", "startFace"}) {
        std::string text = patch;
        text.replace(text.find(key), key.size(), "other");
        EXPECT_THROW(readBoundary("1\n(\n" + text + ")\n"), std::out_of_range) << key;
    }
    EXPECT_THROW(readBoundary("2\n(\n" + patch), std::out_of_range) << "the second patch has no name";
    EXPECT_FALSE(readBoundary("2\n"));
    const LogCapture log;
    boundaries.clear();
    for (const std::string count : {"1000000", "4294967295"}) {
        EXPECT_FALSE(readBoundary(count + "\n(\n" + patch + ")\n"));
        EXPECT_TRUE(boundaries.empty());
        EXPECT_EQ(log.errors().back(), "OFFile : Invalid number of items in boundary file. File basename is " +
                                           folder.str("boundary").toStdString());
    }
}
