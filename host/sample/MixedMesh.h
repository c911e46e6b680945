// SPDX-License-Identifier: MIT
#pragma once

#include "sample/BoxLattice.h"
#include "sample/SampleMesh.h"

/// Slabs of a mixed mesh along x, and how many cells a cube becomes in their mean: 2, 6, 1, 1 and 12.
inline constexpr int MIXED_SLABS = 5;
inline constexpr double MIXED_CELLS_PER_CUBE = (2 + 6 + 1 + 1 + 12) / 5.0;

/// A box with cells of all shapes in five slabs along x: prisms, pyramids, two of hexahedra, tetrahedra.
///
/// The last hexahedra before the tetrahedra have one side that is split into triangles, so they are general polyhedra.
/// The lattice needs a cube a slab, five, in x.
SampleMesh makeMixedMesh(const BoxLattice& lattice);
