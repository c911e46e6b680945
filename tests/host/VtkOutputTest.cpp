// SPDX-License-Identifier: MIT
#include "output/FileNames.h"
#include "output/VtkWriter.h"
#include "support/HostArrays.h"
#include "support/ReferenceCells.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

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

/// The array of this name in an ascii file.
std::vector<double> asciiArray(const std::string& content, const std::string& name)
{
    const std::size_t start = content.find('\n', content.find("Name=\"" + name + "\""));
    const char* next = content.data() + start;
    std::vector<double> values;
    while (*(next += std::strspn(next, " \n")) != '<') {
        values.emplace_back();
        next = std::from_chars(next, content.data() + content.size(), values.back()).ptr;
    }
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
    grid.cellData.push_back({"a <\"&> b\xff", 1, {1, 2, 3, 4, 1.0 / 3}, "m s-1"});
    constexpr double LARGEST = std::numeric_limits<double>::max();
    constexpr double LEAST = std::numeric_limits<double>::denorm_min();
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    grid.cellData.push_back({"far", 1, {LARGEST, LEAST, -0.0, -INFINITE, 1e100}, ""});
    const TempFolder folder;
    std::size_t progress = 0;
    const auto count = [&](std::size_t bytes) { progress += bytes; };
    const std::uint64_t size = writeVtu(folder / "grid.vtu", grid, {false, count});
    const std::size_t rawBytes = std::exchange(progress, 0);
    writeVtu(folder / "ascii.vtu", grid, {true, count});

    const std::string content = fileBytes(folder / "grid.vtu");
    const std::string ascii = fileBytes(folder / "ascii.vtu");
    EXPECT_EQ(size, content.size());
    EXPECT_EQ(progress, rawBytes) << "the same arrays";
    EXPECT_EQ(appendedArray<double>(content, "Points"), groups.nodes.coordinates);
    EXPECT_EQ(asciiArray(ascii, "Points"), groups.nodes.coordinates);
    for (const auto& [name, values] : {std::pair("a &lt;&quot;&amp;&gt; b\xef\xbf\xbd", grid.cellData[0].values),
                                       std::pair("far", grid.cellData[1].values)}) {
        EXPECT_EQ(appendedArray<double>(content, name), values);
        EXPECT_EQ(asciiArray(ascii, name), values);
    }
    EXPECT_EQ(appendedArray<std::int32_t>(content, "PartId"), std::vector<std::int32_t>(5, 17));
    EXPECT_EQ(appendedArray<std::int64_t>(content, "faceoffsets"), (std::vector<std::int64_t>{-1, -1, -1, -1, 31}));
    EXPECT_EQ(asciiArray(ascii, "faceoffsets"), (std::vector<double>{-1, -1, -1, -1, 31}));
    EXPECT_EQ(asciiArray(ascii, "types"), (std::vector<double>(grid.types.begin(), grid.types.end())));
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
