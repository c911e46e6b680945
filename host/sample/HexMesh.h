// SPDX-License-Identifier: MIT
#pragma once

#include "sample/BoxLattice.h"
#include "sample/SampleMesh.h"

/// The mesh of a block of cubes, numbered as block meshers number theirs, with the six patches of a box.
SampleMesh makeHexMesh(const BoxLattice& lattice);
