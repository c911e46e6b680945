// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <random>
#include <stdexcept>

#include <sys/resource.h>
#include <unistd.h>

using namespace foamtext;

namespace {

constexpr const char* FIELD = "volScalarField";

/// A good file, and the readers of its kind by their places in `READERS`.
struct Sample
{
    const char* name;
    std::string bytes;
    std::vector<std::size_t> readers;
    // What makes a large file of it, put together when a test needs it and not whenever tests are listed.
    std::string piece = {};
    std::size_t times = 0;
    std::string end = {};
    std::size_t lineLength = 0; ///< of a line behind all
    std::size_t noise = 0;      ///< bytes behind all that compression does not shrink

    std::string whole() const;
};

/// Names the test in lists of them.
std::ostream& operator<<(std::ostream& stream, const Sample& sample)
{
    return stream << sample.name;
}

std::vector<Sample> samples()
{
    const std::vector<int> ints = {1, 22, 333};
    const std::vector<double> three = {1.5, -2.5, 3};
    const Faces faceSet = {{1, 2, 3}, someLabels(12), {4, 5, 6, 7}};
    const std::string patches = "boundaryField\n{\na\n{\ntype x;\nin\n{\nk v;\n}\nrefValue uniform 1;\nvalueFraction "
                                "uniform 0;\nvalue nonuniform List<scalar> ";
    const std::string patchesEnd = ";\n}\nb\n{\ntype zeroGradient;\nvalue uniform (1 2);\n}\n}\n";
    const std::string zone = "2\n(\nz\n{\ntype t;\nlabels List<label> ";
    const std::string zoneEnd = ";\nflipMap List<bool> \n3\n(\n0\n1\n0\n)\n;\n}\ny\n{\ntype t;\nlabels 0();\n}\n)\n";
    const std::string rows = "\n3\n(\n1\n2\n3\n)\n";
    const std::string field = header(FIELD, "file") + "internalField nonuniform List<scalar> ";
    const std::string rawField = header(FIELD, "file", "binary") + "internalField nonuniform List<scalar> \n";
    const std::string smallFile = header("dictionary", "file");
    return {
        {"labels", header("labelList", "file", "ascii", note(3)) + list(3, labels(ints)), {0}},
        {"rawLabels", header("labelList", "file", "binary", note(3)) + rawList(ints), {0}},
        {"vectors", header("vectorField", "file") + list(1, vectors(three)), {1, 2}},
        {"rawVectors", header("vectorField", "file", "binary") + rawList(three, 3), {1, 2}},
        {"faces", header("faceList", "file") + list(3, faces(faceSet)), {4, 5}},
        {"compactFaces", header("faceCompactList", "file") + list(4, faces(faceSet)), {4, 5}},
        {"rawFaces", header("faceCompactList", "file", "binary") + compactFaces(faceSet), {4, 5}},
        {"field", field + rows + ";\n" + patches + rows + patchesEnd, {6}},
        {"fieldOnLines", field + "3(1 2 3);\n" + patches + "3(1 2 3)" + patchesEnd, {6}},
        {"rawField", rawField + rawList(three) + ";\n" + patches + "\n" + rawList(three) + patchesEnd, {6}},
        {"vectorField",
         header("volVectorField", "file") + "internalField nonuniform List<vector> 1((1 2 3));\n",
         {3, 6}},
        {"zones", smallFile + zone + rows + zoneEnd, {7, 8}},
        {"zonesOnLines", smallFile + zone + "3(1 2 3)" + zoneEnd, {7, 8}},
        {"rawZones", header("dictionary", "file", "binary") + zone + "\n" + rawList(ints) + zoneEnd, {7, 8}},
        {"dictionary", smallFile + "a b;\n  c d e;\ndimensions [0 1 2 3 4 5 6];\n", {10}},
        {"boundary", smallFile + "1\n(\n  p\n  {\n type wall;\n nFaces 3;\n startFace 4;\n }\n)\n", {9}},
    };
}

std::string Sample::whole() const
{
    std::string text = bytes;
    for (std::size_t i = 0; i < times; ++i) {
        text += piece;
    }
    text.append(end).append(lineLength, 'x');
    std::mt19937 random(1);
    std::generate_n(std::back_inserter(text), noise, [&random] { return static_cast<char>(random()); });
    return noise == 0 ? text : gzipped(text);
}

/// What a reader could take more memory or time for than the text is worth.
std::vector<Sample> hugeTexts()
{
    const std::string field = header(FIELD, "file") + "internalField ";
    const std::string section = header("volVectorField", "file") + "internalField uniform (0 0 0);\nboundaryField\n{\n";
    const std::string patch = "p\n{\nvalue nonuniform List<vector>\n";
    std::string shortLines = "y\n";
    shortLines.resize(150000, '\n');
    const std::string labelCount = header("labelList", "file", "ascii", note(3)) + "400000000\n(\n1\n";
    const std::string offsets = header("faceCompactList", "file", "binary") + rawList(std::vector<int>{0, 250000000});
    return {
        {"PlaceholdersInTheTextsOfAMessage",
         field + "uniform 1;\nboundaryField\n{\na\n{\ntype ",
         {6},
         "%4",
         50000,
         ";\nvalue " + std::string(100000, 'A') + ";\n}\n}\n"},
        {"ALongLineBehindManyZones",
         header("dictionary", "file") + "6000\n(\n",
         {7, 8},
         "a\n{\ntype t;\nlabels List<label> 1(1);\n}\n",
         6000,
         "",
         16000000},
        {"ALongLineBehindManyVectorsWithoutEnd", section, {11}, patch + "((1 2 3\n", 5000, "", 16000000},
        {"ALongLineBehindManyShortListsOfLargePatches", section, {12}, patch + "1(;\n", 1500, "", 16000000},
        {"ALongLineBehindManyVectorsThatAreNone", section, {12}, patch + "((x\n", 1500, shortLines, 16000000},
        {"WordsWithoutEnd", field + "uniform", {6}, " 1", 4000000, ";\n"},
        {"ACompressedCountThatDataDoNotLiveUpTo", labelCount, {0}, "", 0, "", 0, 500000},
        {"CompressedOffsetsThatDataDoNotLiveUpTo", offsets + "\n1\n(", {4}, "", 0, "", 0, 1000000},
    };
}

/// Whatever comes of the read, each face must lie within the nodes.
void readFaces(const dvn::Str& path, bool hasHeader)
{
    FacesData data;
    OFFile(hasHeader).readFaceList(path, "file", &data);
    ASSERT_EQ(data.nodeCounts.size(), data.nodeOffsets.size());
    for (std::size_t i = 0; i < data.faceCount(); ++i) {
        ASSERT_LE(static_cast<std::size_t>(data.nodeOffsets[i]) + data.nodeCounts[i], data.nodes.size());
    }
}

void readField(const dvn::Str& path)
{
    std::vector<OFBoundary> boundaries(2);
    boundaries[0].setPatchName("a");
    boundaries[1].setPatchName("b");
    boundaries[1].createFaceToCellMapping(2);
    std::vector<double> values(3);
    std::vector<std::vector<double>> patches = {values, {1, 2}};
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", FIELD, &values, boundaries, patches);
    patches.clear();
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", FIELD, &values, boundaries, patches);
    OFFile(true).readResult(path, "file", "volVectorField", &values);
}

/// Patches of one name, which the file has one after the other.
void readPatches(const dvn::Str& path, std::size_t count, std::size_t faces)
{
    std::vector<OFBoundary> boundaries(count);
    for (OFBoundary& boundary : boundaries) {
        boundary.setPatchName("p");
    }
    std::vector<double> values(3);
    std::vector<std::vector<double>> patches(count, std::vector<double>(3 * faces));
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", "volVectorField", &values, boundaries, patches);
}

using Reader = void (*)(const dvn::Str& path);

constexpr Reader READERS[] = {[](const dvn::Str& path) {
                                  std::vector<int> labels;
                                  int cells = 0;
                                  OFFile(true).readLabelList(path, "file", &labels, &cells);
                              },
                              [](const dvn::Str& path) {
                                  std::vector<double> values;
                                  OFFile(true).readVectorField(path, "file", &values);
                              },
                              [](const dvn::Str& path) {
                                  std::vector<double> values;
                                  OFFile(false).readVectorField(path, "file", &values);
                              },
                              [](const dvn::Str& path) {
                                  std::vector<double> values(3);
                                  OFFile(false).readResult(path, "file", FIELD, &values);
                              },
                              [](const dvn::Str& path) { readFaces(path, true); },
                              [](const dvn::Str& path) { readFaces(path, false); },
                              readField,
                              [](const dvn::Str& path) {
                                  std::vector<OFCellZone> zones;
                                  OFFile(true).readCellZones(path, "file", zones, 1);
                              },
                              [](const dvn::Str& path) {
                                  std::vector<OFFaceZone> zones;
                                  OFFile(true).readFaceZones(path, "file", zones, 1);
                              },
                              [](const dvn::Str& path) {
                                  std::vector<OFBoundary> boundaries;
                                  OFFile(true).readBoundary(path, "file", boundaries, 1);
                              },
                              [](const dvn::Str& path) {
                                  std::map<dvn::Str, dvn::Str> entries;
                                  OFFile(true).readDictionary(path, "file", &entries);
                              },
                              [](const dvn::Str& path) { readPatches(path, 5000, 1); },
                              [](const dvn::Str& path) { readPatches(path, 1500, 1366); }};

/// The last two fill many patches.
constexpr std::size_t QUICK_READERS = std::size(READERS) - 2;

/// Hands one file to the readers of its kind, or to all.
class BadInput : public testing::TestWithParam<Sample>
{
protected:
    void read(const std::string& bytes, std::size_t reader)
    {
        folder.write("file", bytes);
        // Announced: a key that is missing, and the count of a list on one line.
        try {
            READERS[reader](path);
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "map::at:  key not found");
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), "stoi");
        }
    }
    void readAll(const std::string& bytes)
    {
        for (std::size_t reader = 0; reader < QUICK_READERS; ++reader) {
            read(bytes, reader);
        }
    }
    void readOwn(const std::string& bytes)
    {
        for (const std::size_t reader : GetParam().readers) {
            read(bytes, reader);
        }
    }
    /// The file with a number in place of each count that is told in a certain way.
    std::vector<std::string> withCounts() const
    {
        std::vector<std::string> texts;
        for (const char* count :
             {"-1", "0", "1", "2", "4", "250", "2147483646", "2147483647", "4294967295", "99999999999999999999"}) {
            for (const char* here : {"\n2\n", "\n3\n", "\n4\n", " 3(", "\n1\n"}) {
                std::string text = good;
                for (std::size_t at = text.find(here); at != std::string::npos; at = text.find(here, at + 1)) {
                    text.replace(at + 1, 1, count);
                }
                texts.push_back(text);
            }
        }
        return texts;
    }

    /// Reads texts, each within 256 MB and two seconds, and ends the process.
    void live(const std::vector<std::string>& texts)
    {
        const rlimit memory = {256U << 20U, 256U << 20U};
        setrlimit(RLIMIT_AS, &memory);
        for (const std::string& text : texts) {
            alarm(2);
            for (const std::size_t reader : GetParam().readers) {
                read(text, reader);
            }
        }
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }

    TempFolder folder;
    dvn::Str path = folder.str("file");
    const std::string good = GetParam().whole();
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Readers, BadInput, testing::ValuesIn(samples()),
                         [](const auto& sample) { return sample.param.name; });

// A reader may refuse what it gets; under the sanitizers it must not touch what is not its own, and it must end.
TEST_P(BadInput, EveryPrefixEndsPlainAndCompressed)
{
    const std::string zipped = gzipped(good);
    for (std::size_t length = 0; length <= good.size(); ++length) {
        readAll(good.substr(0, length));
        readAll(zipped.substr(0, std::min(length, zipped.size())));
    }
}

TEST_P(BadInput, EveryByteMayBeAnyOtherPlainAndCompressed)
{
    const std::string hostile = std::string("09-.(){}; \n\xff") + std::string(1, '\0');
    for (std::size_t at = 0; at < good.size(); ++at) {
        for (const char byte : hostile) {
            readOwn(std::string(good).replace(at, 1, 1, byte));
        }
        readOwn(std::string(good).erase(at, 1));
    }
    const std::string zipped = gzipped(good);
    for (std::size_t at = 0; at < zipped.size(); ++at) {
        readOwn(std::string(zipped).replace(at, 1, 1, static_cast<char>(~zipped[at])));
    }
}

TEST_P(BadInput, CountsThatLieEnd)
{
    for (const std::string& text : withCounts()) {
        readAll(text);
    }
}

using HugeText = BadInput;
INSTANTIATE_TEST_SUITE_P(Texts, HugeText, testing::ValuesIn(hugeTexts()),
                         [](const auto& sample) { return sample.param.name; });

#ifdef OFP_SANITIZED
// The sanitizers reserve more memory than the limit by themselves.
TEST_P(HugeText, IsReadWithinBounds)
{
    readOwn(good);
}
#else
TEST_P(BadInput, CountsThatLieTakeLittleMemoryAndTime)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(live(withCounts()), testing::ExitedWithCode(0), "");
}

TEST_P(HugeText, TakesMemoryAndTimeInProportionToTheFile)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(live({good}), testing::ExitedWithCode(0), "");
}
#endif

TEST_P(BadInput, LinesWithoutEndAreReadInMemoryOfTheirSize)
{
    const std::string top = good.substr(0, good.find("// * *")) + "9\n(";
    for (const char filler : {'1', ' ', '(', ')', 'x', '{', '\0', '\r'}) {
        readAll(top + std::string(600000, filler));
        readAll(std::string(300000, filler) + good);
    }
}
