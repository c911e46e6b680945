// SPDX-License-Identifier: MIT
#include "DvnCore/Undefined.h"
#include "casemodel/OFPart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace {

using Values = std::vector<double>;

/// Two elements in a row of four nodes each that share the nodes 2 and 3, and two patches: one face at each end.
OFPart twoElements()
{
    OFPart part(1, "part", "folder");
    part.setNodeCount(6);
    part.setElementCount(2);
    part.setConnectivities({0, 1, 2, 3, 2, 3, 4, 5});
    part.setNodesCountPerElt({4, 4});
    for (const std::vector<int>& nodes : {std::vector<int>{0, 1}, std::vector<int>{3, 4, 5}}) {
        OFBoundary patch;
        patch.setFaceCount(1);
        patch.faceConnectivity() = nodes;
        patch.nodeCountPerFace() = {static_cast<std::uint8_t>(nodes.size())};
        part.boundaries().push_back(patch);
    }
    return part;
}

/// One element for each entry of `nodeCounts`, all of them made of node 0 over and over.
OFPart elementsAroundOneNode(const std::vector<std::uint8_t>& nodeCounts)
{
    OFPart part(1, "part", "folder");
    part.setNodeCount(1);
    part.setElementCount(nodeCounts.size());
    part.setConnectivities(std::vector<int>(std::accumulate(nodeCounts.begin(), nodeCounts.end(), std::size_t{0}), 0));
    part.setNodesCountPerElt(std::vector<std::uint8_t>(nodeCounts));
    return part;
}

TEST(NodeAveraging, SharesNodesBetweenTheCellsAroundThem)
{
    const OFPart part = twoElements();
    Values nodes(6, 99.0);
    part.computeAverageNodeResultAwareBC({1.0, 3.0}, {}, nodes, 1);
    EXPECT_EQ(nodes, (Values{1, 1, 2, 2, 3, 3}));

    Values vectors(18, 0.0);
    part.computeAverageNodeResult({1, 10, 100, 3, 30, 300}, vectors, 3);
    EXPECT_EQ(vectors, (Values{1, 10, 100, 1, 10, 100, 2, 20, 200, 2, 20, 200, 3, 30, 300, 3, 30, 300}));
}

TEST(NodeAveraging, LetsPatchesWithValuesOfTheirOwnStandInPlaceOfCells)
{
    const OFPart part = twoElements();
    Values nodes(6, 0.0);
    part.computeAverageNodeResultAwareBC({1.0, 3.0}, {{dvn::UNDEFINED_DOUBLE}, {7.0}}, nodes, 1);
    EXPECT_EQ(nodes, (Values{1, 1, 2, 7, 7, 7}));
}

// Only the first entry of a patch decides, and a node on two patches takes all their faces and no cell.
TEST(NodeAveraging, JudgesAPatchByItsFirstEntryAlone)
{
    OFPart part = twoElements();
    part.boundaries()[0].faceConnectivity() = {0, 3, 0, 5};
    part.boundaries()[0].nodeCountPerFace() = {2, 2};
    Values nodes(6, 0.0);
    part.computeAverageNodeResultAwareBC({1.0, 3.0}, {{dvn::UNDEFINED_DOUBLE, 4.0}, {7.0}}, nodes, 1);
    EXPECT_EQ(nodes, (Values{1, 1, 2, 7, 7, 7}));
    part.computeAverageNodeResultAwareBC({1.0, 3.0}, {{4.0, 6.0}, {8.0}}, nodes, 1);
    EXPECT_EQ(nodes, (Values{5, 1, 2, 6, 8, 7}));
}

// The road without patches hands in undefined values and keeps what comes of adding to them.
TEST(NodeAveraging, AddsToWhatThePlainAverageIsGiven)
{
    const OFPart part = twoElements();
    Values nodes(6, dvn::UNDEFINED_DOUBLE);
    part.computeAverageNodeResult({1.0, 3.0}, nodes, 1);
    EXPECT_EQ(nodes[0], dvn::UNDEFINED_DOUBLE);
    EXPECT_EQ(nodes[2], dvn::UNDEFINED_DOUBLE * 0.5);
}

TEST(NodeAveraging, CountsItemsInOneByteAndMultipliesByTheFactor)
{
    Values node(1, 0.0);
    elementsAroundOneNode({3}).computeAverageNodeResultAwareBC({0.7}, {}, node, 1);
    EXPECT_EQ(node[0], (0.7 + 0.7 + 0.7) * (1.0 / 3.0));
    elementsAroundOneNode({255, 1}).computeAverageNodeResultAwareBC({1.0, 1.0}, {}, node, 1);
    EXPECT_TRUE(std::isinf(node[0]));
    elementsAroundOneNode({255, 2}).computeAverageNodeResultAwareBC({1.0, 1.0}, {}, node, 1);
    EXPECT_EQ(node[0], 257.0);
}

// A node that no element touches shows it: infinity times the zero it starts from.
TEST(NodeAveraging, StaysInsideItsArraysWhateverTheConnectivitySays)
{
    OFPart part = twoElements();
    part.setConnectivities({0, 1, 2, -1, 6, 1000000});
    Values nodes(6, 0.0);
    part.computeAverageNodeResultAwareBC({1.0, 3.0}, {{2.0, 2.0}, {}}, nodes, 1);
    EXPECT_EQ(nodes[0], 2.0);
    EXPECT_EQ(nodes[2], 1.0);
    EXPECT_TRUE(std::isnan(nodes[4]));
    part.computeAverageNodeResultAwareBC({}, {}, nodes, -1);
    EXPECT_EQ(nodes, Values(6, 0.0));
}

} // namespace
