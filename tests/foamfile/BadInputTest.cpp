// SPDX-License-Identifier: MIT
#include "foamfile/ListAt.h"
#include "foamfile/ListHeader.h"
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/RawText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <ostream>
#include <random>
#include <stdexcept>

#include <sys/resource.h>
#include <unistd.h>

using namespace foamtext;

namespace {

constexpr const char* SCALARS = "volScalarField";
constexpr const char* VECTORS = "volVectorField";

// One function for each way to read a file. Most ignore the result: what makes a test fail is an overrun, an exception
// or a limit.

void readLabels(const dvn::Str& path)
{
    std::vector<int> labels;
    int cells = 0;
    OFFile(true).readLabelList(path, "file", &labels, &cells);
}

template <bool HAS_HEADER>
void readVectors(const dvn::Str& path)
{
    std::vector<double> values;
    OFFile(HAS_HEADER).readVectorField(path, "file", &values);
}

/// Whatever the result, each face must lie within the nodes.
template <bool HAS_HEADER>
void readFaces(const dvn::Str& path)
{
    FacesData data;
    OFFile(HAS_HEADER).readFaceList(path, "file", &data);
    ASSERT_EQ(data.nodeCounts.size(), data.nodeOffsets.size());
    for (std::size_t i = 0; i < data.faceCount(); ++i) {
        ASSERT_LE(static_cast<std::size_t>(data.nodeOffsets[i]) + data.nodeCounts[i], data.nodes.size());
    }
}

void readFieldWithoutHeader(const dvn::Str& path)
{
    std::vector<double> values(3);
    OFFile(false).readResult(path, "file", SCALARS, &values);
}

void readField(const dvn::Str& path)
{
    std::vector<OFBoundary> boundaries(2);
    boundaries[0].setPatchName("a");
    boundaries[1].setPatchName("b");
    boundaries[1].createFaceToCellMapping(2);
    std::vector<double> values(3);
    std::vector<std::vector<double>> patches = {values, {1, 2}};
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", SCALARS, &values, boundaries, patches);
    patches.clear();
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", SCALARS, &values, boundaries, patches);
    OFFile(true).readResult(path, "file", VECTORS, &values);
}

/// Asks for `COUNT` patches, all named "p".
template <std::size_t COUNT, std::size_t FACES>
void readPatches(const dvn::Str& path)
{
    std::vector<OFBoundary> boundaries(COUNT);
    for (OFBoundary& boundary : boundaries) {
        boundary.setPatchName("p");
    }
    std::vector<double> values(3);
    std::vector<std::vector<double>> patches(COUNT, std::vector<double>(3 * FACES));
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", VECTORS, &values, boundaries, patches);
}

template <typename Record, auto READ>
void readRecords(const dvn::Str& path)
{
    std::vector<Record> records;
    (OFFile(true).*READ)(path, "file", records, 1);
}

constexpr auto readCellZones = readRecords<OFCellZone, &OFFile::readCellZones>;
constexpr auto readFaceZones = readRecords<OFFaceZone, &OFFile::readFaceZones>;
constexpr auto readBoundary = readRecords<OFBoundary, &OFFile::readBoundary>;

void readDictionary(const dvn::Str& path)
{
    std::map<dvn::Str, dvn::Str> entries;
    OFFile(true).readDictionary(path, "file", &entries);
}

/// Lists of extended reading, each with its count; none of them may throw.
template <auto READ, typename Value>
void readListsAt(const dvn::Str& path)
{
    FoamFile file;
    file.reading = Reading::Extended;
    int count = 0;
    for (bool isGood = file.open(path); isGood && file.text.readCountLine(&count);) {
        std::vector<Value> values;
        isGood = READ(file.text, static_cast<std::size_t>(count), &values);
    }
}

template <std::size_t COMPONENTS>
bool readReals(TextSource& text, std::size_t count, std::vector<double>* values)
{
    return ListAt::readReals(text, count, {COMPONENTS, COMPONENTS != 1}, values);
}

void readExtendedMesh(const dvn::Str& path)
{
    std::vector<int> labels;
    std::vector<double> points;
    FacesData faces;
    int cells = 0;
    EXPECT_NO_THROW(OFFile(true, Reading::Extended).readLabelList(path, "file", &labels, &cells));
    EXPECT_NO_THROW(OFFile(true, Reading::Extended).readVectorField(path, "file", &points));
    EXPECT_NO_THROW(OFFile(true, Reading::Extended).readFaceList(path, "file", &faces));
}

using Readers = std::vector<void (*)(const dvn::Str& path)>;

const Readers ALL_READERS = {readLabels,       readVectors<true>,      readVectors<false>, readFaces<true>,
                             readFaces<false>, readFieldWithoutHeader, readField,          readCellZones,
                             readFaceZones,    readBoundary,           readDictionary};

/// A good file, which the tests damage.
struct Sample
{
    const char* name;
    std::string bytes;
    Readers readers; ///< those made for this kind of file
};

/// A file that could cost more memory or time than its size justifies.
struct HugeSample
{
    const char* name;
    std::function<std::string()> build; ///< called only by the test itself, not to list the tests
    Readers readers;
};

/// Names the test in lists of tests.
template <typename Named>
auto operator<<(std::ostream& stream, const Named& sample) -> decltype(stream << sample.name)
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
    const std::string field = header(SCALARS, "file") + "internalField nonuniform List<scalar> ";
    const std::string rawField = header(SCALARS, "file", "binary") + "internalField nonuniform List<scalar> \n";
    const std::string smallFile = header("dictionary", "file");
    const RawWidths wide{.labelBits = 64, .scalarBits = 32, .isBigEndian = true};
    const std::string arch = "    arch " + archOf(wide) + ";\n";
    const std::string wideLabels = "3\n(" + rawLabels(std::vector<int>{10, 22, 333}, wide) + ")";
    const struct
    {
        Readers readers;
        std::vector<std::pair<const char*, std::string>> files; ///< name and content
    } kinds[] = {
        {.readers = {readLabels},
         .files = {{"labels", header("labelList", "file", "ascii", note(3)) + list(3, labels(ints))},
                   {"rawLabels", header("labelList", "file", "binary", note(3)) + rawList(ints)}}},
        {.readers = {readVectors<true>, readVectors<false>},
         .files = {{"vectors", header("vectorField", "file") + list(1, vectors(three))},
                   {"rawVectors", header("vectorField", "file", "binary") + rawList(three, 3)}}},
        {.readers = {readFaces<true>, readFaces<false>},
         .files = {{"faces", header("faceList", "file") + list(3, faces(faceSet))},
                   {"compactFaces", header("faceCompactList", "file") + list(4, faces(faceSet))},
                   {"rawFaces", header("faceCompactList", "file", "binary") + compactFaces(faceSet)}}},
        {.readers = {readField},
         .files = {{"field", field + rows + ";\n" + patches + rows + patchesEnd},
                   {"fieldOnLines", field + "3(1 2 3);\n" + patches + "3(1 2 3)" + patchesEnd},
                   {"rawField", rawField + rawList(three) + ";\n" + patches + "\n" + rawList(three) + patchesEnd}}},
        {.readers = {readFieldWithoutHeader, readField},
         .files = {{"vectorField", header(VECTORS, "file") + "internalField nonuniform List<vector> 1((1 2 3));\n"}}},
        {.readers = {readCellZones, readFaceZones},
         .files = {{"zones", smallFile + zone + rows + zoneEnd},
                   {"zonesOnLines", smallFile + zone + "3(1 2 3)" + zoneEnd},
                   {"rawZones", header("dictionary", "file", "binary") + zone + "\n" + rawList(ints) + zoneEnd}}},
        {.readers = {readExtendedMesh},
         .files = {{"wideLabels", header("labelList", "file", "binary", arch) + wideLabels},
                   {"wideVectors",
                    header("vectorField", "file", "binary", arch) + "1\n(" + rawReals(three, wide) + ")"},
                   {"wideFaces", header("faceCompactList", "file", "binary", arch) + "2\n(" +
                                     rawLabels(std::vector<int>{0, 3}, wide) + ")" + wideLabels}}},
        {.readers = {readListsAt<readReals<1>, double>, readListsAt<readReals<9>, double>,
                     readListsAt<ListAt::readLabels, int>, readListsAt<ListAt::readFlags, int>},
         .files = {{"listsAt",
                    smallFile + "2\n((1 2 3 4 5 6 7 8 9)/* ) */\n(1 2 3 4 5 6 7 8 9))\n3\n(\n1 1// (\n 0)\n2\n{1}"},
                   {"rawListsAt",
                    header("dictionary", "file", "binary", arch) + wideLabels + "\n4\n{0}\n" + wideLabels}}},
        {.readers = {readDictionary},
         .files = {{"dictionary", smallFile + "a b;\n  c d e;\ndimensions [0 1 2 3 4 5 6];\n"}}},
        {.readers = {readBoundary},
         .files = {{"boundary", smallFile + "1\n(\n  p\n  {\n type wall;\n nFaces 3;\n startFace 4;\n }\n)\n"}}},
    };
    std::vector<Sample> all;
    for (const auto& kind : kinds) {
        for (const auto& [name, bytes] : kind.files) {
            all.push_back({.name = name, .bytes = bytes, .readers = kind.readers});
        }
    }
    return all;
}

std::string repeated(std::size_t times, const std::string& text)
{
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::string longLine()
{
    return std::string(16000000, 'x');
}

/// The text compressed, with bytes after it that compression does not shrink.
std::string zippedWithNoise(std::string text, std::size_t noise)
{
    std::mt19937 random(1);
    std::generate_n(std::back_inserter(text), noise, [&random] { return static_cast<char>(random()); });
    return gzipped(text);
}

std::vector<HugeSample> hugeSamples()
{
    const std::string field = header(SCALARS, "file") + "internalField ";
    const std::string section = header(VECTORS, "file") + "internalField uniform (0 0 0);\nboundaryField\n{\n";
    const std::string patch = "p\n{\nvalue nonuniform List<vector>\n";
    const std::string zones = header("dictionary", "file") + "6000\n(\n";
    const std::string zone = "a\n{\ntype t;\nlabels List<label> 1(1);\n}\n";
    const std::string labelCount = header("labelList", "file", "ascii", note(3)) + "400000000\n(\n1\n";
    const std::string labelsOfFaces =
        header("faceCompactList", "file", "binary") + rawList(std::vector<int>{0, 1}) + "\n400000000\n(\n";
    const std::string offsets =
        header("faceCompactList", "file", "binary") + rawList(std::vector<int>{0, 250000000}) + "\n1\n(";
    const std::string blankLine = std::string(127, ' ') + "\n";
    const std::string oddVectorAndBlanks = "(1 2 3\n)\n" + repeated(2000, blankLine);
    const auto manyPatches = readPatches<5000, 1>;
    const auto largePatches = readPatches<1500, 1366>;
    const auto hugePatch = readPatches<1, 100000>;
    return {
        {.name = "PlaceholdersInPatchTypeAndValue",
         .build =
             [=] {
                 return field + "uniform 1;\nboundaryField\n{\na\n{\ntype " + repeated(50000, "%4") + ";\nvalue " +
                        std::string(100000, 'A') + ";\n}\n}\n";
             },
         .readers = {readField}},
        {.name = "LongLineAfterManyZones",
         .build = [=] { return zones + repeated(6000, zone) + longLine(); },
         .readers = {readCellZones, readFaceZones}},
        {.name = "LongLineAfterManyUnfinishedVectors",
         .build = [=] { return section + repeated(5000, patch + "((1 2 3\n") + longLine(); },
         .readers = {manyPatches}},
        {.name = "LongLineAfterManyShortListsOfLargePatches",
         .build = [=] { return section + repeated(1500, patch + "1(;\n") + longLine(); },
         .readers = {largePatches}},
        {.name = "LongLineAfterManyMalformedVectors",
         .build =
             [=] { return section + repeated(1500, patch + "((x\n") + "y\n" + std::string(149998, '\n') + longLine(); },
         .readers = {largePatches}},
        {.name = "MillionsOfWordsInOneLine",
         .build = [=] { return field + "uniform" + repeated(4000000, " 1") + ";\n"; },
         .readers = {readField}},
        {.name = "CountLargerThanInflatedData",
         .build = [=] { return zippedWithNoise(labelCount, 500000); },
         .readers = {readLabels}},
        // Text between vectors uses up no values. With an odd vector in each chunk, none of it can be parsed ahead.
        {.name = "BlanksBetweenOddVectors",
         .build = [=] { return gzipped(section + patch + "100000\n(\n" + repeated(500, oddVectorAndBlanks)); },
         .readers = {hugePatch}},
        {.name = "LongLineAfterManyLists",
         .build = [=] { return header("dictionary", "file") + repeated(20000, "3\n{1}\n3\n(1 1 1)\n") + longLine(); },
         .readers = {readListsAt<ListAt::readLabels, int>, readListsAt<readReals<1>, double>}},
        // The first byte of the list is a line feed, so its end is looked for.
        {.name = "RawCountLargerThanInflatedData",
         .build = [=] { return zippedWithNoise(labelsOfFaces, 500000); },
         .readers = {readExtendedMesh, readListsAt<ListAt::readLabels, int>}},
        {.name = "OffsetsLargerThanInflatedData",
         .build = [=] { return zippedWithNoise(offsets, 1000000); },
         .readers = {readFaces<true>}},
    };
}

/// Hands a file to readers. They may refuse it, but they must end, and under the sanitizers they must stay in bounds.
class BadFile : public testing::Test
{
protected:
    void read(const std::string& bytes, const Readers& readers)
    {
        folder.write("file", bytes);
        for (const auto reader : readers) {
            // The two documented exceptions: a missing key, and a missing count of a list on one line.
            try {
                reader(path);
            } catch (const std::out_of_range& error) {
                EXPECT_STREQ(error.what(), "map::at:  key not found");
            } catch (const std::invalid_argument& error) {
                EXPECT_STREQ(error.what(), "stoi");
            }
        }
    }
    /// Reads texts, each within 256 MB and two seconds, and ends the process.
    void readWithinLimits(const std::vector<std::string>& texts, const Readers& readers)
    {
        const rlimit memory = {256U << 20U, 256U << 20U};
        setrlimit(RLIMIT_AS, &memory);
        for (const std::string& text : texts) {
            alarm(2);
            read(text, readers);
        }
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }

    TempFolder folder;
    dvn::Str path = folder.str("file");
};

class BadInput : public BadFile, public testing::WithParamInterface<Sample>
{
protected:
    /// The file with another number in place of each count that is written in a certain way.
    std::vector<std::string> withWrongCounts() const
    {
        std::vector<std::string> texts;
        for (const char* count :
             {"-1", "0", "1", "2", "4", "250", "2147483646", "2147483647", "4294967295", "99999999999999999999"}) {
            for (const char* here : {"\n2\n", "\n3\n", "\n4\n", "\n3(", " 3(", "\n1\n"}) {
                std::string text = good;
                for (std::size_t at = text.find(here); at != std::string::npos; at = text.find(here, at + 1)) {
                    text.replace(at + 1, 1, count);
                }
                texts.push_back(text);
            }
        }
        return texts;
    }

    const std::string good = GetParam().bytes;
    const Readers readers = GetParam().readers;
};

class HugeText : public BadFile, public testing::WithParamInterface<HugeSample>
{};

} // namespace

INSTANTIATE_TEST_SUITE_P(Readers, BadInput, testing::ValuesIn(samples()),
                         [](const auto& sample) { return sample.param.name; });
INSTANTIATE_TEST_SUITE_P(Texts, HugeText, testing::ValuesIn(hugeSamples()),
                         [](const auto& sample) { return sample.param.name; });

TEST_P(BadInput, EveryPrefixIsReadSafely)
{
    for (std::size_t length = 0; length <= good.size(); ++length) {
        read(good.substr(0, length), ALL_READERS);
    }
}

TEST_P(BadInput, EveryCompressedPrefixIsReadSafely)
{
    const std::string zipped = gzipped(good);
    for (std::size_t length = 0; length <= zipped.size(); ++length) {
        read(zipped.substr(0, length), ALL_READERS);
    }
}

TEST_P(BadInput, EveryByteMayChangeOrBeMissing)
{
    const std::string hostile = std::string("09-.(){}; \n\xff") + std::string(1, '\0');
    for (std::size_t at = 0; at < good.size(); ++at) {
        for (const char byte : hostile) {
            read(std::string(good).replace(at, 1, 1, byte), readers);
        }
        read(std::string(good).erase(at, 1), readers);
    }
}

TEST_P(BadInput, EveryCompressedByteMayChange)
{
    const std::string zipped = gzipped(good);
    for (std::size_t at = 0; at < zipped.size(); ++at) {
        read(std::string(zipped).replace(at, 1, 1, static_cast<char>(~zipped[at])), readers);
    }
}

TEST_P(BadInput, WrongCountsAreReadSafely)
{
    for (const std::string& text : withWrongCounts()) {
        read(text, ALL_READERS);
    }
}

TEST_P(BadInput, LongLinesAreReadSafely)
{
    const std::string top = good.substr(0, good.find("// * *")) + "9\n(";
    for (const char filler : {'1', ' ', '(', ')', 'x', '{', '\0', '\r'}) {
        read(top + std::string(600000, filler), ALL_READERS);
        read(std::string(300000, filler) + good, ALL_READERS);
    }
}

#ifdef OFP_SANITIZED
// The sanitizers reserve more memory than the limit by themselves.
TEST_P(HugeText, IsReadSafely)
{
    read(GetParam().build(), GetParam().readers);
}
#else
TEST_P(BadInput, WrongCountsTakeLittleMemoryAndTime)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(readWithinLimits(withWrongCounts(), readers), testing::ExitedWithCode(0), "");
}

TEST_P(HugeText, TakesMemoryAndTimeInProportionToItsSize)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(readWithinLimits({GetParam().build()}, GetParam().readers), testing::ExitedWithCode(0), "");
}
#endif
