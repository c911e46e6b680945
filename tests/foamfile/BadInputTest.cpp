// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <stdexcept>

using namespace foamtext;

namespace {

constexpr const char* FIELD = "volScalarField";

/// A good file.
struct Sample
{
    const char* name;
    std::string bytes;

    friend std::ostream& operator<<(std::ostream& stream, const Sample& sample) { return stream << sample.name; }
};

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
    const std::string row = "3(1 2 3)";
    const std::string field = header(FIELD, "file") + "internalField nonuniform List<scalar> ";
    const std::string rawField = header(FIELD, "file", "binary") + "internalField nonuniform List<scalar> \n";
    const std::string smallFile = header("dictionary", "file");
    return {
        {"labels", header("labelList", "file", "ascii", note(3)) + list(3, labels(ints))},
        {"rawLabels", header("labelList", "file", "binary", note(3)) + rawList(ints)},
        {"vectors", header("vectorField", "file") + list(1, vectors(three))},
        {"rawVectors", header("vectorField", "file", "binary") + rawList(three, 3)},
        {"faces", header("faceList", "file") + list(3, faces(faceSet))},
        {"compactFaces", header("faceCompactList", "file") + list(4, faces(faceSet))},
        {"rawFaces", header("faceCompactList", "file", "binary") + compactFaces(faceSet)},
        {"field", field + rows + ";\n" + patches + rows + patchesEnd},
        {"fieldOnLines", field + row + ";\n" + patches + row + patchesEnd},
        {"rawField", rawField + rawList(three) + ";\n" + patches + "\n" + rawList(three) + patchesEnd},
        {"vectorField", header("volVectorField", "file") + "internalField nonuniform List<vector> 1((1 2 3));\n"},
        {"zones", smallFile + zone + rows + zoneEnd},
        {"zonesOnLines", smallFile + zone + row + zoneEnd},
        {"rawZones", header("dictionary", "file", "binary") + zone + "\n" + rawList(ints) + zoneEnd},
        {"dictionary", smallFile + "a b;\n  c d e;\ndimensions [0 1 2 3 4 5 6];\n"},
        {"boundary", smallFile + "1\n(\n  p\n  {\n type wall;\n nFaces 3;\n startFace 4;\n }\n)\n"},
    };
}

/// Runs one reader; the exceptions that readers announce are no failure.
template <typename Reader>
void attempt(const Reader& reader)
{
    try {
        reader();
    } catch (const std::out_of_range&) {
    } catch (const std::invalid_argument&) {
    }
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

/// Hands one file to the readers of its kind and to those that ask for no header.
class BadInput : public testing::TestWithParam<Sample>
{
protected:
    void readAll(const std::string& bytes)
    {
        folder.write("file", bytes);
        std::vector<int> labelsRead;
        std::vector<double> values(3);
        std::vector<OFCellZone> cellZones;
        std::vector<OFFaceZone> faceZones;
        std::vector<OFBoundary> boundaries;
        std::map<dvn::Str, dvn::Str> entries;
        int cells = 0;
        attempt([&] { OFFile(true).readLabelList(path, "file", &labelsRead, &cells); });
        attempt([&] { OFFile(true).readVectorField(path, "file", &values); });
        attempt([&] { OFFile(false).readVectorField(path, "file", &values); });
        attempt([&] { OFFile(false).readResult(path, "file", FIELD, &values); });
        attempt([&] { readFaces(path, true); });
        attempt([&] { readFaces(path, false); });
        attempt([&] { readField(path); });
        attempt([&] { OFFile(true).readCellZones(path, "file", cellZones, 1); });
        attempt([&] { OFFile(true).readFaceZones(path, "file", faceZones, 1); });
        attempt([&] { OFFile(true).readBoundary(path, "file", boundaries, 1); });
        attempt([&] { OFFile(true).readDictionary(path, "file", &entries); });
    }

    TempFolder folder;
    dvn::Str path = folder.str("file");
    LogCapture quiet;
};

std::string sampleName(const testing::TestParamInfo<Sample>& sample)
{
    return sample.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Readers, BadInput, testing::ValuesIn(samples()), sampleName);

// A reader may refuse what it gets; under the sanitizers it must not touch what is not its own, and it must end.
TEST_P(BadInput, EveryPrefixEndsPlainAndCompressed)
{
    const std::string zipped = gzipped(GetParam().bytes);
    for (std::size_t length = 0; length <= GetParam().bytes.size(); ++length) {
        readAll(GetParam().bytes.substr(0, length));
        readAll(zipped.substr(0, std::min(length, zipped.size())));
    }
}

TEST_P(BadInput, DamagedBytesEnd)
{
    std::mt19937 random(11);
    const std::string odd = std::string("0123456789(){};>-. \n\r\t\"", 24) + "\xff" + std::string(1, '\0');
    for (std::size_t round = 0; round < 400; ++round) {
        std::string text = GetParam().bytes;
        // The header is left alone most of the time, or little would get past it.
        const std::size_t first = round % 8 == 0 ? 0 : text.find("}\n");
        for (std::size_t k = 0; k <= round % 3; ++k) {
            const std::size_t at = first + random() % (text.size() - first);
            text.replace(at, round % 4 == 0 ? 0 : 1, round % 4 == 1 ? 0 : 1, odd[random() % odd.size()]);
        }
        readAll(text);
    }
    const std::string zipped = gzipped(GetParam().bytes);
    for (std::size_t at = 0; at < zipped.size(); ++at) {
        readAll(std::string(zipped).replace(at, 1, 1, static_cast<char>(~zipped[at])));
    }
}

TEST_P(BadInput, CountsThatLieEnd)
{
    for (const char* count :
         {"0", "1", "2", "4", "250", "2147483646", "2147483647", "4294967295", "99999999999999999999"}) {
        for (const char* here : {"\n2\n", "\n3\n", "\n4\n", " 3(", "\n1\n"}) {
            std::string text = GetParam().bytes;
            for (std::size_t at = text.find(here); at != std::string::npos; at = text.find(here, at + 1)) {
                text.replace(at + 1, 1, count);
            }
            readAll(text);
        }
    }
}

TEST_P(BadInput, LinesWithoutEndAreReadInMemoryOfTheirSize)
{
    const std::string top = GetParam().bytes.substr(0, GetParam().bytes.find("// * *")) + "9\n(";
    for (const char filler : {'1', ' ', '(', ')', 'x', '{', '\0', '\r'}) {
        readAll(top + std::string(600000, filler));
        readAll(std::string(300000, filler) + GetParam().bytes);
    }
}
