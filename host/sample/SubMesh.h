// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

#include <functional>
#include <vector>

/// A piece of a mesh, and where its cells come from.
struct SubMesh
{
    SampleMesh mesh;        ///< labels are those of the piece, from 0
    std::vector<int> cells; ///< the label of each cell in the whole mesh, ascending
};

/// Cuts the cells of one domain out of a mesh.
///
/// All patches of the whole mesh are kept, even those without a face here. They are followed by one patch for each
/// other domain that touches this one, in ascending order. Its faces are in the order of the whole mesh, so that both
/// sides of an interface list the same faces in the same order.
///
/// @param domainOfCell   one number per cell of the whole mesh
/// @param interfacePatch gives name, type and entries of the patch towards another domain
SubMesh extractDomain(const SampleMesh& whole, const std::vector<int>& domainOfCell, int domain,
                      const std::function<SamplePatch(int other)>& interfacePatch);
