// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/CaseFiles.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <tuple>

using namespace foamtext;

namespace {

std::string fileOf(const std::string& className, const std::string& format, const std::string& body)
{
    return header(className, "thing", format, note(42)) + body;
}

/// The number of nodes of each face and those nodes.
std::string rawFaces(const Faces& faces)
{
    std::string bytes;
    for (const std::vector<int>& nodes : faces) {
        bytes += raw(std::vector<std::size_t>{nodes.size()}) + raw(nodes);
    }
    return bytes;
}

/// The three kinds of lists that fill a whole file.
class OFFileLists : public testing::Test
{
protected:
    /// Reads a file with the reader of its class. `content` becomes the bytes of what was read.
    bool read(const std::string& className, const std::string& bytes)
    {
        folder.write("100%1", bytes);
        OFFile file(true);
        bool isRead = false;
        if (className == "labelList") {
            isRead = file.readLabelList(path, "thing", &labelsRead, &cells);
            content = raw(labelsRead);
        } else if (className == "vectorField") {
            std::vector<double> values;
            isRead = file.readVectorField(path, "thing", &values);
            content = raw(values);
        } else {
            FacesData data;
            isRead = file.readFaceList(path, "thing", &data);
            content = rawFaces(unpacked(data));
            const auto named = std::accumulate(data.nodeCounts.begin(), data.nodeCounts.end(), std::size_t{0});
            EXPECT_TRUE(className != "faceList" || data.nodes.size() == named) << "only compact lists have slack";
        }
        return isRead;
    }

    TempFolder folder;
    /// The percent sign must not act as a placeholder in messages.
    const dvn::Str path = folder.str("100%1");
    std::vector<int> labelsRead;
    std::string content;
    int cells = 0;
};

} // namespace

TEST_F(OFFileLists, EachReaderReportsOnceInItsOwnWords)
{
    const std::pair<std::string, std::string> readers[] = {
        {"labelList", "labels file"}, {"vectorField", "vector field file"}, {"faceList", "face list file"}};
    for (const auto& [className, kind] : readers) {
        const std::string good = fileOf(className, "ascii", "");
        const std::pair<std::string, std::string> cases[] = {
            {"", "Failed to open "},
            {header(className, "other"), "Unexpected object in "},
            {header("other", "thing"), "Unexpected class in "},
            {good + "no count 3", "Failed to read number of items in "},
            {good + (className == "labelList" ? "{7}" : "2{7}\n"), "Failed to read number of items in "},
            {good + "2000000000\n(\n)\n", "Invalid number of items in "}};
        for (const auto& [text, message] : cases) {
            const LogCapture log;
            EXPECT_FALSE(read(className, text));
            const std::string line = "OFFile : " + message + kind + ". File basename is " + path.toStdString();
            EXPECT_EQ(log.lines(), (std::vector<LogLine>{{1, line}}));
        }
        for (const std::string missing : {"object", "class"}) {
            try {
                read(className, std::string(good).replace(good.find(missing), 1, "x"));
                ADD_FAILURE() << "no exception for a missing " << missing;
            } catch (const std::out_of_range& e) {
                EXPECT_STREQ(e.what(), "map::at:  key not found");
            }
        }
        EXPECT_TRUE(read(className, good + "0()\n"));
    }
}

// Any file may lie where a list is expected, and a compressed one may hold a thousand times its size.
TEST_F(OFFileLists, ExtendedReadingSeeksTheHeaderOnlyNearTheStart)
{
    for (const auto& [commentLength, isFound] : {std::pair(1000, true), std::pair(300000, false)}) {
        folder.write("100%1", "/*" + std::string(static_cast<std::size_t>(commentLength), ' ') + "*/\n" +
                                  fileOf("labelList", "ascii", "\n1\n(\n7\n)\n"));
        OFFile file(true, Reading::Extended);
        EXPECT_EQ(file.readLabelList(path, "thing", &labelsRead, &cells), isFound) << commentLength;
    }
}

TEST_F(OFFileLists, RefusesBinaryFaceListsWithoutAMessage)
{
    const LogCapture log;
    EXPECT_FALSE(read("faceList", fileOf("faceList", "binary", list(1, "3(1 2 3)\n"))));
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}

TEST_F(OFFileLists, AsciiBinaryAndGzipGiveTheSame)
{
    // Several chunks each, so that the four or six workers take a second pass.
    const std::vector<int> owners = someLabels(60000);
    const std::vector<double> points = someVectors(30000);
    Faces faceSet(110000);
    for (std::size_t i = 0; i < faceSet.size(); ++i) {
        faceSet[i].assign(i % 50 == 49 ? 12 : 3 + i % 2, static_cast<int>(i));
    }
    ASSERT_GT(faces(faceSet).size(), 7 * OFFile::CHUNK_SIZE);
    std::string onOneLine = vectors(points);
    std::replace(onOneLine.begin(), onOneLine.end(), '\n', ' ');
    struct Case
    {
        std::string className;
        std::string format;
        std::string body;
        std::string expected; ///< as bytes
    };
    const Case cases[] = {
        {"labelList", "ascii", list(60000, labels(owners)), raw(owners)},
        {"labelList", "binary", rawList(owners) + "\n", raw(owners)},
        {"vectorField", "ascii", list(30000, vectors(points)), raw(points)},
        {"vectorField", "ascii", "30000(" + onOneLine + ")\n", raw(points)},
        {"vectorField", "binary", rawList(points, 3) + "\n", raw(points)},
        {"faceList", "ascii", list(110000, faces(faceSet)), rawFaces(faceSet)},
        {"faceCompactList", "ascii", list(110001, faces(faceSet)), rawFaces(faceSet)},
        {"faceCompactList", "binary", compactFaces(faceSet), rawFaces(faceSet)},
    };
    const LogCapture log;
    for (const auto& [className, format, body, expected] : cases) {
        const std::string plain = fileOf(className, format, body);
        for (const std::string& bytes : {plain, gzipped(plain)}) {
            EXPECT_TRUE(read(className, bytes));
            EXPECT_TRUE(content == expected) << className << " " << format << " of " << bytes.size();
        }
    }
    EXPECT_EQ(cells, 42);
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}

// A wrong count must neither write past the target nor go unreported.
TEST_F(OFFileLists, ShortAndLongListsKeepWhatWasRead)
{
    using Ints = std::vector<int>;
    using Doubles = std::vector<double>;
    const std::string two = "4 items promised, 2 found";
    const std::string one = "2 items promised, 1 found";
    const std::string three = faces({{1, 2, 3}, {4, 5, 6}, {7, 8, 9, 10}});
    struct Case
    {
        const char* className;
        const char* format;
        std::string body;
        bool isRead;
        std::string expected;
        std::string report; ///< empty if nothing is logged
    };
    const Case cases[] = {
        {"labelList", "ascii", "2\n(\n1\n2\n3\n)\n", true, raw(Ints{1, 2}), ""},
        {"labelList", "ascii", "4\n(\n1\n2\n)\n", false, raw(Ints{1, 2, 0, 0}), two},
        {"labelList", "ascii", "4\n(\n1\n2\n-3\n4\n)\n", false, raw(Ints{1, 2, 0, 0}), two},
        {"labelList", "ascii", "2\n(\n1\n" + std::string(5000, '1') + "\n)\n", false, raw(Ints{1, 0}), one},
        {"labelList", "binary", "4\n(" + raw(Ints{1, 2}), false, raw(Ints{1, 2, 0, 0}), two},
        {"vectorField", "ascii", list(20, vectors(someVectors(30000))), true, raw(someVectors(20)), ""},
        {"vectorField", "ascii", "2\n(\n(1 2 3)\n)\n", true, raw(Doubles{1, 2, 3, 0, 0, 0}), one},
        {"vectorField", "binary", "2\n(" + raw(Doubles{1, 2, 3}), false, raw(Doubles{1, 2, 3, 0, 0, 0}), one},
        {"faceList", "ascii", list(2, three), true, rawFaces(Faces{{1, 2, 3}, {4, 5, 6}}), ""},
        {"faceList", "ascii", list(4, faces({{1, 2, 3}, {4, 5, 6}})), true,
         rawFaces(Faces{{1, 2, 3}, {4, 5, 6}, {}, {}}), two},
    };
    for (const auto& [className, format, body, isRead, expected, report] : cases) {
        SCOPED_TRACE(body.substr(0, 40));
        const LogCapture log;
        labelsRead.clear();
        EXPECT_EQ(read(className, fileOf(className, format, body)), isRead);
        EXPECT_EQ(content, expected);
        const std::string line =
            "OFFile : List is shorter than its count: " + report + ". File is " + path.toStdString();
        EXPECT_EQ(joined(log.infos()), report.empty() ? "" : line);
    }
}

TEST_F(OFFileLists, RefusesCountLargerThanFile)
{
    // A compressed file can hold a thousand times its size, so its data is counted before a large count is believed.
    const std::string good = fileOf("labelList", "ascii", "100000\n(\n1\n)\n");
    std::string huge = good;
    huge.insert(huge.rfind("\n("), "0000");
    const std::string held = good.substr(0, good.rfind(')')) + std::string(100000, ' ');
    const std::pair<std::string, std::size_t> cases[] = {
        {good, 1}, {gzipped(huge), 1}, {gzipped(good), 1}, {gzipped(held), 100000}};
    for (const auto& [bytes, size] : cases) {
        labelsRead = {7};
        EXPECT_FALSE(read("labelList", bytes));
        EXPECT_EQ(labelsRead.size(), size);
    }
}

TEST_F(OFFileLists, CellCountComesOnlyFromTheNote)
{
    const std::string missing = "OFFile : Failed to read number of cells in file. This info should be available as "
                                "'note' in the header of File: ";
    const std::pair<const char*, int> notes[] = {{"\"nCells:  17nFaces:3\"", 17},
                                                 {"\"nCells:none nFaces:3\"", 0},
                                                 {"\"nCells:3\"", 3},
                                                 {"nCells:", 0},
                                                 {"\"nFaces:3 nCells:17\"", -1},
                                                 {"\"nPoints:3\"", -1}};
    for (const auto& [text, count] : notes) {
        const LogCapture log;
        const std::string noteLine = std::string("    note ") + text + ";\n";
        const bool isRead = read("labelList", header("labelList", "thing", "ascii", noteLine) + "1\n(\n0\n)\n");
        EXPECT_EQ(isRead ? cells : -1, count) << text;
        EXPECT_TRUE(isRead || log.errors() == std::vector<std::string>{missing + path.toStdString()});
    }
    EXPECT_THROW(read("labelList", header("labelList", "thing") + "1\n(\n0\n)\n"), std::out_of_range);
}

// A mesh of one cell has such owners.
TEST_F(OFFileLists, ReadsAListOfEqualLabels)
{
    for (const std::string text : {"3{7}\n", "\n3 // owners\n{7}\n"}) {
        EXPECT_TRUE(read("labelList", header("labelList", "thing", "ascii", note(8)) + text)) << text;
        EXPECT_EQ(labelsRead, (std::vector<int>{7, 7, 7})) << text;
    }
    EXPECT_FALSE(read("labelList", header("labelList", "thing", "ascii", note(8)) + "3{x}\n"));
    EXPECT_FALSE(read("labelList", header("labelList", "thing", "ascii", note(8)) + "3{7"));
}

TEST_F(OFFileLists, SkipsALineFeedThatStartsRawData)
{
    const std::vector<int> written = {10, 1};
    EXPECT_TRUE(read("labelList", fileOf("labelList", "binary", rawList(written))));
    EXPECT_EQ(content, (raw(written) + ")").substr(1)) << "the closing bracket fills the gap";
}

TEST_F(OFFileLists, LabelReadersTellWhetherTheListWasWhole)
{
    const std::vector<int> raws = {1, 2};
    using LabelReader = bool (OFFile::*)(std::vector<int>*);
    const std::pair<std::string, LabelReader> forms[] = {{"1\n2\n)\n", &OFFile::readNextLabelListAscii},
                                                         {raw(raws), &OFFile::readNextLabelListBinary},
                                                         {"2\n(\n1\n2\n)\n", &OFFile::readNextLabelList}};
    for (const auto& [text, reader] : forms) {
        folder.write("items", text);
        for (const std::size_t count : {2U, 3U}) {
            OFFile file(false);
            ASSERT_TRUE(file.open(folder.str("items")));
            std::vector<int> labels(count);
            EXPECT_EQ((file.*reader)(&labels), count == 2) << text;
            labels.resize(2);
            EXPECT_EQ(labels, raws) << text;
        }
    }
}

TEST_F(OFFileLists, NoLabelIsLostAtAChunkBorder)
{
    std::vector<int> expected(38000, 123456);
    expected[0] = 7;
    for (const std::string separator : {"\n", " ", "\n\n\n"}) {
        std::string rest = "7" + separator;
        for (std::size_t i = 1; i < expected.size(); ++i) {
            rest.append("123456").append(separator);
        }
        for (std::size_t shift = 0; shift < 10; ++shift) {
            const std::string body = "38000(" + std::string(shift, '0') + rest + ")\n";
            ASSERT_TRUE(read("labelList", fileOf("labelList", "ascii", body))) << shift << "'" << separator << "'";
            ASSERT_EQ(labelsRead, expected);
        }
    }
}
