// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshReader.h"
#include "bench/SyntheticMesh.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <stdexcept>

namespace {

void write(const TempFolder& folder, const std::string& name, const MeshFiles& files)
{
    folder.write(name + "/points", files.points);
    folder.write(name + "/faces", files.faces);
    folder.write(name + "/owner", files.owner);
    folder.write(name + "/neighbour", files.neighbour);
}

std::string without(std::string text, const std::string& key)
{
    const std::size_t line = text.find("    " + key + " ");
    return text.erase(line, text.find('\n', line) + 1 - line);
}

void expectEqual(const OFPolymesh& mesh, const OFPolymesh& expected)
{
    EXPECT_EQ(mesh.points(), expected.points());
    EXPECT_EQ(mesh.faces().nodeCounts, expected.faces().nodeCounts);
    EXPECT_EQ(mesh.faces().nodeOffsets, expected.faces().nodeOffsets);
    // The list may end in slack.
    ASSERT_GE(mesh.faces().nodes.size(), expected.faces().nodes.size());
    EXPECT_TRUE(std::equal(expected.faces().nodes.begin(), expected.faces().nodes.end(), mesh.faces().nodes.begin()));
    EXPECT_EQ(mesh.owners(), expected.owners());
    EXPECT_EQ(mesh.neighbors(), expected.neighbors());
    EXPECT_EQ(mesh.cellCount(), expected.cellCount());
}

/// Lines with the figure of their time cut off, in alphabetic order: the files are read at the same time.
std::vector<std::string> sortedWithoutTimes(std::vector<std::string> lines)
{
    for (std::string& line : lines) {
        line = std::regex_replace(line, std::regex("[0-9.e+-]+$"), "");
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace

TEST(PolymeshReader, EveryFormGivesTheMesh)
{
    const TempFolder folder;
    const OFPolymesh expected = octahedronMesh(2);
    const MeshFiles ascii = asciiFiles(expected);
    write(folder, "ascii", ascii);
    write(folder, "binary", binaryFiles(expected));
    folder.writeGz("gzip/points.gz", ascii.points);
    folder.writeGz("gzip/faces.gz", ascii.faces);
    folder.writeGz("gzip/owner.gz", ascii.owner);
    folder.writeGz("gzip/neighbour.gz", ascii.neighbour);
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

TEST(PolymeshReader, LogsWhatWasReadInItems)
{
    const TempFolder folder;
    write(folder, "mesh", asciiFiles(hexahedronMesh(1, 1, 2)));
    OFPolymeshReader reader;
    OFPolymesh mesh;
    const LogCapture log;
    EXPECT_TRUE(reader.read(folder.str("mesh"), &mesh));
    EXPECT_EQ(sortedWithoutTimes(log.texts(4)),
              (std::vector<std::string>{"OFPolymeshReader : >>> Polymesh reading done (parallel). Time used : ",
                                        "OFPolymeshReader : Faces file done. Read 11 items. Time used : ",
                                        "OFPolymeshReader : Neighbours file done. Read 1 items. Time used : ",
                                        "OFPolymeshReader : Owners file done. Read 11 items. Time used : ",
                                        "OFPolymeshReader : Points file done. Read 36 items. Time used : "}));
    EXPECT_TRUE(log.errors().empty());
}

TEST(PolymeshReader, GoesOnWithoutFilesThatCannotBeRead)
{
    const TempFolder folder;
    const OFPolymesh expected = hexahedronMesh(2, 2, 1);
    MeshFiles files = asciiFiles(expected);
    write(folder, "good", files);
    files.owner = without(files.owner, "note");
    write(folder, "noNote", files);
    OFPolymeshReader reader;
    OFPolymesh mesh;
    EXPECT_TRUE(reader.read(folder.str("good"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 4U);

    const LogCapture log;
    mesh = OFPolymesh();
    EXPECT_TRUE(reader.read(folder.str("noNote"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 0U) << "the count of the mesh read before";
    EXPECT_EQ(mesh.neighbors(), expected.neighbors());
    EXPECT_EQ(log.errors(),
              std::vector<std::string>{"OFFile : Failed to read number of cells in file. This info should "
                                       "be available as 'note' in the header of File: " +
                                       folder.str("noNote/owner").toUtf8()});
    EXPECT_THROW((void)reader.readPolymeshSeq(folder.str("noNote"), &mesh), std::out_of_range);

    mesh = OFPolymesh();
    EXPECT_TRUE(reader.read(folder.str("missing"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 0U);
    EXPECT_EQ(log.errors().size(), 5U);
    EXPECT_FALSE(reader.readPolymeshSeq(folder.str("missing"), &mesh));
}

// Only a missing note is put up with. A header without its class is none, and hosts know that by the exception.
TEST(PolymeshReader, HeadersWithoutObjectOrClassAreNotPassedOver)
{
    const TempFolder folder;
    for (const std::string key : {"object", "class"}) {
        MeshFiles files = asciiFiles(hexahedronMesh(1, 1, 1));
        files.owner = without(files.owner, key);
        write(folder, key, files);
        files.owner = without(files.owner, "note");
        write(folder, key + "AndNote", files);
        for (const std::string& name : {key, key + "AndNote"}) {
            OFPolymesh mesh;
            EXPECT_THROW((void)OFPolymeshReader().read(folder.str(name), &mesh), std::out_of_range) << name;
        }
    }
}

TEST(PolymeshReader, OnlyTheOwnersTellTheCellsAndOnlyTheSequentialFormCountsThem)
{
    const TempFolder folder;
    const OFPolymesh expected = hexahedronMesh(3, 1, 1);
    OFPolymesh changed = expected;
    changed.setCellCount(77);
    MeshFiles files = asciiFiles(expected);
    files.neighbour = asciiFiles(changed).neighbour;
    write(folder, "otherCount", files);
    changed = expected;
    changed.owners().push_back(0);
    files.owner = asciiFiles(changed).owner;
    write(folder, "moreOwners", files);
    OFPolymeshReader reader;
    OFPolymesh mesh;
    EXPECT_TRUE(reader.read(folder.str("otherCount"), &mesh));
    EXPECT_EQ(mesh.cellCount(), 3U);

    const LogCapture log;
    EXPECT_TRUE(reader.read(folder.str("moreOwners"), &mesh));
    EXPECT_TRUE(log.errors().empty());
    OFPolymesh refused;
    EXPECT_FALSE(reader.readPolymeshSeq(folder.str("moreOwners"), &refused));
    EXPECT_EQ(refused.cellCount(), 0U);
    EXPECT_EQ(log.errors(),
              std::vector<std::string>{"OFPolymeshReader : Cannot read part polyMesh in folder " +
                                       folder.str("moreOwners").toUtf8() +
                                       ". Invalid number of face owners, it is not equal to the number of faces."});
}
