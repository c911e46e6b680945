// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace foamtext;

namespace {

enum Kind
{
    CELLS,
    FACES
};

/// Labels whose bytes look like brackets, line ends and braces.
const std::vector<int> NASTY = {0x0a7d0a01, 0x29282829, 0x3b3b3b3b, 0x7b0a7d0a};

std::string shown(const std::vector<int>& values)
{
    std::string text = labels(values);
    std::ranges::replace(text, '\n', ' ');
    return text;
}

std::string cellZone(const std::string& name, const std::string& labelList)
{
    return name + "\n{\n    type cellZone;\ncellLabels      " + labelList + ";\n}\n\n";
}

std::string faceZone(const std::string& name, const std::string& labelList, const std::string& flips)
{
    return name + "\n{\n    type faceZone;\nfaceLabels      List<label> \n" + labelList +
           "\n;\nflipMap         List<bool> " + flips + ";\n}\n\n";
}

class OFFileZones : public testing::Test
{
protected:
    /// Name, part, id, labels and, after a slash, flips of each zone of a file.
    std::string read(Kind kind, const std::string& body, const std::string& format = "ascii")
    {
        folder.write("zones", header("regIOobject", "zones", format) + body);
        std::vector<OFCellZone> cellZones(kind == CELLS ? 3 : 0);
        std::vector<OFFaceZone> faceZones(kind == FACES ? 3 : 0);
        if (!(kind == CELLS ? OFFile(true).readCellZones(path, "zones", cellZones, 9)
                            : OFFile(true).readFaceZones(path, "zones", faceZones, 9))) {
            return "refused";
        }
        std::string text;
        for (const OFCellZone& zone : cellZones) {
            text += zone.name().toUtf8() + "#" + std::to_string(zone.partId()) + std::to_string(zone.id()) + ": " +
                    shown(zone.cellIds());
        }
        for (const OFFaceZone& zone : faceZones) {
            text += zone.name().toUtf8() + "#" + std::to_string(zone.partId()) + std::to_string(zone.id()) + ": " +
                    shown(zone.faceIds()) + "/ " + shown(zone.flipMap());
        }
        return text;
    }

    TempFolder folder;
    dvn::Str path = folder.str("zones");
};

} // namespace

TEST_F(OFFileZones, ReadsAllFormsOfListsAndDropsEmptyCellZones)
{
    EXPECT_EQ(read(CELLS, "4\n(\n" + cellZone("none", "0()") + cellZone("long", "List<label> \n3\n(\n4\n5\n6\n)\n") +
                              cellZone("w\xc3\xa4rme", "List<label> 2(16 17)") + cellZone("nil", "List<label> 0()") +
                              ")\n"),
              "long#91: 4 5 6 w\xc3\xa4rme#92: 16 17 ");
    EXPECT_EQ(read(CELLS, "1\n(\n" + cellZone("none", "0()") + ")\n") + read(CELLS, "0()\n"), "");
    EXPECT_EQ(read(CELLS,
                   "3\n(\n" + cellZone("raw", "List<label> \n" + rawList(NASTY) + "\n") + cellZone("none", "0") +
                       cellZone("b", "List<label> \n" + rawList(std::vector<int>{5}) + "\n") + ")\n",
                   "binary"),
              "raw#91: " + shown(NASTY) + "b#92: 5 ");
    EXPECT_EQ(read(FACES, "3\n(\n" + faceZone("list", "3\n(\n30\n32\n43\n)", "\n3\n(\n1\n0\n1\n)\n") +
                              faceZone("uniform", "2\n(1 2)", "2{1}") + faceZone("row", "1\n(7)", "1(1)") + ")\n"),
              "list#91: 30 32 43 / 1 0 1 uniform#92: 1 2 / 1 1 row#93: 7 / ");
    const std::string flips = "\n4\n(" + std::string("\0\1\1\0", 4) + ")\n";
    EXPECT_EQ(read(FACES,
                   "2\n(\n" + faceZone("a", rawList(NASTY), flips) + faceZone("b", rawList(NASTY), "4{1}") + ")\n",
                   "binary"),
              "a#91: " + shown(NASTY) + "/ b#92: " + shown(NASTY) + "/ ")
        << "binary flip maps are skipped";
}

// A chunk ends within the labels of a large zone, at each place after them, and within the next zone.
TEST_F(OFFileZones, NothingIsLostAtAChunkBorder)
{
    const std::vector<int> many(37430, 123456);
    const std::string manyShown = "a#91: " + shown(many);
    std::string rows = labels(many);
    for (std::size_t shift = 0; shift < 240; ++shift) {
        ASSERT_TRUE(read(CELLS, "3\n(\n" + cellZone("a", "List<label> \n" + list(37430, rows)) +
                                    cellZone("b", "List<label> 2(1 2)") + cellZone("c", "List<label> \n1\n(3)") +
                                    ")\n") == manyShown + "b#92: 1 2 c#93: 3 ")
            << shift;
        ASSERT_TRUE(read(FACES, "2\n(\n" + faceZone("a", list(37430, rows), "\n2\n(\n1\n0\n)\n") +
                                    faceZone("b", list(2, "3\n4\n"), "2{1}") + ")\n") ==
                    manyShown + "/ 1 0 b#92: 3 4 / 1 1 ")
            << shift;
        rows.insert(0, "0");
    }
    std::ranges::replace(rows, '\n', ' ');
    EXPECT_TRUE(read(CELLS, "1\n(\n" + cellZone("a", "List<label> 37430(" + rows + ")") + ")\n") == manyShown);
}

TEST_F(OFFileZones, RefusesAndReportsBrokenZones)
{
    const std::string problem = "Problem parsing file ";
    const std::string noCount = "problem reading cell Count in cellZone a in file ";
    const std::string badCells = "Invalid number of items in CellZone file. File basename is ";
    const std::string badFaces = "Invalid number of items in FaceZone file. File basename is ";
    const std::string good = faceZone("a", "2\n(\n1\n2\n)", "2{0}");
    struct Case
    {
        Kind kind;
        std::string body;
        std::string error; ///< empty if nothing is logged
    };
    const Case cases[] = {{CELLS, "2\n(\n" + cellZone("a", "List<label> 2(1 2)"), problem},
                          {CELLS, "1\n(\na\n{\ntype b;\n", problem},
                          {CELLS, "1\n(\n" + cellZone("a", "List<label> 4(1 2)"), problem},
                          {CELLS, "1\n(\n" + cellZone("a", "List<label> (1 2)"), noCount},
                          {CELLS, "1\n(\n" + cellZone("a", "List<label> 100000(1 2)"), badCells},
                          {CELLS, "1000\n(\n" + cellZone("a", "List<label> 2(1 2)"), badCells},
                          {FACES, "1\n(\na\n", ""},
                          {FACES, "1\n(\n" + good.substr(0, good.size() - 4), ""},
                          {FACES, "1\n(\n" + faceZone("a", "200000\n(\n1\n)", "2{0}"), badFaces},
                          {FACES, "1\n(\n" + faceZone("a", "2\n(\n1\n2\n)", "\n200000\n(\n0\n0\n)\n"), badFaces},
                          {FACES, "100000\n(\n" + good, badFaces}};
    for (const auto& [kind, body, error] : cases) {
        const LogCapture log;
        EXPECT_EQ(read(kind, body), "refused") << body;
        EXPECT_EQ(log.errors(), error.empty() ? std::vector<std::string>()
                                              : std::vector<std::string>{"OFFile : " + error + path.toStdString()});
    }
}
