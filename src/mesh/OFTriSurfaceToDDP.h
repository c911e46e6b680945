// SPDX-License-Identifier: MIT
#pragma once

#include "interface/DataProviderInterface.h"
#include "mesh/OFTriSurface.h"

#include <cstddef>

/// Hands a sampled surface to the host as one group of nodes and one of triangles.
class OFTriSurfaceToDDP
{
public:
    /// Takes a surface that must outlive this object, and drops its faces that have a label without a point.
    explicit OFTriSurfaceToDDP(OFTriSurface* surface);

    /// Fills both groups at the same time.
    bool populateNodeAndElementGroup(DDPNodeGroup* nodes, DDPElementGroup* elements, std::size_t* nodeCount,
                                     std::size_t* elementCount) const;
    /// Hands over the points, with ids from 1; always true.
    bool populateNodeGroup(DDPNodeGroup* nodes, std::size_t* nodeCount) const;
    /// Hands over all faces as triangles, with ids from 1; always true.
    ///
    /// Compatibility (docs/compatibility.md, "surface elements are triangles"): the connectivity is the surface's list
    /// of labels unchanged, so a face that is not a triangle shifts those after it.
    bool populateElementGroup(DDPElementGroup* elements, std::size_t* elementCount) const;

private:
    OFTriSurface* m_surface;
};
