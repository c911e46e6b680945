// SPDX-License-Identifier: MIT
#include "GridVolume.h"
#include "ReferenceCells.h"
#include "TempFolder.h"
#include "output/FileNames.h"
#include "output/VtkWriter.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

void fill(const ReferenceCells& cells, HostNodeGroup* nodes, HostElementGroup* elements)
{
    nodes->setNodes(cells.points.data(), cells.points.size() / 3);
    elements->setMixedElements(cells.types.data(), cells.types.size(), cells.connectivity.data(),
                               cells.connectivity.size(), cells.ids.data());
    elements->setPolyhedra(cells.nodesPerPolyhedron.data(), cells.facesPerPolyhedron.data(), 1,
                           cells.nodesPerFace.data(), 6, cells.faceConnectivity.data(), 24);
}

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

TEST(VtkGrid, EveryShapeKeepsItsVolumeInTheNodeOrderOfVtk)
{
    const ReferenceCells cells;
    HostNodeGroup nodes(1);
    HostElementGroup elements(1);
    fill(cells, &nodes, &elements);
    const VtkGrid grid = makeVtkGrid(nodes, elements, false, 1);
    const std::vector<double> volumes = cellVolumes(grid);
    ASSERT_EQ(volumes.size(), cells.volumes.size());
    for (std::size_t cell = 0; cell < volumes.size(); ++cell) {
        EXPECT_NEAR(volumes[cell], cells.volumes[cell], 1e-12) << "VTK type " << int{grid.types[cell]};
    }
    EXPECT_EQ(grid.types[4], 42);
}

TEST(VtkFiles, HoldTheArraysToTheLastBit)
{
    const ReferenceCells cells;
    HostNodeGroup nodes(1);
    HostElementGroup elements(1);
    fill(cells, &nodes, &elements);
    nodes.coordinates[0] = 0.1 + 0.2;
    VtkGrid grid = makeVtkGrid(nodes, elements, false, 17);
    grid.cellData.push_back({"a <\"&> b", 1, {1, 2, 3, 4, 1.0 / 3}});
    const TempFolder folder;
    writeVtu(folder / "grid.vtu", grid, false);

    const std::string content = contentOf(folder / "grid.vtu");
    EXPECT_EQ(appendedArray<double>(content, "Points"), nodes.coordinates);
    EXPECT_EQ(appendedArray<double>(content, "a &lt;&quot;&amp;&gt; b"), grid.cellData[0].values);
    EXPECT_EQ(appendedArray<std::int32_t>(content, "PartId"), std::vector<std::int32_t>(5, 17));
    EXPECT_EQ(appendedArray<std::int64_t>(content, "faceoffsets"), (std::vector<std::int64_t>{-1, -1, -1, -1, 31}));
}

TEST(FileNames, StayInTheirFolderAndApart)
{
    FileNames names;
    EXPECT_EQ(names.unique("../etc/passwd", ".vtp"), "_.._etc_passwd.vtp");
    EXPECT_EQ(names.unique("", ".vtp"), "_.vtp");
    EXPECT_EQ(names.unique("Wall", ".vtp"), "Wall.vtp");
    EXPECT_EQ(names.unique("wall", ".vtp"), "wall_2.vtp");
    EXPECT_EQ(names.unique("wall ", ".vtp"), "wall_.vtp");
    EXPECT_EQ(names.unique("wall:", ".vtp"), "wall__2.vtp");
    EXPECT_LE(names.unique(std::string(1000, 'x'), ".vtp").size(), 255U);
}
