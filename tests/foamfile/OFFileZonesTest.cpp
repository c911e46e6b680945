// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace foamtext;

namespace {

/// One zone with its name, id, part and labels, as readers deliver it.
struct Zone
{
    std::string name;
    int id;
    int part;
    std::vector<int> labels;
    std::vector<int> flips;

    friend bool operator==(const Zone& a, const Zone& b) = default;
};

std::ostream& operator<<(std::ostream& stream, const Zone& zone)
{
    return stream << zone.name << " id " << zone.id << " part " << zone.part << " labels "
                  << testing::PrintToString(zone.labels) << " flips " << testing::PrintToString(zone.flips);
}

class OFFileZones : public testing::Test
{
protected:
    bool readCellZones(const std::string& body, const std::string& format = "ascii")
    {
        folder.write("cellZones", header("regIOobject", "cellZones", format) + body);
        std::vector<OFCellZone> read(3);
        const bool isRead = OFFile(true).readCellZones(folder.str("cellZones"), "cellZones", read, 9);
        zones.clear();
        for (const OFCellZone& zone : read) {
            zones.push_back({zone.name().toUtf8(), zone.id(), zone.partId(), zone.cellIds(), {}});
        }
        return isRead;
    }
    bool readFaceZones(const std::string& body, const std::string& format = "ascii")
    {
        folder.write("faceZones", header("regIOobject", "faceZones", format) + body);
        std::vector<OFFaceZone> read(3);
        const bool isRead = OFFile(true).readFaceZones(folder.str("faceZones"), "faceZones", read, 9);
        zones.clear();
        for (const OFFaceZone& zone : read) {
            zones.push_back({zone.name().toUtf8(), zone.id(), zone.partId(), zone.faceIds(), zone.flipMap()});
        }
        return isRead;
    }
    static std::string cellZone(const std::string& name, const std::string& labelList)
    {
        return name + "\n{\n    type cellZone;\ncellLabels      " + labelList + ";\n}\n\n";
    }
    static std::string faceZone(const std::string& name, const std::vector<int>& labelList, const std::string& flips)
    {
        return name + "\n{\n    type faceZone;\nfaceLabels      List<label> \n" + std::to_string(labelList.size()) +
               "\n(\n" + labels(labelList) + ")\n;\nflipMap         List<bool> " + flips + ";\n}\n\n";
    }
    static std::string rowOf(const std::vector<int>& values)
    {
        std::string row = labels(values);
        std::replace(row.begin(), row.end(), '\n', ' ');
        return row;
    }
    std::string error(const std::string& message) const { return "OFFile : " + message + zonePath(); }
    std::string zonePath() const { return folder.str("cellZones").toStdString(); }

    TempFolder folder;
    std::vector<Zone> zones;
};

} // namespace

TEST_F(OFFileZones, CellZonesAreReadInBothFormsAndEmptyOnesDropped)
{
    const LogCapture log;
    EXPECT_TRUE(readCellZones("4\n(\n" + cellZone("none", "0()") + cellZone("long", "List<label> \n3\n(\n4\n5\n6\n)\n") +
                              cellZone("w\xc3\xa4rme", "List<label> 2(16 17)") + cellZone("nothing", "List<label> 0()") +
                              ")\n"));
    EXPECT_EQ(zones, (std::vector<Zone>{{"long", 1, 9, {4, 5, 6}, {}}, {"w\xc3\xa4rme", 2, 9, {16, 17}, {}}}));
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{
                  {3, "OFFile : Found empty list for cellIds in cellZone name none in file " + zonePath()},
                  {3, "OFFile : Found empty list for cellIds in cellZone name nothing in file " + zonePath()}}));
    EXPECT_TRUE(readCellZones("1\n(\n" + cellZone("none", "0()") + ")\n"));
    EXPECT_TRUE(zones.empty());
    EXPECT_EQ(log.infos().back(), "OFFile : Found CellZones with 0 Conten for file " + zonePath() + ".");
    EXPECT_TRUE(readCellZones("0()\n"));
    EXPECT_TRUE(zones.empty());
}

// The labels of a large zone run over many chunks, and the next zone starts anywhere in one.
TEST_F(OFFileZones, ZonesRunOverChunkBorders)
{
    const std::vector<int> many(40000, 123456);
    for (std::size_t shift = 0; shift < 70; shift += 3) {
        const std::string name(1 + shift, 'n');
        EXPECT_TRUE(readCellZones("3\n(\n" + cellZone(name, "List<label> \n" + list(40000, labels(many))) +
                                  cellZone("short", "List<label> 2(1 2)") +
                                  cellZone("line", "List<label> 40000(" + rowOf(many) + ")") + ")\n"));
        ASSERT_EQ(zones, (std::vector<Zone>{{name, 1, 9, many, {}}, {"short", 2, 9, {1, 2}, {}}, {"line", 3, 9, many, {}}}));
        EXPECT_TRUE(readFaceZones("2\n(\n" + faceZone(name, many, "40000{1}") + faceZone("b", {3, 4}, "2{0}") + ")\n"));
        ASSERT_EQ(zones, (std::vector<Zone>{{name, 1, 9, many, std::vector<int>(40000, 1)}, {"b", 2, 9, {3, 4}, {0, 0}}}));
    }
}

TEST_F(OFFileZones, BinaryZonesAreReadAsTheirAsciiTwins)
{
    // Labels that look like brackets, line ends and braces.
    const std::vector<int> cells = {0x0a7d0a01, 0x29282829, 0x3b3b3b3b, 0x7b0a7d0a};
    EXPECT_TRUE(readCellZones("3\n(\n" + cellZone("raw", "List<label> \n" + rawList(cells) + "\n") + cellZone("none", "0") +
                                  cellZone("b", "List<label> \n" + rawList(std::vector<int>{5}) + "\n") + ")\n",
                              "binary"));
    EXPECT_EQ(zones, (std::vector<Zone>{{"raw", 1, 9, cells, {}}, {"b", 2, 9, {5}, {}}}));

    const std::string flips = std::string("\n4\n(") + std::string("\0\1\1\0", 4) + ")\n";
    const auto rawZone = [&](const std::string& name, const std::string& flipList) {
        return name + "\n{\n    type faceZone;\nfaceLabels      List<label> \n" + rawList(cells) +
               "\n;\nflipMap         List<bool> " + flipList + ";\n}\n\n";
    };
    EXPECT_TRUE(readFaceZones("2\n(\n" + rawZone("a", flips) + rawZone("b", "4{1}") + ")\n", "binary"));
    // Flips of a binary file are passed over, in either form.
    EXPECT_EQ(zones, (std::vector<Zone>{{"a", 1, 9, cells, {}}, {"b", 2, 9, cells, {}}}));
}

TEST_F(OFFileZones, FlipsAreAListOrOneValueForAll)
{
    EXPECT_TRUE(readFaceZones("3\n(\n" + faceZone("list", {30, 32, 43}, "\n3\n(\n1\n0\n1\n)\n") +
                              faceZone("uniform", {1, 2}, "2{1}") + faceZone("plain", {7}, "1(1)") + ")\n"));
    EXPECT_EQ(zones, (std::vector<Zone>{{"list", 1, 9, {30, 32, 43}, {1, 0, 1}},
                                        {"uniform", 2, 9, {1, 2}, {1, 1}},
                                        {"plain", 3, 9, {7}, {}}}));
    EXPECT_TRUE(readFaceZones("0()\n"));
    EXPECT_TRUE(zones.empty());
}

TEST_F(OFFileZones, BrokenCellZonesAreTold)
{
    const std::string promised = "List is shorter than its count: 4 items promised, 2 found. File is ";
    struct Case
    {
        std::string body;
        std::vector<LogLine> lines;
    };
    const std::string good = cellZone("a", "List<label> 2(1 2)");
    const LogLine problem = {1, error("Problem parsing file ")};
    const Case cases[] = {
        {"1\n", {problem}},
        {"2\n(\n" + good, {problem}},
        {"1\n(\na\n", {problem}},
        {"1\n(\na\n{\ntype b;\n", {problem}},
        {"1\n(\n" + cellZone("a", "List<label> 4(1 2)"), {{3, error(promised)}, problem}},
        {"1\n(\n" + cellZone("a", "List<label>\nnothing"), {problem}},
        {"1\n(\n" + cellZone("a", "List<label> (1 2)"),
         {{1, error("problem reading cell Count in cellZone a in file ")}}},
        {"1\n(\n" + cellZone("a", "2 3 (1 2)"),
         {{3, error("Unexpected format parsing a in file ")},
          {1, error("problem reading cell Count in cellZone a in file ")}}},
        {"1\n(\n" + cellZone("a", "List<label> 100000(1 2)"),
         {{1, error("Invalid number of items in CellZone file. File basename is ")}}},
        {"1000\n(\n" + good, {{1, error("Invalid number of items in CellZone file. File basename is ")}}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body);
        const LogCapture log;
        EXPECT_FALSE(readCellZones(c.body));
        EXPECT_EQ(log.lines(), c.lines);
    }
}

TEST_F(OFFileZones, BrokenFaceZonesFailInSilenceButForCountsThatLie)
{
    const LogCapture log;
    const std::string good = faceZone("a", {1, 2}, "2{0}");
    for (const std::string& body : {std::string("1\n"), std::string("1\n(\na\n"), "1\n(\n" + good.substr(0, 60),
                                   "1\n(\n" + good.substr(0, good.size() - 4)}) {
        EXPECT_FALSE(readFaceZones(body)) << body;
    }
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
    EXPECT_FALSE(readFaceZones("2\n(\n" + good));
    EXPECT_EQ(log.lines().back(), (LogLine{3, "OFFile : Problem parsing file"}));
    std::string lying = good;
    lying.replace(lying.find("\n2\n"), 3, "\n200000\n");
    EXPECT_FALSE(readFaceZones("1\n(\n" + lying));
    EXPECT_FALSE(readFaceZones("1\n(\n" + faceZone("a", {1, 2}, "\n200000\n(\n0\n0\n)\n")));
    EXPECT_FALSE(readFaceZones("100000\n(\n" + good));
    EXPECT_EQ(log.errors(), std::vector<std::string>(
                                3, "OFFile : Invalid number of items in FaceZone file. File basename is " +
                                       folder.str("faceZones").toStdString()));
}
