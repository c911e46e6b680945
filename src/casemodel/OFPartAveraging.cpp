// SPDX-License-Identifier: MIT
#include "casemodel/OFPart.h"

#include "DvnCore/Undefined.h"

#include <algorithm>
#include <type_traits>

namespace {

/// Node count of a hexahedron. Most cells are hexahedra, so they get a loop of fixed length.
constexpr std::size_t USUAL_NODE_COUNT = 8;

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

    /// Clears the sum of an existing node.
    void reset(int node)
    {
        const auto index = static_cast<std::size_t>(node);
        std::fill_n(m_values + index * m_width, std::size_t(m_width), 0.0);
        m_itemCounts[index] = 0;
    }

    /// Turns sums into means. The factor is computed once per node and multiplied; other orders of rounding would
    /// change the result. A node without items gets an infinite factor, which leaves infinities and NaN.
    void divide()
    {
        for (std::size_t node = 0; node < m_itemCounts.size(); ++node) {
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

/// Calls `addToNode(node, item values)` for each node of each item in order. Items are elements or faces of a patch.
/// Stops where one of the arrays ends.
template <typename Width, typename AddToNode>
void visitItemNodes(const std::vector<std::uint8_t>& nodeCounts, const std::vector<int>& nodes,
                    const std::vector<double>& itemValues, Width width, const AddToNode& addToNode)
{
    // guard: averaged-items
    const std::size_t itemCount = std::min(nodeCounts.size(), itemValues.size() / width);
    const int* node = nodes.data();
    std::size_t nodesLeft = nodes.size();
    for (std::size_t item = 0; item < itemCount && nodeCounts[item] <= nodesLeft; ++item) {
        const double* const values = itemValues.data() + item * width;
        const std::size_t count = nodeCounts[item];
        if (count == USUAL_NODE_COUNT) {
            for (std::size_t i = 0; i < USUAL_NODE_COUNT; ++i) {
                addToNode(node[i], values);
            }
        } else {
            for (std::size_t i = 0; i < count; ++i) {
                addToNode(node[i], values);
            }
        }
        node += count;
        nodesLeft -= count;
    }
}

/// Adds the values of each item to each of its nodes.
template <typename Width>
void addAll(const std::vector<std::uint8_t>& nodeCounts, const std::vector<int>& nodes,
            const std::vector<double>& itemValues, Width width, NodeSums<Width>* sums)
{
    visitItemNodes(nodeCounts, nodes, itemValues, width, [&](int node, const double* values) {
        if (sums->hasNode(node)) {
            sums->add(node, values);
        }
    });
}

/// Adds the face values of a patch to its nodes. The first patch at a node replaces the values of its cells.
template <typename Width>
void addPatch(const OFBoundary& patch, const std::vector<double>& faceValues, Width width,
              std::vector<bool>* liesOnPatch, NodeSums<Width>* sums)
{
    visitItemNodes(patch.nodeCountPerFace(), patch.faceConnectivity(), faceValues, width,
                   [&](int node, const double* values) {
                       if (!sums->hasNode(node)) {
                           return;
                       }
                       if (!(*liesOnPatch)[static_cast<std::size_t>(node)]) {
                           (*liesOnPatch)[static_cast<std::size_t>(node)] = true;
                           sums->reset(node);
                       }
                       sums->add(node, values);
                   });
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
        addAll(m_nodesCountPerElt, m_connectivities, cellValues, width, &sums);
        sums.divide();
    });
    return true;
}

bool OFPart::computeAverageNodeResultAwareBC(const std::vector<double>& cellValues,
                                             const std::vector<std::vector<double>>& boundaryValues,
                                             std::vector<double>& nodeValues, int components) const
{
    std::ranges::fill(nodeValues, 0.0);
    if (components <= 0) {
        return true;
    }
    withWidth(components, [&](auto width) {
        NodeSums sums(nodeValues, m_nodeCount, width);
        addAll(m_nodesCountPerElt, m_connectivities, cellValues, width, &sums);
        // Cells come first and are replaced at the nodes of patches. This saves the many cells a test per node, and
        // each sum still adds the same items in the same order as if the patches had come first.
        std::vector<bool> liesOnPatch(sums.nodeCount());
        for (std::size_t b = 0; b < std::min(m_boundaries.size(), boundaryValues.size()); ++b) {
            if (hasOwnValues(boundaryValues[b])) {
                addPatch(m_boundaries[b], boundaryValues[b], width, &liesOnPatch, &sums);
            }
        }
        sums.divide();
    });
    return true;
}
