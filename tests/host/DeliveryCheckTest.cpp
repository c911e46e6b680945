// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "ReferenceCells.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

/// The fault found when the reference cells are delivered with one thing changed.
std::string faultAfter(const std::function<void(HostNodeGroup&, HostElementGroup&)>& damage)
{
    const ReferenceCells cells;
    HostNodeGroup nodes(1);
    HostElementGroup elements(1);
    nodes.coordinates = cells.points;
    elements.types = cells.types;
    elements.connectivity = cells.connectivity;
    elements.ids = cells.ids;
    elements.polyhedra = {cells.nodesPerPolyhedron, cells.facesPerPolyhedron, cells.nodesPerFace,
                          cells.faceConnectivity};
    damage(nodes, elements);
    return findGroupFault(nodes, elements);
}

} // namespace

TEST(DeliveryCheck, TakesSoundAndEmptyGroups)
{
    EXPECT_EQ(faultAfter([](HostNodeGroup&, HostElementGroup&) {}), "");
    EXPECT_EQ(faultAfter([](HostNodeGroup& nodes, HostElementGroup& elements) {
                  nodes = HostNodeGroup(1);
                  elements = HostElementGroup(1);
              }),
              "");
}

TEST(DeliveryCheck, FindsEveryWayInWhichArraysDisagree)
{
    using Elements = HostElementGroup;
    EXPECT_EQ(faultAfter([](HostNodeGroup& nodes, Elements&) { nodes.ids = {1, 2}; }), "2 node ids for 31 nodes");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.connectivity[3] = -1; }), "connectivity out of range");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.connectivity[3] = 31; }), "connectivity out of range");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.connectivity.push_back(0); }),
              "32 connectivity entries where the elements take 31");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.types[0] = 9; }), "an element of unknown type");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.types[3] = DDP_POLY; }),
              "1 polyhedra for 2 general elements");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.polyhedra.facesPerPolyhedron = {5}; }),
              "the polyhedra have 5 faces, the face table 6");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.polyhedra.nodesPerFace[0] = 3; }),
              "the faces have 23 nodes, the face connectivity 24");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.polyhedra.faceConnectivity[0] = 99; }),
              "face connectivity out of range");
    EXPECT_EQ(faultAfter([](HostNodeGroup&, Elements& e) { e.partIds = {1}; }), "1 part ids for 5 elements");
}

// Readers of binary files grow their lists in steps and hand over the unused rest with uniform elements.
TEST(DeliveryCheck, TakesSlackBehindUniformElementsButNoShortage)
{
    const auto triangles = [](std::vector<std::int32_t> connectivity) {
        return faultAfter([&](HostNodeGroup&, HostElementGroup& elements) {
            elements = HostElementGroup(1);
            elements.setUniformElements(DDP_TRIANGLE, 2, connectivity.data(), connectivity.size(),
                                        std::vector<std::int32_t>{1, 2}.data());
        });
    };
    EXPECT_EQ(triangles({0, 1, 2, 2, 1, 3, 0, 0}), "");
    EXPECT_EQ(triangles({0, 1, 2, 2, 1}), "5 connectivity entries where the elements take 6");
}
