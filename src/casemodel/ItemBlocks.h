// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Parallel.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// A run of elements, with the least and greatest label among their nodes, which show at once whether the run touches a
/// range of nodes.
struct ItemBlock
{
    /// Elements of a block: their nodes and values fit the cache.
    static constexpr std::size_t SIZE = 1024;

    std::size_t firstItem = 0;
    std::size_t itemCount = 0;
    /// Where the nodes of the first element start in the connectivity, and how many nodes follow.
    std::size_t firstNode = 0;
    std::size_t nodeCount = 0;
    int lowest = std::numeric_limits<int>::max();
    int highest = std::numeric_limits<int>::min();

    bool overlaps(const dvf::IndexRange& nodes) const
    {
        return highest >= 0 && static_cast<std::size_t>(highest) >= nodes.begin() &&
               (lowest < 0 || static_cast<std::size_t>(lowest) < nodes.end());
    }
    bool isInside(const dvf::IndexRange& nodes) const
    {
        // guard: block-labels
        return lowest >= 0 && static_cast<std::size_t>(lowest) >= nodes.begin() && highest >= 0 &&
               static_cast<std::size_t>(highest) < nodes.end();
    }
};

/// Cuts elements into blocks, as far as the connectivity has all of their nodes.
std::vector<ItemBlock> itemBlocks(const std::vector<std::uint8_t>& nodeCounts, const std::vector<int>& nodes);
