// SPDX-License-Identifier: MIT
#include "casemodel/ItemBlocks.h"

#include <algorithm>

std::vector<ItemBlock> itemBlocks(const std::vector<std::uint8_t>& nodeCounts, const std::vector<int>& nodes)
{
    std::vector<ItemBlock> blocks;
    std::size_t nodesLeft = nodes.size();
    // guard: connectivity-end
    for (std::size_t item = 0; item < nodeCounts.size() && nodeCounts[item] <= nodesLeft; ++item) {
        if (item % ItemBlock::SIZE == 0) {
            blocks.emplace_back();
            blocks.back().firstItem = item;
            blocks.back().firstNode = nodes.size() - nodesLeft;
        }
        ++blocks.back().itemCount;
        blocks.back().nodeCount += nodeCounts[item];
        nodesLeft -= nodeCounts[item];
    }
    const auto findLabels = [&blocks, &nodes](std::size_t i) {
        ItemBlock& block = blocks[i];
        const int* const first = nodes.data() + block.firstNode;
        // Locals, or each step of the loop would store them.
        int lowest = block.lowest;
        int highest = block.highest;
        for (std::size_t node = 0; node < block.nodeCount; ++node) {
            lowest = std::min(lowest, first[node]);
            highest = std::max(highest, first[node]);
        }
        block.lowest = lowest;
        block.highest = highest;
    };
    dvf::isolated([&] { dvf::forEachIndex(blocks.size(), findLabels); });
    return blocks;
}
