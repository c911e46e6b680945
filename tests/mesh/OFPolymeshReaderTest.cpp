// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshReader.h"
#include "support/CaseFiles.h"
#include "support/LogCapture.h"
#include "support/RawText.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <stdexcept>

namespace {

std::string without(std::string text, const std::string& key)
{
    const std::size_t line = text.find("    " + key + " ");
    return text.erase(line, text.find('\n', line) + 1 - line);
}

void expectEqual(const OFPolymesh& mesh, const OFPolymesh& expected)
{
    EXPECT_EQ(mesh.points(), expected.points());
    EXPECT_EQ(foamtext::unpacked(mesh.faces()), foamtext::unpacked(expected.faces()));
    EXPECT_EQ(mesh.owners(), expected.owners());
    EXPECT_EQ(mesh.neighbors(), expected.neighbors());
    EXPECT_EQ(mesh.cellCount(), expected.cellCount());
}

} // namespace

TEST(PolymeshReader, EveryFormGivesTheSameMesh)
{
    const TempFolder folder;
    const OFPolymesh expected = octahedronMesh(2);
    const MeshFiles ascii = asciiFiles(expected);
    writeMesh(folder, "ascii", ascii);
    writeMesh(folder, "binary", binaryFiles(expected));
    writeMesh(folder, "gzip",
              {gzipped(ascii.points), gzipped(ascii.faces), gzipped(ascii.owner), gzipped(ascii.neighbour)});
    for (const std::string form : {"ascii", "binary", "gzip"}) {
        SCOPED_TRACE(form);
        OFPolymeshReader reader;
        OFPolymesh mesh;
        EXPECT_TRUE(reader.read(folder.str(form), &mesh));
        EXPECT_EQ(reader.polyMeshFolder(), folder.str(form));
        expectEqual(mesh, expected);
        OFPolymesh sequential;
        EXPECT_TRUE(reader.readPolymeshSeq(folder.str(form), &sequential));
        expectEqual(sequential, expected);
    }
}

// Coordinates of unit cubes are exact in 32 bits too. The lists are longer than one block of the conversion, and the
// owners have no note.
TEST(PolymeshReader, ExtendedReadingTakesEveryWidthAndOrderOfBytes)
{
    const TempFolder folder;
    const OFPolymesh expected = hexahedronMesh(15, 15, 15);
    for (const RawWidths& widths : std::initializer_list<RawWidths>{
             {32, 64, false}, {64, 64, false}, {32, 32, false}, {64, 32, false}, {32, 64, true}, {64, 32, true}}) {
        SCOPED_TRACE(archOf(widths));
        const MeshFiles files = rawMeshFiles(expected, widths);
        writeMesh(folder, "plain", files);
        writeMesh(folder, "gzip",
                  {gzipped(files.points), gzipped(files.faces), gzipped(files.owner), gzipped(files.neighbour)});
        for (const char* const form : {"plain", "gzip"}) {
            OFPolymesh mesh;
            EXPECT_TRUE(OFPolymeshReader(Reading::Extended).read(folder.str(form), &mesh));
            expectEqual(mesh, expected);
            OFPolymesh sequential;
            EXPECT_TRUE(OFPolymeshReader(Reading::Extended).readPolymeshSeq(folder.str(form), &sequential));
            EXPECT_EQ(sequential.cellCount(), expected.cellCount());
        }
    }
}

TEST(PolymeshReader, ExtendedReadingCountsCellsByTheLargestLabel)
{
    const TempFolder folder;
    const struct
    {
        std::vector<int> owners;
        std::vector<int> neighbours;
        std::size_t cells;
    } meshes[] = {{{0, 5, 2}, {6}, 7}, {{0, 8, 2}, {6}, 9}, {{}, {}, 0}, {{2147483647}, {}, 2147483647}};
    for (const auto& [owners, neighbours, cells] : meshes) {
        const OFPolymesh box = hexahedronMesh(1, 1, 1);
        MeshFiles files = asciiFiles(box);
        const auto labelFile = [](const std::string& object, const std::vector<int>& labels) {
            return foamtext::header("labelList", object) + foamtext::list(labels.size(), foamtext::labels(labels));
        };
        files.owner = labelFile("owner", owners);
        files.neighbour = labelFile("neighbour", neighbours);
        writeMesh(folder, "mesh", files);
        OFPolymesh mesh;
        const LogCapture log;
        EXPECT_TRUE(OFPolymeshReader(Reading::Extended).read(folder.str("mesh"), &mesh));
        EXPECT_EQ(mesh.cellCount(), cells);
        EXPECT_EQ(joined(log.errors()), "");
    }
}

TEST(PolymeshReader, ExtendedReadingRefusesHeadersWithoutObjectOrClass)
{
    const TempFolder folder;
    const MeshFiles good = asciiFiles(hexahedronMesh(1, 1, 1));
    for (const char* const key : {"object", "class"}) {
        writeMesh(folder, "mesh",
                  {without(good.points, key), without(good.faces, key), without(good.owner, key),
                   without(good.neighbour, key)});
        OFPolymesh mesh;
        const LogCapture log;
        EXPECT_TRUE(OFPolymeshReader(Reading::Extended).read(folder.str("mesh"), &mesh));
        EXPECT_EQ(log.errors().size(), 4U) << joined(log.errors());
        EXPECT_EQ(mesh.cellCount(), 0U);
    }
}

TEST(PolymeshReader, ContinuesWithoutUnreadableFiles)
{
    const TempFolder folder;
    const OFPolymesh expected = hexahedronMesh(2, 2, 1);
    MeshFiles files = asciiFiles(expected);
    writeMesh(folder, "good", files);
    files.owner = without(files.owner, "note");
    writeMesh(folder, "noNote", files);
    OFPolymeshReader reader;
    OFPolymesh mesh;
    EXPECT_TRUE(reader.read(folder.str("good"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 4U);

    const LogCapture log;
    mesh = OFPolymesh();
    EXPECT_TRUE(reader.read(folder.str("noNote"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 0U) << "not the count of the mesh read before";
    EXPECT_EQ(mesh.neighbors(), expected.neighbors());
    EXPECT_THROW((void)reader.readPolymeshSeq(folder.str("noNote"), &mesh), std::out_of_range);

    mesh = OFPolymesh();
    EXPECT_TRUE(reader.read(folder.str("missing"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 0U);
    EXPECT_EQ(log.errors().size(), 5U) << "one for the note and one per missing file";
    EXPECT_FALSE(reader.readPolymeshSeq(folder.str("missing"), &mesh));
}

// Only a missing note is tolerated. Compatibility (docs/compatibility.md, "the exception text").
TEST(PolymeshReader, HeadersWithoutObjectOrClassThrow)
{
    const TempFolder folder;
    MeshFiles files = asciiFiles(hexahedronMesh(1, 1, 1));
    const std::string good = files.owner;
    for (const std::string& owner :
         {without(good, "object"), without(good, "class"), without(without(good, "object"), "note"),
          without(without(good, "class"), "note")}) {
        files.owner = owner;
        writeMesh(folder, "mesh", files);
        OFPolymesh mesh;
        EXPECT_THROW((void)OFPolymeshReader().read(folder.str("mesh"), &mesh), std::out_of_range) << owner;
    }
}

// The cell count comes from the note of `owner`; that of `neighbour` says 77.
TEST(PolymeshReader, OnlyTheSequentialReaderRefusesExtraOwners)
{
    const TempFolder folder;
    OFPolymesh changed = hexahedronMesh(3, 1, 1);
    changed.owners().push_back(0);
    MeshFiles files = asciiFiles(changed);
    changed.setCellCount(77);
    files.neighbour = asciiFiles(changed).neighbour;
    writeMesh(folder, "mesh", files);
    OFPolymesh mesh;
    const LogCapture log;
    EXPECT_TRUE(OFPolymeshReader().read(folder.str("mesh"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 3U);
    EXPECT_EQ(joined(log.errors()), "");
    OFPolymesh refused;
    EXPECT_FALSE(OFPolymeshReader().readPolymeshSeq(folder.str("mesh"), &refused));
    EXPECT_EQ(refused.cellCount(), 0U);
    EXPECT_EQ(joined(log.errors()), "OFPolymeshReader : Cannot read part polyMesh in folder " +
                                        folder.str("mesh").toUtf8() +
                                        ". Invalid number of face owners, it is not equal to the number of faces.");
}
