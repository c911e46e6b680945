// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>

using namespace foamtext;

namespace {

constexpr const char* FIELD = "volScalarField";

using Sample = std::pair<const char*, std::string>; ///< name and bytes of a good file

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
        {"labels", header("labelList", "file", "ascii", note(3)) + list(3, labels(ints))},
        {"rawLabels", header("labelList", "file", "binary", note(3)) + rawList(ints)},
        {"vectors", header("vectorField", "file") + list(1, vectors(three))},
        {"rawVectors", header("vectorField", "file", "binary") + rawList(three, 3)},
        {"faces", header("faceList", "file") + list(3, faces(faceSet))},
        {"compactFaces", header("faceCompactList", "file") + list(4, faces(faceSet))},
        {"rawFaces", header("faceCompactList", "file", "binary") + compactFaces(faceSet)},
        {"field", field + rows + ";\n" + patches + rows + patchesEnd},
        {"fieldOnLines", field + "3(1 2 3);\n" + patches + "3(1 2 3)" + patchesEnd},
        {"rawField", rawField + rawList(three) + ";\n" + patches + "\n" + rawList(three) + patchesEnd},
        {"vectorField", header("volVectorField", "file") + "internalField nonuniform List<vector> 1((1 2 3));\n"},
        {"zones", smallFile + zone + rows + zoneEnd},
        {"zonesOnLines", smallFile + zone + "3(1 2 3)" + zoneEnd},
        {"rawZones", header("dictionary", "file", "binary") + zone + "\n" + rawList(ints) + zoneEnd},
        {"dictionary", smallFile + "a b;\n  c d e;\ndimensions [0 1 2 3 4 5 6];\n"},
        {"boundary", smallFile + "1\n(\n  p\n  {\n type wall;\n nFaces 3;\n startFace 4;\n }\n)\n"},
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
        const std::function<void()> readers[] = {[&] { OFFile(true).readLabelList(path, "file", &labelsRead, &cells); },
                                                 [&] { OFFile(true).readVectorField(path, "file", &values); },
                                                 [&] { OFFile(false).readVectorField(path, "file", &values); },
                                                 [&] { OFFile(false).readResult(path, "file", FIELD, &values); },
                                                 [&] { readFaces(path, true); },
                                                 [&] { readFaces(path, false); },
                                                 [&] { readField(path); },
                                                 [&] { OFFile(true).readCellZones(path, "file", cellZones, 1); },
                                                 [&] { OFFile(true).readFaceZones(path, "file", faceZones, 1); },
                                                 [&] { OFFile(true).readBoundary(path, "file", boundaries, 1); },
                                                 [&] { OFFile(true).readDictionary(path, "file", &entries); }};
        for (const std::function<void()>& reader : readers) {
            try {
                reader();
            } catch (const std::logic_error&) {
                // Announced: a missing key is out of range, a missing count an invalid argument.
            }
        }
    }

    TempFolder folder;
    dvn::Str path = folder.str("file");
    const std::string& good = GetParam().second;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Readers, BadInput, testing::ValuesIn(samples()),
                         [](const auto& sample) { return sample.param.first; });

// A reader may refuse what it gets; under the sanitizers it must not touch what is not its own, and it must end.
TEST_P(BadInput, EveryPrefixEndsPlainAndCompressed)
{
    const std::string zipped = gzipped(good);
    for (std::size_t length = 0; length <= good.size(); ++length) {
        readAll(good.substr(0, length));
        readAll(zipped.substr(0, std::min(length, zipped.size())));
    }
}

TEST_P(BadInput, DamagedBytesEnd)
{
    std::mt19937 random(11);
    const std::string odd = std::string("0123456789(){};>-. \n\r\t\"", 24) + "\xff" + std::string(1, '\0');
    for (std::size_t round = 0; round < 400; ++round) {
        std::string text = good;
        // The header is left alone most of the time, or little would get past it.
        const std::size_t first = round % 8 == 0 ? 0 : text.find("}\n");
        for (std::size_t k = 0; k <= round % 3; ++k) {
            const std::size_t at = first + random() % (text.size() - first);
            text.replace(at, round % 4 == 0 ? 0 : 1, round % 4 == 1 ? 0 : 1, odd[random() % odd.size()]);
        }
        readAll(text);
    }
    const std::string zipped = gzipped(good);
    for (std::size_t at = 0; at < zipped.size(); ++at) {
        readAll(std::string(zipped).replace(at, 1, 1, static_cast<char>(~zipped[at])));
    }
}

TEST_P(BadInput, CountsThatLieEnd)
{
    for (const char* count :
         {"0", "1", "2", "4", "250", "2147483646", "2147483647", "4294967295", "99999999999999999999"}) {
        for (const char* here : {"\n2\n", "\n3\n", "\n4\n", " 3(", "\n1\n"}) {
            std::string text = good;
            for (std::size_t at = text.find(here); at != std::string::npos; at = text.find(here, at + 1)) {
                text.replace(at + 1, 1, count);
            }
            readAll(text);
        }
    }
}

TEST_P(BadInput, LinesWithoutEndAreReadInMemoryOfTheirSize)
{
    const std::string top = good.substr(0, good.find("// * *")) + "9\n(";
    for (const char filler : {'1', ' ', '(', ')', 'x', '{', '\0', '\r'}) {
        readAll(top + std::string(600000, filler));
        readAll(std::string(300000, filler) + good);
    }
}
