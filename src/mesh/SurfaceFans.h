// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"

#include <cstddef>
#include <vector>

/// The faces of a surface as triangles.
struct SurfaceFans
{
    FacesData triangles;
    std::vector<int> faceOfTriangle; ///< 0-based, in ascending order
};

/// Splits each face into the triangles between its first node and each edge that does not touch it:
///
///     3---2
///     | / |      0 1 2, 0 2 3
///     0---1
///
/// A face of fewer than three nodes, with a label without a point, or partly outside the list of labels gives none.
SurfaceFans fansOf(const FacesData& faces, std::size_t nodeCount);
