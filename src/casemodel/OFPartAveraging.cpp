// SPDX-License-Identifier: MIT
#include "casemodel/OFPart.h"

#include "DvnCore/Undefined.h"
#include "LibCore/Parallel.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace {

/// Node count of a hexahedron. Most cells are hexahedra, so they get a loop of fixed length.
constexpr std::size_t USUAL_NODE_COUNT = 8;
/// Below this the tasks cost more than they gain.
constexpr std::size_t LEAST_PARALLEL_BLOCKS = 8;
/// Ranges of nodes that are summed at the same time; more than a small machine has cores, so that both get equal work.
constexpr std::size_t NODE_RANGES = 8;

/// A number of components that is not known at compile time.
struct AnyWidth
{
    std::size_t value;
    constexpr operator std::size_t() const { return value; }
};

template <std::size_t N>
using FixedWidth = std::integral_constant<std::size_t, N>;

/// Calls `operation` with the number of components, as a compile-time constant if it is a usual one.
template <typename Operation>
void withWidth(int components, const Operation& operation)
{
    switch (components) {
    case 1:
        return operation(FixedWidth<1>());
    case 3:
        return operation(FixedWidth<3>());
    default:
        return operation(AnyWidth{static_cast<std::size_t>(components)});
    }
}

/// Sums of item values at nodes, with the number of items added to each node.
///
/// Compatibility (docs/compatibility.md, "averages of no items"): the numbers are bytes and wrap, so a node of 256
/// items counts as one of none. Labels outside the node list are left out.
template <typename Width>
class NodeSums
{
public:
    NodeSums(std::vector<double>& values, std::size_t nodeCount, Width width)
        : m_values(values.data()), m_itemCounts(std::min(nodeCount, values.size() / width), 0), m_width(width)
    {}

    std::size_t nodeCount() const { return m_itemCounts.size(); }

    // guard: node-label
    bool hasNode(int node) const { return static_cast<std::size_t>(node) < m_itemCounts.size(); }

    /// Adds the values of one item to an existing node.
    void add(int node, const double* item)
    {
        const auto index = static_cast<std::size_t>(node);
        double* const sum = m_values + index * m_width;
        for (std::size_t k = 0; k < m_width; ++k) {
            sum[k] += item[k];
        }
        ++m_itemCounts[index];
    }

    /// Clears the sums of nodes.
    void reset(const dvf::IndexRange& nodes)
    {
        std::fill_n(m_values + nodes.begin() * m_width, nodes.size() * m_width, 0.0);
        std::fill_n(m_itemCounts.data() + nodes.begin(), nodes.size(), std::uint8_t{0});
    }

    /// Turns sums into means. Compatibility (docs/compatibility.md, "rounding of averages"): the factor is computed
    /// once per node and multiplied. A node without items gets an infinite factor, which leaves infinities and NaN.
    void divide(const dvf::IndexRange& nodes)
    {
        for (std::size_t node = nodes.begin(); node != nodes.end(); ++node) {
            const double factor = 1.0 / static_cast<double>(m_itemCounts[node]);
            double* const sum = m_values + node * m_width;
            for (std::size_t k = 0; k < m_width; ++k) {
                sum[k] *= factor;
            }
        }
    }

private:
    double* m_values;
    std::vector<std::uint8_t> m_itemCounts;
    Width m_width;
};

/// Calls `addToNode(node, item values)` for each node of `itemCount` items in order.
template <typename Width, typename AddToNode>
void visitNodes(const std::uint8_t* nodeCounts, std::size_t itemCount, const int* nodes, const double* values,
                Width width, const AddToNode& addToNode)
{
    for (std::size_t item = 0; item < itemCount; ++item) {
        const std::size_t count = nodeCounts[item];
        if (count == USUAL_NODE_COUNT) {
            for (std::size_t i = 0; i < USUAL_NODE_COUNT; ++i) {
                addToNode(nodes[i], values);
            }
        } else {
            for (std::size_t i = 0; i < count; ++i) {
                addToNode(nodes[i], values);
            }
        }
        nodes += count;
        values += width;
    }
}

/// The cells of a part with their values.
template <typename Width>
class CellsToAverage
{
public:
    CellsToAverage(const std::vector<ItemBlock>& blocks, const std::vector<std::uint8_t>& nodeCounts,
                   const std::vector<int>& nodes, const std::vector<double>& values, Width width)
        : m_blocks(blocks), m_nodeCounts(nodeCounts), m_nodes(nodes), m_values(values), m_width(width)
    {}

    /// Adds the values of each cell to each of its nodes, in the order of the cells, and turns the sums into means.
    ///
    /// Each task owns a range of nodes and goes through the cells that touch it, so every sum has one writer and the
    /// order of its terms, and with it the rounding, does not depend on the number of threads. This pays where cells
    /// that follow each other share nodes, as in every mesh that was renumbered; else one thread goes through all.
    /// @param startsAtZero whether sums start at 0 and not at what they hold
    void average(bool startsAtZero, NodeSums<Width>* sums) const
    {
        const std::size_t nodeCount = sums->nodeCount();
        if (m_blocks.size() < LEAST_PARALLEL_BLOCKS || !dvf::hasSeveralThreads() || !areRangesLocal(nodeCount)) {
            averageRange(dvf::IndexRange(0, nodeCount), startsAtZero, sums);
            return;
        }
        dvf::isolated([&] {
            dvf::forLargeItems(NODE_RANGES, [&](const dvf::IndexRange& ranges) {
                for (std::size_t i = ranges.begin(); i != ranges.end(); ++i) {
                    averageRange(nodeRange(i, nodeCount), startsAtZero, sums);
                }
            });
        });
    }

private:
    static dvf::IndexRange nodeRange(std::size_t i, std::size_t nodeCount)
    {
        return {nodeCount * i / NODE_RANGES, nodeCount * (i + 1) / NODE_RANGES};
    }

    /// Whether most blocks touch only one range.
    bool areRangesLocal(std::size_t nodeCount) const
    {
        std::size_t visits = 0;
        for (std::size_t i = 0; i < NODE_RANGES; ++i) {
            const dvf::IndexRange range = nodeRange(i, nodeCount);
            visits += static_cast<std::size_t>(
                std::ranges::count_if(m_blocks, [&range](const ItemBlock& block) { return block.overlaps(range); }));
        }
        return visits < m_blocks.size() + m_blocks.size() / 4;
    }

    void averageRange(const dvf::IndexRange& range, bool startsAtZero, NodeSums<Width>* sums) const
    {
        if (startsAtZero) {
            sums->reset(range);
        }
        for (const ItemBlock& block : m_blocks) {
            if (block.isInside(range)) {
                visit(block, [sums](int node, const double* values) { sums->add(node, values); });
            } else if (block.overlaps(range)) {
                visit(block, [sums, &range](int node, const double* values) {
                    const auto index = static_cast<std::size_t>(node);
                    // guard: average-labels
                    if (index >= range.begin() && index < range.end()) {
                        sums->add(node, values);
                    }
                });
            }
        }
        sums->divide(range);
    }

    /// Visits the cells of a block that have values.
    template <typename AddToNode>
    void visit(const ItemBlock& block, const AddToNode& addToNode) const
    {
        // guard: average-values
        const std::size_t end = std::min(block.firstItem + block.itemCount, m_values.size() / m_width);
        visitNodes(m_nodeCounts.data() + block.firstItem, std::max(end, block.firstItem) - block.firstItem,
                   m_nodes.data() + block.firstNode, m_values.data() + block.firstItem * m_width, m_width, addToNode);
    }

    const std::vector<ItemBlock>& m_blocks;
    const std::vector<std::uint8_t>& m_nodeCounts;
    const std::vector<int>& m_nodes;
    const std::vector<double>& m_values;
    Width m_width;
};

/// Nodes of patches that have values of their own.
struct PatchNodes
{
    std::vector<bool> isIn; ///< for each node of the part
    std::vector<int> nodes;
};

/// Adds the face values of a patch to its nodes. The first patch at a node replaces the values of its cells.
template <typename Width>
void addPatch(const OFBoundary& patch, const std::vector<double>& faceValues, Width width, PatchNodes* patchNodes,
              NodeSums<Width>* sums)
{
    const std::vector<std::uint8_t>& nodeCounts = patch.nodeCountPerFace();
    std::size_t nodesLeft = patch.faceConnectivity().size();
    std::size_t faceCount = 0;
    // guard: patch-connectivity-end
    while (faceCount < std::min(nodeCounts.size(), faceValues.size() / width) && nodeCounts[faceCount] <= nodesLeft) {
        nodesLeft -= nodeCounts[faceCount++];
    }
    const auto addToNode = [&](int node, const double* values) {
        if (!sums->hasNode(node)) {
            return;
        }
        const auto index = static_cast<std::size_t>(node);
        if (!patchNodes->isIn[index]) {
            patchNodes->isIn[index] = true;
            patchNodes->nodes.push_back(node);
            sums->reset({index, index + 1});
        }
        sums->add(node, values);
    };
    visitNodes(nodeCounts.data(), faceCount, patch.faceConnectivity().data(), faceValues.data(), width, addToNode);
}

/// A patch is read in full or not at all, so its first entry decides.
bool hasOwnValues(const std::vector<double>& patchValues)
{
    return !patchValues.empty() && patchValues.front() != dvn::UNDEFINED_DOUBLE;
}

} // namespace

bool OFPart::computeAverageNodeResult(const std::vector<double>& cellValues, std::vector<double>& nodeValues,
                                      int components) const
{
    if (components <= 0) {
        return true;
    }
    withWidth(components, [&](auto width) {
        NodeSums sums(nodeValues, m_nodeCount, width);
        CellsToAverage(m_elementBlocks, m_nodesCountPerElt, m_connectivities, cellValues, width).average(false, &sums);
    });
    return true;
}

bool OFPart::computeAverageNodeResultAwareBC(const std::vector<double>& cellValues,
                                             const std::vector<std::vector<double>>& boundaryValues,
                                             std::vector<double>& nodeValues, int components) const
{
    if (components <= 0) {
        std::ranges::fill(nodeValues, 0.0);
        return true;
    }
    withWidth(components, [&](auto width) {
        NodeSums sums(nodeValues, m_nodeCount, width);
        // Beyond the nodes, if the array is longer.
        std::fill(nodeValues.begin() + static_cast<std::ptrdiff_t>(sums.nodeCount() * width), nodeValues.end(), 0.0);
        CellsToAverage(m_elementBlocks, m_nodesCountPerElt, m_connectivities, cellValues, width).average(true, &sums);
        // Cells come first and are replaced at the nodes of patches. The many cells then need no test per node, and
        // each sum still adds the same items in the same order as if the patches had come first.
        PatchNodes patchNodes;
        patchNodes.isIn.resize(sums.nodeCount());
        for (std::size_t b = 0; b < std::min(m_boundaries.size(), boundaryValues.size()); ++b) {
            if (hasOwnValues(boundaryValues[b])) {
                addPatch(m_boundaries[b], boundaryValues[b], width, &patchNodes, &sums);
            }
        }
        for (const int node : patchNodes.nodes) {
            const auto index = static_cast<std::size_t>(node);
            sums.divide({index, index + 1});
        }
    });
    return true;
}
