// SPDX-License-Identifier: MIT
#include "ReferenceCells.h"
#include "TempFolder.h"
#include "output/FileNames.h"
#include "output/VtkWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

namespace {

using FaceList = std::vector<std::vector<std::size_t>>;

// The faces of VTK's cells as its user's guide draws them, each counter-clockwise seen from outside.
const std::map<int, FaceList> VTK_FACES = {
    {10, {{0, 1, 3}, {1, 2, 3}, {2, 0, 3}, {0, 2, 1}}},
    {12, {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}}},
    {13, {{0, 1, 2}, {3, 5, 4}, {0, 3, 4, 1}, {1, 4, 5, 2}, {2, 5, 3, 0}}},
    {14, {{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}}}};

double determinant(const double* a, const double* b, const double* c)
{
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
}

/// Volume under one face, a fan of tetrahedra to the origin; positive if the face looks away from there.
double volumeUnder(const VtkGrid& grid, const std::vector<std::int64_t>& nodes)
{
    double sum = 0;
    for (std::size_t k = 1; k + 1 < nodes.size(); ++k) {
        const double* const points = grid.points->data();
        sum += determinant(points + 3 * nodes[0], points + 3 * nodes[k], points + 3 * nodes[k + 1]) / 6;
    }
    return sum;
}

double typedVolume(const VtkGrid& grid, std::size_t cell)
{
    const std::int64_t first = cell == 0 ? 0 : grid.offsets[cell - 1];
    double sum = 0;
    for (const std::vector<std::size_t>& face : VTK_FACES.at(grid.types[cell])) {
        std::vector<std::int64_t> nodes;
        for (const std::size_t corner : face) {
            nodes.push_back(grid.connectivity[static_cast<std::size_t>(first) + corner]);
        }
        sum += volumeUnder(grid, nodes);
    }
    return sum;
}

double polyhedronVolume(const VtkGrid& grid, std::size_t cell)
{
    std::size_t at = 0;
    for (std::size_t before = 0; before < cell; ++before) {
        at = grid.faceOffsets[before] < 0 ? at : static_cast<std::size_t>(grid.faceOffsets[before]);
    }
    double sum = 0;
    const std::int64_t faceCount = grid.faces[at++];
    for (std::int64_t face = 0; face < faceCount; ++face) {
        const auto first = grid.faces.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        sum += volumeUnder(grid, std::vector(first, first + grid.faces[at]));
        at += static_cast<std::size_t>(grid.faces[at]) + 1;
    }
    EXPECT_EQ(static_cast<std::int64_t>(at), grid.faceOffsets[cell]);
    return sum;
}

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
    for (std::size_t cell = 0; cell < 4; ++cell) {
        EXPECT_NEAR(typedVolume(grid, cell), cells.volumes[cell], 1e-12) << "VTK type " << int{grid.types[cell]};
    }
    EXPECT_NEAR(polyhedronVolume(grid, 4), cells.volumes[4], 1e-12);
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
