// SPDX-License-Identifier: MIT
//
// What the files of a mesh claim is checked here, once, so that the conversion can follow every label blindly.
#pragma once

#include "foamfile/FacesData.h"
#include "mesh/OFPolymesh.h"

#include <cstddef>

/// Takes out of a mesh whatever points to nothing, and keeps the rest.
///
/// Node labels without a point leave their face, and a face whose labels are not all there loses all of them. Owners
/// beyond the faces and neighbours beyond the owners are dropped. A cell count that no list of faces can fill is cut,
/// so that memory stays in proportion to the files; this alone is reported. Labels of owners and neighbours that name
/// no cell stay: who follows them tests them.
///
/// A sound mesh is only read, by several threads, at about the speed of memory.
void makeConsistent(OFPolymesh* mesh);

/// True if every face has an offset and lies inside `nodes`, and every label in `nodes` is below `nodeCount`.
bool areConsistent(const FacesData& faces, std::size_t nodeCount);

/// Drops the faces of a surface that have no label, as those that a short file lacks, or a label without a point.
///
/// The rest is packed again, each face with all that stands between its offset and the next one, so that a face whose
/// size does not fit in its count keeps its labels. Sound faces are only read.
void dropInconsistentFaces(FacesData* faces, std::size_t nodeCount);
