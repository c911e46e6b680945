// SPDX-License-Identifier: MIT
#include "sample/HexMesh.h"
#include "sample/MixedMesh.h"
#include "sample/PolyhedraMesh.h"
#include "sample/SubMesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace {

std::vector<SamplePoint> areaSums(const SampleMesh& mesh, const SampleMeasures& measures)
{
    std::vector<SamplePoint> sums(static_cast<std::size_t>(mesh.cellCount), SamplePoint{});
    for (std::size_t face = 0; face < mesh.owners.size(); ++face) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sums[static_cast<std::size_t>(mesh.owners[face])][axis] += measures.faceAreas[face][axis];
            if (face < mesh.neighbours.size()) {
                sums[static_cast<std::size_t>(mesh.neighbours[face])][axis] -= measures.faceAreas[face][axis];
            }
        }
    }
    return sums;
}

/// What any reader of a mesh may take for granted, checked by geometry and not by the way the mesh was made.
void expectSound(const SampleMesh& mesh, double volume)
{
    const SampleMeasures measures = measure(mesh);
    double total = 0;
    for (const double cellVolume : measures.cellVolumes) {
        EXPECT_GT(cellVolume, 0);
        total += cellVolume;
    }
    EXPECT_NEAR(total, volume, 1e-9 * volume);
    for (const SamplePoint& sum : areaSums(mesh, measures)) {
        EXPECT_LT(std::abs(sum[0]) + std::abs(sum[1]) + std::abs(sum[2]), 1e-12) << "a cell is not closed";
    }
    std::pair<int, int> last = {-1, -1};
    for (std::size_t face = 0; face < mesh.neighbours.size(); ++face) {
        const std::pair<int, int> sides = {mesh.owners[face], mesh.neighbours[face]};
        EXPECT_LT(sides.first, sides.second);
        EXPECT_LT(last, sides) << "face " << face << " is not in upper-triangular order";
        last = sides;
    }
    int next = mesh.internalFaceCount();
    for (const SamplePatch& patch : mesh.patches) {
        EXPECT_EQ(patch.startFace, next) << patch.name;
        next += patch.faceCount;
    }
    EXPECT_EQ(next, mesh.faceCount());
}

/// Every face of the n-th patch of a box has the n-th outward normal.
void expectBoxPatches(const SampleMesh& mesh)
{
    const SampleMeasures measures = measure(mesh);
    for (std::size_t number = 0; number < 6; ++number) {
        const SamplePatch& patch = mesh.patches[number];
        EXPECT_GT(patch.faceCount, 0) << patch.name;
        for (int face = patch.startFace; face < patch.startFace + patch.faceCount; ++face) {
            const SamplePoint& area = measures.faceAreas[static_cast<std::size_t>(face)];
            const double along = area[number / 2] * (number % 2 == 0 ? -1 : 1);
            EXPECT_NEAR(along, std::hypot(area[0], area[1], area[2]), 1e-15) << patch.name;
        }
    }
}

double boxVolume(const BoxLattice& lattice)
{
    return lattice.size()[0] * lattice.size()[1] * lattice.size()[2];
}

/// Cells by their numbers of faces and of distinct nodes.
std::map<std::pair<std::size_t, std::size_t>, int> cellsByShape(const SampleMesh& mesh)
{
    std::vector<std::vector<int>> nodes(static_cast<std::size_t>(mesh.cellCount));
    std::vector<std::size_t> faces(nodes.size());
    const auto add = [&](int cell, int face) {
        const auto label = static_cast<std::size_t>(cell);
        ++faces[label];
        std::ranges::copy(mesh.nodesOfFace(face), std::back_inserter(nodes[label]));
    };
    for (int face = 0; face < mesh.faceCount(); ++face) {
        add(mesh.owners[static_cast<std::size_t>(face)], face);
        if (face < mesh.internalFaceCount()) {
            add(mesh.neighbours[static_cast<std::size_t>(face)], face);
        }
    }
    std::map<std::pair<std::size_t, std::size_t>, int> counts;
    for (std::size_t cell = 0; cell < nodes.size(); ++cell) {
        std::ranges::sort(nodes[cell]);
        nodes[cell].erase(std::unique(nodes[cell].begin(), nodes[cell].end()), nodes[cell].end());
        ++counts[{faces[cell], nodes[cell].size()}];
    }
    return counts;
}

} // namespace

TEST(SampleMesh, HexahedraFillTheirBox)
{
    for (const BoxLattice& lattice : {BoxLattice{{1, 1, 1}}, BoxLattice{{3, 4, 5}}, BoxLattice{{1, 7, 1}}}) {
        const SampleMesh mesh = makeHexMesh(lattice);
        expectSound(mesh, boxVolume(lattice));
        expectBoxPatches(mesh);
    }
}

TEST(SampleMesh, PolyhedraFillTheirCubeAndHaveFourteenFacesInside)
{
    for (const int edge : {1, 2, 4}) {
        const SampleMesh mesh = makePolyhedraMesh(edge);
        expectSound(mesh, std::pow(0.25 * edge, 3));
        expectBoxPatches(mesh);
        const int inner = edge * edge * edge + (edge - 1) * (edge - 1) * (edge - 1);
        EXPECT_EQ((cellsByShape(mesh)[{14, 24}]), inner);
    }
}

TEST(SampleMesh, MixedCellsHaveAllShapesAndFitEachOther)
{
    const BoxLattice lattice = {{5, 2, 3}};
    const SampleMesh mesh = makeMixedMesh(lattice);
    expectSound(mesh, boxVolume(lattice));
    expectBoxPatches(mesh);
    // Six cubes a slab: 2 prisms, 6 pyramids, 12 tetrahedra each; half of the hexahedra have a side in triangles.
    const std::map<std::pair<std::size_t, std::size_t>, int> expected = {
        {{5, 6}, 12}, {{5, 5}, 36}, {{6, 8}, 6}, {{7, 8}, 6}, {{4, 4}, 72}};
    EXPECT_EQ(cellsByShape(mesh), expected);
}

TEST(SampleMesh, PiecesKeepTheirShareAndMeetInTheSameFaces)
{
    const BoxLattice lattice = {{4, 3, 2}};
    const SampleMesh whole = makeHexMesh(lattice);
    std::vector<int> domains;
    domains.reserve(static_cast<std::size_t>(whole.cellCount));
    for (int cell = 0; cell < whole.cellCount; ++cell) {
        domains.push_back(cell % 4 < 1 ? 0 : 1);
    }
    const auto interfacePatch = [](int other) { return SamplePatch{"to" + std::to_string(other), "processor"}; };
    const SubMesh left = extractDomain(whole, domains, 0, interfacePatch);
    const SubMesh right = extractDomain(whole, domains, 1, interfacePatch);
    expectSound(left.mesh, boxVolume(lattice) / 4);
    expectSound(right.mesh, boxVolume(lattice) * 3 / 4);

    ASSERT_EQ(left.mesh.patches.size(), 7U);
    EXPECT_EQ(left.mesh.patches[1].faceCount, 0) << "the outlet belongs to the right piece";
    const SamplePatch& here = left.mesh.patches.back();
    const SamplePatch& there = right.mesh.patches.back();
    ASSERT_EQ(here.faceCount, 6);
    ASSERT_EQ(there.faceCount, 6);
    const SampleMeasures leftMeasures = measure(left.mesh);
    const SampleMeasures rightMeasures = measure(right.mesh);
    for (int k = 0; k < here.faceCount; ++k) {
        EXPECT_EQ(leftMeasures.faceCentres[static_cast<std::size_t>(here.startFace + k)],
                  rightMeasures.faceCentres[static_cast<std::size_t>(there.startFace + k)]);
    }
}
