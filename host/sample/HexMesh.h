// SPDX-License-Identifier: MIT
#pragma once

#include "sample/BoxLattice.h"
#include "sample/SampleMesh.h"

/// The mesh of a block of cubes, numbered as by a block mesher, with the six patches of a box.
SampleMesh makeHexMesh(const BoxLattice& lattice);
