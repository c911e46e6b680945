// SPDX-License-Identifier: MIT
#include "DvnCore/Undefined.h"
#include "casemodel/OFPart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <utility>

namespace {

using Values = std::vector<double>;
using Patches = std::vector<Values>;

/// Two elements of four nodes that share the nodes 2 and 3, and two patches: a face at either end.
OFPart twoElements()
{
    OFPart part(1, "part", "folder");
    part.setNodeCount(6);
    part.setConnectivities({0, 1, 2, 3, 2, 3, 4, 5});
    part.setNodesCountPerElt({4, 4});
    part.boundaries().resize(2);
    part.boundaries()[0].faceConnectivity() = {0, 1};
    part.boundaries()[0].nodeCountPerFace() = {2};
    part.boundaries()[1].faceConnectivity() = {3, 4, 5};
    part.boundaries()[1].nodeCountPerFace() = {3};
    return part;
}

Values aware(const OFPart& part, const Values& cells, const Patches& patches)
{
    Values nodes(part.nodeCount(), 99.0);
    part.computeAverageNodeResultAwareBC(cells, patches, nodes, 1);
    return nodes;
}

TEST(NodeAveraging, AveragesTheCellsAroundEachNode)
{
    EXPECT_EQ(aware(twoElements(), {1, 3}, {}), (Values{1, 1, 2, 2, 3, 3}));
    Values vectors(18, 0.0);
    twoElements().computeAverageNodeResult({1, 10, 100, 3, 30, 300}, vectors, 3);
    EXPECT_EQ(vectors, (Values{1, 10, 100, 1, 10, 100, 2, 20, 200, 2, 20, 200, 3, 30, 300, 3, 30, 300}));
}

// Only the first entry decides whether a patch has values. A node on two patches takes all their faces and no cell.
TEST(NodeAveraging, PrefersPatchesWithValuesToCells)
{
    OFPart part = twoElements();
    part.boundaries()[0].faceConnectivity() = {0, 3, 0, 5};
    part.boundaries()[0].nodeCountPerFace() = {2, 2};
    EXPECT_EQ(aware(part, {1, 3}, {{dvn::UNDEFINED_DOUBLE, 4}, {7}}), (Values{1, 1, 2, 7, 7, 7}));
    EXPECT_EQ(aware(part, {1, 3}, {{4, 6}, {8}}), (Values{5, 1, 2, 6, 8, 7}));
}

// A node without any cell becomes NaN: infinity times the zero that it starts from.
TEST(NodeAveraging, StaysInsideItsArraysWhateverTheConnectivitySays)
{
    OFPart part = twoElements();
    part.setConnectivities({0, 1, 2, -1, 6, 1000000});
    part.boundaries()[1].nodeCountPerFace() = {4};
    const Values nodes = aware(part, {1, 3}, {{2, 2}, {5}, {5}});
    EXPECT_EQ(Values(nodes.begin(), nodes.begin() + 3), (Values{2, 2, 1}));
    EXPECT_TRUE(std::isnan(nodes[4]));
    for (const int label : {-1, 6, 1000000}) {
        part.setConnectivities({0, 1, 2, label, 2, 3, 4, 5});
        part.boundaries()[0].faceConnectivity() = {0, label};
        EXPECT_EQ(aware(part, {1, 3}, {{2}}), (Values{2, 1, 2, 3, 3, 3})) << label;
    }
}

/// A block of hexahedra with `side` cells along each edge; `labels` renumbers its nodes.
OFPart hexahedra(int side, const std::vector<int>& labels)
{
    const int nodesOfEdge = side + 1;
    std::vector<int> connectivity;
    for (int cell = 0; cell < side * side * side; ++cell) {
        const int corner = cell % side + nodesOfEdge * (cell / side % side + nodesOfEdge * (cell / side / side));
        for (int i = 0; i < 8; ++i) {
            const int node = corner + i % 2 + nodesOfEdge * (i / 2 % 2 + nodesOfEdge * (i / 4));
            connectivity.push_back(labels[static_cast<std::size_t>(node)]);
        }
    }
    OFPart part(1, "part", "folder");
    part.setNodeCount(labels.size());
    part.setNodesCountPerElt(std::vector<std::uint8_t>(connectivity.size() / 8, 8));
    part.setConnectivities(std::move(connectivity));
    return part;
}

/// The means of vectors by the plainest loop: the cells around a node in the order of the cells.
Values plainMeans(const std::vector<int>& connectivity, const Values& cells, std::size_t nodeCount)
{
    Values sums(3 * nodeCount, 0.0);
    std::vector<int> counts(nodeCount, 0);
    for (std::size_t i = 0; i < connectivity.size(); ++i) {
        const auto node = static_cast<std::size_t>(connectivity[i]);
        ++counts[node];
        for (std::size_t k = 0; k < 3; ++k) {
            sums[3 * node + k] += cells[3 * (i / 8) + k];
        }
    }
    for (std::size_t i = 0; i < sums.size(); ++i) {
        sums[i] *= 1.0 / counts[i / 3];
    }
    return sums;
}

// Ranges of nodes are summed by several threads. A node summed by two of them, or a changed order of terms, shows in
// the last bits; both when cells in a row share nodes and when they do not.
TEST(NodeAveraging, GivesTheSameBitsWithSeveralThreads)
{
    constexpr int SIDE = 32;
    std::vector<int> labels((SIDE + 1) * (SIDE + 1) * (SIDE + 1));
    std::iota(labels.begin(), labels.end(), 0);
    std::mt19937 random(3);
    Values cells(3 * SIDE * SIDE * SIDE);
    std::ranges::generate(cells, [&] { return static_cast<double>(random()) / 7.0; });
    for (const bool isShuffled : {false, true}) {
        if (isShuffled) {
            std::ranges::shuffle(labels, random);
        }
        const OFPart part = hexahedra(SIDE, labels);
        Values nodes(3 * labels.size(), 99.0);
        part.computeAverageNodeResultAwareBC(cells, {}, nodes, 3);
        EXPECT_EQ(nodes, plainMeans(part.connectivities(), cells, labels.size())) << "shuffled: " << isShuffled;
    }
}

} // namespace
