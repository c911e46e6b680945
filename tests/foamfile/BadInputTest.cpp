// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>

using namespace foamtext;

namespace {

/// A good file and the reader that takes it.
struct Sample
{
    std::string name;
    std::string bytes;
    std::function<void(const dvn::Str&)> read;
};

const char* const CLASS = "volScalarField";

void readFieldFile(const dvn::Str& path)
{
    std::vector<OFBoundary> boundaries(2);
    boundaries[0].setPatchName("a");
    boundaries[1].setPatchName("b");
    boundaries[1].createFaceToCellMapping(2);
    std::vector<std::vector<double>> patches = {std::vector<double>(3), std::vector<double>(2)};
    std::vector<double> values(3);
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", CLASS, &values, boundaries, patches);
    std::vector<std::vector<double>> tooFew;
    OFFile(true).readValuesOfCellAndBoundaries(path, "file", CLASS, &values, boundaries, tooFew);
    values.resize(9);
    OFFile(true).readResult(path, "file", "volVectorField", &values);
    OFFile(false).readResult(path, "file", CLASS, &values);
}

void readLabelFile(const dvn::Str& path)
{
    std::vector<int> labels;
    int cells = 0;
    OFFile(true).readLabelList(path, "file", &labels, &cells);
}

void readVectorFile(const dvn::Str& path)
{
    std::vector<double> values;
    OFFile(true).readVectorField(path, "file", &values);
    OFFile(false).readVectorField(path, "file", &values);
}

/// Whatever comes of a read, each face must lie within the nodes.
void readFaceFile(const dvn::Str& path)
{
    for (const bool hasHeader : {true, false}) {
        FacesData faces;
        OFFile(hasHeader).readFaceList(path, "file", &faces);
        ASSERT_EQ(faces.nodeCounts.size(), faces.nodeOffsets.size());
        for (std::size_t i = 0; i < faces.faceCount(); ++i) {
            ASSERT_LE(static_cast<std::size_t>(faces.nodeOffsets[i]) + faces.nodeCounts[i], faces.nodes.size());
        }
    }
}

void readZoneFile(const dvn::Str& path)
{
    std::vector<OFCellZone> cellZones;
    OFFile(true).readCellZones(path, "file", cellZones, 1);
    std::vector<OFFaceZone> faceZones;
    OFFile(true).readFaceZones(path, "file", faceZones, 1);
}

void readTextFile(const dvn::Str& path)
{
    std::map<dvn::Str, dvn::Str> entries;
    OFFile(true).readDictionary(path, "file", &entries);
    std::vector<OFBoundary> boundaries;
    OFFile(true).readBoundary(path, "file", boundaries, 1);
    std::vector<dvn::Str> tokens;
    OFFile file(true);
    if (file.open(path)) {
        file.readDimensions(&tokens);
    }
    OFFile::hasFoamBlock(path);
}

std::vector<Sample> samples()
{
    const std::vector<int> ints = {1, 22, 333};
    const std::vector<double> reals = {1.5, -2.5e-3, 3, 4, 5, 6, 7, 8, 9};
    const std::vector<double> three = {1.5, -2.5, 3};
    const Faces faceSet = {{1, 2, 3}, someLabels(12), {4, 5, 6, 7}};
    const std::string section = "boundaryField\n{\na\n{\ntype x;\nin\n{\nk v;\n}\nrefValue uniform 1;\nvalueFraction uniform "
                                "0;\nvalue nonuniform List<scalar> ";
    const std::string sectionEnd = ";\n}\nb\n{\ntype zeroGradient;\nvalue uniform (1 2);\n}\n}\n";
    const std::string zone = "2\n(\nz\n{\ntype t;\nlabels List<label> ";
    const std::string zoneEnd = ";\nflipMap List<bool> \n3\n(\n0\n1\n0\n)\n;\n}\ny\n{\ntype t;\nlabels 0();\n}\n)\n";
    return {
        {"labels", header("labelList", "file", "ascii", note(3)) + list(3, labels(ints)), readLabelFile},
        {"raw labels", header("labelList", "file", "binary", note(3)) + rawList(ints), readLabelFile},
        {"vectors", header("vectorField", "file") + list(3, vectors(reals)), readVectorFile},
        {"raw vectors", header("vectorField", "file", "binary") + rawList(reals, 3), readVectorFile},
        {"faces", header("faceList", "file") + list(3, faces(faceSet)), readFaceFile},
        {"compact faces", header("faceCompactList", "file") + list(4, faces(faceSet)), readFaceFile},
        {"raw faces", header("faceCompactList", "file", "binary") + compactFaces(faceSet), readFaceFile},
        {"field", header(CLASS, "file") + "internalField nonuniform List<scalar> \n3\n(\n1\n2\n3\n)\n;\n" + section +
                      "\n3\n(\n1\n2\n3\n)\n" + sectionEnd, readFieldFile},
        {"field on lines", header(CLASS, "file") + "internalField nonuniform List<scalar> 3(1 2 3);\n" + section +
                               "3(1 2 3)" + sectionEnd, readFieldFile},
        {"vector field", header("volVectorField", "file") + "internalField nonuniform List<vector> 3((1 2 3) (4 5 6) (7 8 9));\n",
         readFieldFile},
        {"uniform field", header(CLASS, "file") + "internalField uniform 1.5;\n" + section + "3(1 2 3)" + sectionEnd,
         readFieldFile},
        {"raw field", header(CLASS, "file", "binary") + "internalField nonuniform List<scalar> \n" + rawList(three) +
                          ";\n" + section + "\n" + rawList(three) + sectionEnd, readFieldFile},
        {"zones", header("regIOobject", "file") + zone + "\n3\n(\n1\n2\n3\n)\n" + zoneEnd, readZoneFile},
        {"zones on lines", header("regIOobject", "file") + zone + "3(1 2 3)" + zoneEnd, readZoneFile},
        {"raw zones", header("regIOobject", "file", "binary") + zone + "\n" + rawList(ints) + zoneEnd, readZoneFile},
        {"dictionary", header("dictionary", "file") + "a b;\n  c d e;\ndimensions [0 1 2 3 4 5 6];\n", readTextFile},
        {"boundary", header("polyBoundaryMesh", "file") + "1\n(\n  p\n  {\n type wall;\n nFaces 3;\n startFace 4;\n }\n)\n",
         readTextFile},
    };
}

/// Reads a file; the exceptions that readers announce are no failure.
void readAnything(const TempFolder& folder, const Sample& sample)
{
    try {
        sample.read(folder.str("file"));
    } catch (const std::out_of_range&) {
    } catch (const std::invalid_argument&) {
    }
}

class BadInput : public testing::TestWithParam<Sample>
{
protected:
    TempFolder folder;
    LogCapture quiet;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Readers, BadInput, testing::ValuesIn(samples()), [](const auto& info) {
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

// A reader may refuse what it gets; under the sanitizers it must not touch what is not its own, and it must end.
TEST_P(BadInput, EveryPrefixEnds)
{
    for (std::size_t length = 0; length <= GetParam().bytes.size(); ++length) {
        folder.write("file", GetParam().bytes.substr(0, length));
        readAnything(folder, GetParam());
    }
}

TEST_P(BadInput, DamagedBytesEnd)
{
    std::mt19937 random(11);
    const std::string bytes = std::string("0123456789(){};>-. \n\r\t\"", 24) + '\0' + '\xff';
    std::uniform_int_distribution<std::size_t> letter(0, bytes.size() - 1);
    // The header is left alone most of the time, or little would get past it.
    const std::size_t body = GetParam().bytes.find("}\n");
    for (int round = 0; round < 800; ++round) {
        std::string text = GetParam().bytes;
        std::uniform_int_distribution<std::size_t> place(round % 8 == 0 ? 0 : body, text.size() - 1);
        for (int k = round % 3; k >= 0; --k) {
            const std::size_t at = place(random);
            switch (round % 4) {
            case 0:
                text.insert(at, 1, bytes[letter(random)]);
                break;
            case 1:
                text.erase(at, 1);
                break;
            default:
                text[std::min(at, text.size() - 1)] = bytes[letter(random)];
            }
        }
        folder.write("file", text);
        readAnything(folder, GetParam());
    }
}

TEST_P(BadInput, CountsThatLieAndDamagedCompressionEnd)
{
    for (const std::string count : {"0", "1", "2", "4", "250", "4096", "2147483646", "2147483647", "2147483648",
                                    "4294967295", "99999999999999999999"}) {
        for (const std::string here : {"\n2\n", "\n3\n", "\n4\n", " 3(", "\n1\n"}) {
            std::string text = GetParam().bytes;
            for (std::size_t at = text.find(here); at != std::string::npos; at = text.find(here, at + 1)) {
                text.replace(at + 1, 1, count);
            }
            folder.write("file", text);
            readAnything(folder, GetParam());
        }
    }
    const std::string zipped = gzipped(GetParam().bytes);
    for (std::size_t at = 0; at < zipped.size(); ++at) {
        std::string damaged = zipped;
        damaged[at] = static_cast<char>(~damaged[at]);
        folder.write("file", damaged);
        readAnything(folder, GetParam());
        folder.write("file", zipped.substr(0, at));
        readAnything(folder, GetParam());
    }
}

TEST_P(BadInput, LinesWithoutEndAreReadInMemoryOfTheirSize)
{
    const std::string body = GetParam().bytes.substr(0, GetParam().bytes.find("// * *"));
    for (const char filler : {'1', ' ', '(', ')', 'x', '{', '\0', '\r'}) {
        folder.write("file", body + "9\n(" + std::string(600000, filler));
        readAnything(folder, GetParam());
        folder.write("file", std::string(300000, filler) + GetParam().bytes);
        readAnything(folder, GetParam());
    }
}
