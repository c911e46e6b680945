// SPDX-License-Identifier: MIT
#include "DvnCore/Undefined.h"
#include "casemodel/OFPart.h"

#include <gtest/gtest.h>

#include <cmath>

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
    const Values nodes = aware(part, {1, 3}, {{2, 2}, {}, {5}});
    EXPECT_EQ(Values(nodes.begin(), nodes.begin() + 3), (Values{2, 2, 1}));
    EXPECT_TRUE(std::isnan(nodes[4]));
}

} // namespace
