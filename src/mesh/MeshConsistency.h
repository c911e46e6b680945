// SPDX-License-Identifier: MIT
//
// Checks the claims of the mesh files once, so that the conversion can follow every label without a test.
#pragma once

#include "foamfile/FacesData.h"
#include "mesh/OFPolymesh.h"

#include <cstddef>

/// Removes from a mesh whatever points to nothing, and keeps the rest.
///
/// A node label without a point is removed from its face, and a face that is partly outside the list of labels loses
/// all its labels. Owners beyond the faces and neighbours beyond the owners are dropped. A cell count that the faces
/// cannot fill is cut, so that memory stays in proportion to the files; only this is reported. Owner and neighbour
/// labels that name no cell stay; code that uses them checks them.
///
/// A sound mesh is only read, by several threads, at about the speed of memory.
void makeConsistent(OFPolymesh* mesh);

/// True if every face has an offset and lies inside `nodes`, and every label in `nodes` is below `nodeCount`.
bool areConsistent(const FacesData& faces, std::size_t nodeCount);

/// Drops the faces of a surface that have no label, such as those missing from a short file, or a label without a
/// point.
///
/// The rest is packed again, each face with all labels between its offset and the next one, so that a face whose size
/// does not fit in its count keeps its labels. Sound faces are only read.
void dropInconsistentFaces(FacesData* faces, std::size_t nodeCount);
