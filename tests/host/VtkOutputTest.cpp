// SPDX-License-Identifier: MIT
#include "output/FileNames.h"
#include "output/VtkWriter.h"
#include "support/HostArrays.h"
#include "support/ReferenceCells.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace {

// The faces of VTK's cells as in its user's guide, each counter-clockwise seen from outside.
const std::map<int, ReferenceFaces> VTK_FACES = {
    {10, {{0, 1, 3}, {1, 2, 3}, {2, 0, 3}, {0, 2, 1}}},
    {12, {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}}},
    {13, {{0, 1, 2}, {3, 5, 4}, {0, 3, 4, 1}, {1, 4, 5, 2}, {2, 5, 3, 0}}},
    {14, {{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}}}};

/// The array of this name in the appended section of a file.
template <typename Value>
std::vector<Value> appendedArray(const std::string& content, const std::string& name)
{
    const std::size_t element = content.find("Name=\"" + name + "\"");
    const std::size_t attribute = content.find("offset=\"", element) + 8;
    const std::size_t block = content.find("\n_") + 2 + std::stoul(content.substr(attribute));
    std::uint64_t byteCount = 0;
    std::memcpy(&byteCount, content.data() + block, sizeof(byteCount));
    std::vector<Value> values(byteCount / sizeof(Value));
    std::memcpy(values.data(), content.data() + block + sizeof(byteCount), byteCount);
    return values;
}

} // namespace

TEST(VtkGrid, EveryShapeKeepsItsVolumeInVtkNodeOrder)
{
    HostGroups groups;
    DeliveredCells().deliverTo(&groups.nodes, &groups.elements);
    const VtkGrid grid = makeVtkGrid(groups.nodes, groups.elements, false, 1);
    ASSERT_EQ(grid.types.size(), 5U);
    auto node = grid.connectivity.begin();
    for (std::size_t cell = 0; cell < 4; ++cell) {
        // Cells share no nodes, so the labels of a cell follow those of the cells before it.
        const ReferenceCell& reference = referenceCells()[cell];
        const auto first = static_cast<int>(node - grid.connectivity.begin());
        ReferenceFaces faces = VTK_FACES.at(grid.types[cell]);
        for (std::vector<int>& face : faces) {
            std::ranges::for_each(face, [&](int& corner) { corner = static_cast<int>(node[corner]) - first; });
        }
        EXPECT_NEAR(volumeInside(reference.points, faces), reference.volume(), 1e-12) << int{grid.types[cell]};
        node += static_cast<std::ptrdiff_t>(reference.points.size());
    }
    EXPECT_EQ(grid.types[4], 42);
    std::vector<std::int64_t> table = {6};
    for (std::size_t i = 0; i < 24; ++i) {
        table.insert(table.end(), i % 4 == 0 ? 1 : 0, 4);
        table.push_back(DeliveredCells().faceConnectivity[i]);
    }
    EXPECT_EQ(grid.faces, table);
}

TEST(VtkFiles, HoldTheArraysToTheLastBit)
{
    HostGroups groups;
    DeliveredCells().deliverTo(&groups.nodes, &groups.elements);
    groups.nodes.coordinates[0] = 0.1 + 0.2;
    VtkGrid grid = makeVtkGrid(groups.nodes, groups.elements, false, 17);
    grid.cellData.push_back({"a <\"&> b", 1, {1, 2, 3, 4, 1.0 / 3}});
    const TempFolder folder;
    writeVtu(folder / "grid.vtu", grid, false);

    const std::string content = fileBytes(folder / "grid.vtu");
    EXPECT_EQ(appendedArray<double>(content, "Points"), groups.nodes.coordinates);
    EXPECT_EQ(appendedArray<double>(content, "a &lt;&quot;&amp;&gt; b"), grid.cellData[0].values);
    EXPECT_EQ(appendedArray<std::int32_t>(content, "PartId"), std::vector<std::int32_t>(5, 17));
    EXPECT_EQ(appendedArray<std::int64_t>(content, "faceoffsets"), (std::vector<std::int64_t>{-1, -1, -1, -1, 31}));
}

TEST(FileNames, StayDistinctAndInTheirFolder)
{
    FileNames names;
    const std::pair<const char*, const char*> cases[] = {{"../etc/passwd", "_.._etc_passwd.vtp"},
                                                         {"", "_.vtp"},
                                                         {"Wall", "Wall.vtp"},
                                                         {"wall", "wall_2.vtp"},
                                                         {"wall ", "wall_.vtp"},
                                                         {"wall:", "wall__2.vtp"}};
    for (const auto& [name, file] : cases) {
        EXPECT_EQ(names.unique(name, ".vtp"), file);
    }
    EXPECT_LE(names.unique(std::string(1000, 'x'), ".vtp").size(), 255U);
}
