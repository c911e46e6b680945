// SPDX-License-Identifier: MIT
#include "sample/HexMesh.h"

#include <algorithm>
#include <cmath>

namespace {

// The high sides, in the order of the neighbour's label.
constexpr std::array<std::size_t, 3> HIGH_SIDES = {1, 3, 5};

/// Calls `use(i, j, k)` for every cell in order of its label.
template <typename Use>
void forEachCell(const BoxLattice& lattice, Use use)
{
    for (int k = 0; k < lattice.counts[2]; ++k) {
        for (int j = 0; j < lattice.counts[1]; ++j) {
            for (int i = 0; i < lattice.counts[0]; ++i) {
                use(i, j, k);
            }
        }
    }
}

/// Cell by cell, towards x, y and z: the labels of the neighbours increase in that order, so owners and neighbours come
/// out sorted.
void addInternalFaces(const BoxLattice& lattice, SampleMesh* mesh)
{
    const std::array<int, 3> strides = {1, lattice.counts[0], lattice.counts[0] * lattice.counts[1]};
    forEachCell(lattice, [&](int i, int j, int k) {
        const std::array<int, 3> place = {i, j, k};
        const int cell = lattice.cell(i, j, k);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (place[axis] + 1 < lattice.counts[axis]) {
                mesh->addFace(lattice.side(i, j, k, HIGH_SIDES[axis]), cell);
                mesh->neighbours.push_back(cell + strides[axis]);
            }
        }
    });
}

/// The cells on one side of the box, in order of their labels.
void addPatch(const BoxLattice& lattice, std::size_t side, SampleMesh* mesh)
{
    SamplePatch& patch = mesh->patches[side];
    patch.startFace = mesh->faceCount();
    std::array<int, 3> first = {0, 0, 0};
    std::array<int, 3> end = lattice.counts;
    const std::size_t axis = side / 2;
    if (side % 2 == 0) {
        end[axis] = 1;
    } else {
        first[axis] = end[axis] - 1;
    }
    for (int k = first[2]; k < end[2]; ++k) {
        for (int j = first[1]; j < end[1]; ++j) {
            for (int i = first[0]; i < end[0]; ++i) {
                mesh->addFace(lattice.side(i, j, k, side), lattice.cell(i, j, k));
            }
        }
    }
    patch.faceCount = mesh->faceCount() - patch.startFace;
}

} // namespace

BoxLattice latticeOfAbout(int cubes)
{
    const double wanted = std::max(1, cubes);
    const int nx = std::max(1, static_cast<int>(std::lround(std::cbrt(wanted))));
    const int ny = std::max(1, static_cast<int>(std::lround(std::sqrt(wanted / nx))));
    const int nz = std::max(1, static_cast<int>(std::lround(wanted / nx / ny)));
    return {{nx, ny, nz}};
}

SampleMesh makeHexMesh(const BoxLattice& lattice)
{
    SampleMesh mesh;
    mesh.cellCount = lattice.cellCount();
    mesh.patches = boxPatches();
    lattice.addPoints(&mesh);
    addInternalFaces(lattice, &mesh);
    for (std::size_t side = 0; side < mesh.patches.size(); ++side) {
        addPatch(lattice, side, &mesh);
    }
    return mesh;
}
