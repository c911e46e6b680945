// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace foamtext;

namespace {

/// One zone as readers deliver it.
struct Zone
{
    std::string name;
    int id;
    std::vector<int> labels;
    std::vector<int> flips = {};

    friend bool operator==(const Zone& a, const Zone& b) = default;
};

using Zones = std::vector<Zone>;

class OFFileZones : public testing::Test
{
protected:
    bool readCellZones(const std::string& body, const std::string& format = "ascii")
    {
        folder.write("zones", header("regIOobject", "zones", format) + body);
        std::vector<OFCellZone> read(3);
        const bool isRead = OFFile(true).readCellZones(folder.str("zones"), "zones", read, 9);
        zones.clear();
        for (const OFCellZone& zone : read) {
            zones.push_back({zone.name().toUtf8(), zone.id(), zone.cellIds()});
            EXPECT_TRUE(!isRead || zone.partId() == 9);
        }
        return isRead;
    }
    bool readFaceZones(const std::string& body, const std::string& format = "ascii")
    {
        folder.write("zones", header("regIOobject", "zones", format) + body);
        std::vector<OFFaceZone> read(3);
        const bool isRead = OFFile(true).readFaceZones(folder.str("zones"), "zones", read, 9);
        zones.clear();
        for (const OFFaceZone& zone : read) {
            zones.push_back({zone.name().toUtf8(), zone.id(), zone.faceIds(), zone.flipMap()});
            EXPECT_TRUE(!isRead || zone.partId() == 9);
        }
        return isRead;
    }
    static std::string cellZone(const std::string& name, const std::string& labelList)
    {
        return name + "\n{\n    type cellZone;\ncellLabels      " + labelList + ";\n}\n\n";
    }
    static std::string faceZone(const std::string& name, const std::string& labelList, const std::string& flips)
    {
        return name + "\n{\n    type faceZone;\nfaceLabels      List<label> \n" + labelList +
               "\n;\nflipMap         List<bool> " + flips + ";\n}\n\n";
    }
    LogLine line(int level, const std::string& message) const
    {
        return {level, "OFFile : " + message + folder.str("zones").toStdString()};
    }

    TempFolder folder;
    Zones zones;
};

} // namespace

TEST_F(OFFileZones, CellZonesAreReadInBothFormsAndEmptyOnesDropped)
{
    const LogCapture log;
    EXPECT_TRUE(
        readCellZones("4\n(\n" + cellZone("none", "0()") + cellZone("long", "List<label> \n3\n(\n4\n5\n6\n)\n") +
                      cellZone("w\xc3\xa4rme", "List<label> 2(16 17)") + cellZone("nil", "List<label> 0()") + ")\n"));
    EXPECT_EQ(zones, (Zones{{"long", 1, {4, 5, 6}}, {"w\xc3\xa4rme", 2, {16, 17}}}));
    EXPECT_TRUE(readCellZones("1\n(\n" + cellZone("none", "0()") + ")\n"));
    EXPECT_TRUE(zones.empty());
    const LogLine dropped = line(3, "Found empty list for cellIds in cellZone name none in file ");
    LogLine noneLeft = line(3, "Found CellZones with 0 Conten for file ");
    noneLeft.text += ".";
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{dropped, line(3, "Found empty list for cellIds in cellZone name nil in file "),
                                    dropped, noneLeft}));
    EXPECT_TRUE(readCellZones("0()\n"));
    EXPECT_TRUE(zones.empty());
}

// A chunk ends within the labels of a large zone, at each place behind them, and within the zone that follows.
TEST_F(OFFileZones, NothingIsLostAtAChunkBorder)
{
    const std::vector<int> many(37430, 123456);
    std::string rows = labels(many);
    for (std::size_t shift = 0; shift < 240; ++shift) {
        EXPECT_TRUE(readCellZones("3\n(\n" + cellZone("a", "List<label> \n" + list(37430, rows)) +
                                  cellZone("b", "List<label> 2(1 2)") + cellZone("c", "List<label> \n1\n(3)") + ")\n"));
        ASSERT_EQ(zones, (Zones{{"a", 1, many}, {"b", 2, {1, 2}}, {"c", 3, {3}}})) << shift;
        EXPECT_TRUE(readFaceZones("2\n(\n" + faceZone("a", list(37430, rows), "\n2\n(\n1\n0\n)\n") +
                                  faceZone("b", list(2, "3\n4\n"), "2{1}") + ")\n"));
        ASSERT_EQ(zones, (Zones{{"a", 1, many, {1, 0}}, {"b", 2, {3, 4}, {1, 1}}})) << shift;
        rows.insert(0, "0");
    }
    std::replace(rows.begin(), rows.end(), '\n', ' ');
    EXPECT_TRUE(readCellZones("1\n(\n" + cellZone("line", "List<label> 37430(" + rows + ")") + ")\n"));
    EXPECT_EQ(zones, (Zones{{"line", 1, many}}));
}

TEST_F(OFFileZones, BinaryZonesAreReadAsTheirAsciiTwins)
{
    // Labels that look like brackets, line ends and braces.
    const std::vector<int> nasty = {0x0a7d0a01, 0x29282829, 0x3b3b3b3b, 0x7b0a7d0a};
    EXPECT_TRUE(readCellZones("3\n(\n" + cellZone("raw", "List<label> \n" + rawList(nasty) + "\n") +
                                  cellZone("none", "0") +
                                  cellZone("b", "List<label> \n" + rawList(std::vector<int>{5}) + "\n") + ")\n",
                              "binary"));
    EXPECT_EQ(zones, (Zones{{"raw", 1, nasty}, {"b", 2, {5}}}));
    const std::string flips = "\n4\n(" + std::string("\0\1\1\0", 4) + ")\n";
    EXPECT_TRUE(readFaceZones(
        "2\n(\n" + faceZone("a", rawList(nasty), flips) + faceZone("b", rawList(nasty), "4{1}") + ")\n", "binary"));
    EXPECT_EQ(zones, (Zones{{"a", 1, nasty}, {"b", 2, nasty}})) << "flips of a binary file are passed over";
}

TEST_F(OFFileZones, FlipsAreAListOrOneValueForAll)
{
    EXPECT_TRUE(readFaceZones("3\n(\n" + faceZone("list", "3\n(\n30\n32\n43\n)", "\n3\n(\n1\n0\n1\n)\n") +
                              faceZone("uniform", "2\n(1 2)", "2{1}") + faceZone("row", "1\n(7)", "1(1)") + ")\n"));
    EXPECT_EQ(zones, (Zones{{"list", 1, {30, 32, 43}, {1, 0, 1}}, {"uniform", 2, {1, 2}, {1, 1}}, {"row", 3, {7}}}));
}

TEST_F(OFFileZones, BrokenCellZonesAreTold)
{
    const std::string good = cellZone("a", "List<label> 2(1 2)");
    const LogLine problem = line(1, "Problem parsing file ");
    const LogLine noCount = line(1, "problem reading cell Count in cellZone a in file ");
    const LogLine badCount = line(1, "Invalid number of items in CellZone file. File basename is ");
    const std::pair<std::string, std::vector<LogLine>> cases[] = {
        {"1\n", {problem}},
        {"2\n(\n" + good, {problem}},
        {"1\n(\na\n", {problem}},
        {"1\n(\na\n{\ntype b;\n", {problem}},
        {"1\n(\n" + cellZone("a", "List<label> 4(1 2)"),
         {line(3, "List is shorter than its count: 4 items promised, 2 found. File is "), problem}},
        {"1\n(\n" + cellZone("a", "List<label>\nnothing"), {problem}},
        {"1\n(\n" + cellZone("a", "List<label> (1 2)"), {noCount}},
        {"1\n(\n" + cellZone("a", "2 3 (1 2)"), {line(3, "Unexpected format parsing a in file "), noCount}},
        {"1\n(\n" + cellZone("a", "List<label> 100000(1 2)"), {badCount}},
        {"1000\n(\n" + good, {badCount}}};
    for (const auto& [body, lines] : cases) {
        const LogCapture log;
        EXPECT_FALSE(readCellZones(body)) << body;
        EXPECT_EQ(log.lines(), lines) << body;
    }
}

TEST_F(OFFileZones, BrokenFaceZonesFailInSilenceButForCountsThatLie)
{
    const LogCapture log;
    const std::string good = faceZone("a", "2\n(\n1\n2\n)", "2{0}");
    const std::string oneZone = "1\n(\n";
    for (const std::string& body : {std::string("1\n"), oneZone + "a\n", oneZone + good.substr(0, good.size() - 4)}) {
        EXPECT_FALSE(readFaceZones(body)) << body;
    }
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
    EXPECT_FALSE(readFaceZones("2\n(\n" + good));
    EXPECT_FALSE(readFaceZones(oneZone + faceZone("a", "200000\n(\n1\n)", "2{0}")));
    EXPECT_FALSE(readFaceZones(oneZone + faceZone("a", "2\n(\n1\n2\n)", "\n200000\n(\n0\n0\n)\n")));
    EXPECT_FALSE(readFaceZones("100000\n(\n" + good));
    const LogLine badCount = line(1, "Invalid number of items in FaceZone file. File basename is ");
    EXPECT_EQ(log.lines(), (std::vector<LogLine>{{3, "OFFile : Problem parsing file"}, badCount, badCount, badCount}));
}
