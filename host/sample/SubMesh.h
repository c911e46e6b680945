// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

#include <functional>
#include <vector>

/// A piece of a mesh, and where its cells and points come from.
struct SubMesh
{
    SampleMesh mesh;        ///< labels count anew in the piece
    std::vector<int> cells; ///< label in the whole mesh of each cell, ascending
};

/// Cuts the cells of one domain out of a mesh.
///
/// All patches of the whole mesh are kept, also those without a face here. Behind them comes one patch for each other
/// domain that touches this one, in ascending order, its faces in the order of the whole mesh, so that the two sides of
/// an interface list the same faces in the same order.
///
/// @param domainOfCell   one number a cell of the whole mesh
/// @param interfacePatch gives name, type and entries of the patch towards another domain
SubMesh extractDomain(const SampleMesh& whole, const std::vector<int>& domainOfCell, int domain,
                      const std::function<SamplePatch(int other)>& interfacePatch);
