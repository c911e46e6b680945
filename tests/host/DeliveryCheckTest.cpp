// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "support/HostArrays.h"
#include "support/ReferenceCells.h"

#include <gtest/gtest.h>

#include <functional>

// Each case changes one thing in a sound delivery.
TEST(DeliveryCheck, FindsEveryDisagreementBetweenArrays)
{
    using Groups = HostGroups;
    const std::pair<const char*, std::function<void(Groups&)>> damages[] = {
        {"", [](Groups&) {}},
        {"", [](Groups& g) { g = Groups(); }},
        {"2 node ids for 31 nodes",
         [](Groups& g) {
             g.nodes.ids = {1, 2};
         }},
        {"connectivity out of range", [](Groups& g) { g.elements.connectivity[3] = -1; }},
        {"connectivity out of range", [](Groups& g) { g.elements.connectivity[3] = 31; }},
        {"32 connectivity entries where the elements need 31", [](Groups& g) { g.elements.connectivity.push_back(0); }},
        {"an element of unknown type", [](Groups& g) { g.elements.types[0] = 9; }},
        {"1 polyhedra for 2 general elements", [](Groups& g) { g.elements.types[3] = DDP_POLY; }},
        {"the polyhedra have 5 faces, the face table 6",
         [](Groups& g) { g.elements.polyhedra.facesPerPolyhedron = {5}; }},
        {"the faces have 23 nodes, the face connectivity 24",
         [](Groups& g) { g.elements.polyhedra.nodesPerFace[0] = 3; }},
        {"face connectivity out of range", [](Groups& g) { g.elements.polyhedra.faceConnectivity[0] = 99; }},
        {"1 part ids for 5 elements", [](Groups& g) { g.elements.partIds = {1}; }},
    };
    for (const auto& [fault, damage] : damages) {
        Groups groups;
        DeliveredCells().deliverTo(&groups.nodes, &groups.elements);
        damage(groups);
        EXPECT_EQ(findGroupFault(groups.nodes, groups.elements), fault);
    }
}

// Readers of binary files grow their lists in steps and deliver the unused rest with uniform elements.
TEST(DeliveryCheck, AcceptsSlackAfterUniformElementsButNoShortage)
{
    HostGroups groups;
    groups.nodes.coordinates.resize(12);
    const std::vector<std::int32_t> nodes = {0, 1, 2, 2, 1, 3, 0, 0};
    for (const auto& [length, fault] : {std::pair(8U, ""), {5U, "5 connectivity entries where the elements need 6"}}) {
        groups.elements.setUniformElements(DDP_TRIANGLE, 2, nodes.data(), length, nodes.data());
        EXPECT_EQ(findGroupFault(groups.nodes, groups.elements), fault);
    }
}
