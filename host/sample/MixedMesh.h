// SPDX-License-Identifier: MIT
#pragma once

#include "sample/BoxLattice.h"
#include "sample/SampleMesh.h"

/// A box with cells of all shapes, in four slabs along x: prisms, pyramids, hexahedra, tetrahedra.
///
/// The last hexahedra before the tetrahedra have one side that is split into triangles, so they are general polyhedra.
/// The lattice needs four cubes or more in x; its cubes become 2, 6, 1 and 12 cells.
SampleMesh makeMixedMesh(const BoxLattice& lattice);
