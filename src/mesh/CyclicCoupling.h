// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/OFPolymesh.h"
#include "records/OFBoundary.h"

#include <vector>

/// Finds what lies beyond each face of the patches of type `cyclic`, and stores it in them.
///
/// The patches must be built, with their normals, and the mesh must still have its faces, owners and neighbours, none
/// of which points to nothing (`makeConsistent`). A patch whose neighbour patch is missing, of another type or another
/// number of faces, or whose faces have no cell, gets an empty coupling. Without such patches this costs nothing, else
/// one pass over the faces of the mesh and memory for the cells at the patches.
void coupleCyclicPatches(const OFPolymesh& mesh, std::vector<OFBoundary>* patches);
