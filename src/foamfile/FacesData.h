// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// All faces of one mesh, packed without gaps in file order.
///
/// For F faces `nodeCounts` and `nodeOffsets` have F entries; the nodes of face i are the `nodeCounts[i]` entries of
/// `nodes` from `nodeOffsets[i]` on, 0-based labels into the points of the same mesh. `nodes` may end in unused slack.
/// Counts are bytes because the host takes bytes: a face of more than 255 nodes keeps its labels and its stride, and
/// its count wraps. Any number of threads may read a filled record; writers own disjoint ranges of faces.
struct FacesData
{
    std::vector<std::uint8_t> nodeCounts;
    std::vector<int> nodeOffsets;
    std::vector<int> nodes;

    std::size_t faceCount() const { return nodeCounts.size(); }
    /// The first node label of face i.
    const int* faceNodes(std::size_t i) const { return nodes.data() + nodeOffsets[i]; }
};
