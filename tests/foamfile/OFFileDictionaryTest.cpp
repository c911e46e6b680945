// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
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

    const std::string patch = "a\n{\ntype wall;\nnFaces 1;\nstartFace 2;\n}\n";
    TempFolder folder;
    std::vector<OFBoundary> boundaries;
};

} // namespace

TEST(OFFileDictionary, EntriesAreTheLinesThatEndInASemicolon)
{
    TempFolder folder;
    folder.writeGz("controlDict.gz",
                   header("dictionary", "controlDict") +
                       "application\n    icoFoam;\nstartTime 0;\nendTime   0.5 s;\r\ndeltaT 1; // no\n"
                       "startTime 9;\n    writeControl timeStep;\nword;\nfunctions\n{\ninner value;\n}\n"
                       "last one;");
    std::map<dvn::Str, dvn::Str> entries;
    EXPECT_TRUE(OFFile(true).readDictionary(folder.str("controlDict"), "controlDict", &entries));
    // Compatibility (docs/compatibility.md, "shifted dictionary values").
    const std::map<dvn::Str, dvn::Str> expected = {{"startTime", "0"},
                                                   {"endTime", "0.5 s"},
                                                   {"writeControl", "trol timeStep"},
                                                   {"inner", "value"},
                                                   {"last", "one"}};
    EXPECT_EQ(entries, expected);
}

TEST_F(OFFileBoundary, ReadsPatchesWithTheirEntries)
{
    EXPECT_TRUE(
        readBoundary("2\n(\n    inlet\n    {\n        type            patch;\n        inGroups 1(wall);\n"
                     "        nFaces 20; // comment\n        nFaces 9;\n        startFace       760x;\n        none\n"
                     "    }\n\n    w\xc3\xa4nde \n  {\r\n type wall;\r\n nFaces -3;\r\n startFace x;\r\n  }\r\n)\n"));
    std::vector<std::string> patches;
    for (const OFBoundary& boundary : boundaries) {
        patches.push_back(boundary.patchName().toUtf8() + "|" + boundary.type().toUtf8() + "|" +
                          std::to_string(boundary.faceCount()) + "|" + std::to_string(boundary.startFaceIndex()) + "|" +
                          std::to_string(boundary.partID()));
    }
    // A negative count reads as 0.
    EXPECT_EQ(patches, (std::vector<std::string>{"inlet|patch|20|760|7", "w\xc3\xa4nde |wall|0|0|7"}));
    EXPECT_TRUE(readBoundary("0\n(\n)\n"));
    EXPECT_TRUE(boundaries.empty());
}

// Tools that edit dictionaries write such a comment. Digits elsewhere in a comment are not the count.
TEST_F(OFFileBoundary, ACommentMayFollowTheCount)
{
    const std::string list = "(\n a\n {\n type wall;\n nFaces 4;\n startFace 2;\n }\n)\n";
    for (const std::string count : {"1 // entry0\n", "\n// version 3 // of 2 patches\n  1\t //(\n", "1\n// 7\n"}) {
        EXPECT_TRUE(readBoundary(count + list)) << count;
        ASSERT_EQ(boundaries.size(), 1U) << count;
        EXPECT_EQ(boundaries.front().faceCount(), 4U) << count;
    }
}

// Compatibility (docs/compatibility.md, "the exception text").
TEST_F(OFFileBoundary, MissingEntriesThrow)
{
    for (const std::string key : {"type", "nFaces", "startFace"}) {
        EXPECT_THROW(readBoundary("1\n(\n" + std::string(patch).replace(patch.find(key), 1, "x")), std::out_of_range);
    }
    EXPECT_THROW(readBoundary("2\n(\n" + patch), std::out_of_range) << "the second patch has no name";
}

TEST_F(OFFileBoundary, RefusesCountLargerThanFile)
{
    const LogCapture log;
    EXPECT_FALSE(readBoundary("1000000\n(\n" + patch) || readBoundary("4294967295\n(\n" + patch));
    EXPECT_TRUE(boundaries.empty());
    const std::string line = "OFFile : Invalid number of items in boundary file. File basename is ";
    EXPECT_EQ(log.lines(), std::vector<LogLine>(2, {1, line + folder.str("boundary").toStdString()}));
}
