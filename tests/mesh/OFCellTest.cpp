// SPDX-License-Identifier: MIT
#include "mesh/OFCell.h"
#include "support/ReferenceCells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <set>

namespace {

using FaceSizes = std::vector<std::uint8_t>;

struct BuiltCell
{
    bool isOrdered = false;
    DDPElementType type = {};
    std::vector<int> nodes;
    PolyDataVector polys;
};

BuiltCell build(CellInMesh* input)
{
    BuiltCell built;
    built.isOrdered = input->cell.buildElementData(0, &built.type, &built.polys, &input->faces);
    built.nodes = input->cell.elementNodes();
    return built;
}

/// The reference cell with its faces in the given order; bit i of `owned` tells on which side of face i the cell lies.
CellInMesh arranged(const ReferenceCell& reference, const std::vector<std::size_t>& order, unsigned owned, int turn)
{
    CellInMesh input;
    for (const std::size_t i : order) {
        std::vector<int> nodes = reference.faces[i];
        std::rotate(nodes.begin(), nodes.begin() + turn % static_cast<int>(nodes.size()), nodes.end());
        const bool isOwner = (owned >> i & 1U) != 0;
        if (!isOwner) {
            std::reverse(nodes.begin(), nodes.end());
        }
        input.addFace(nodes, isOwner);
    }
    return input;
}

using Adjacency = std::map<int, std::vector<int>>;

Adjacency adjacencyOf(const CellInMesh& input)
{
    Adjacency adjacency;
    for (std::size_t face = 0; face < input.faces.faceCount(); ++face) {
        const std::size_t count = input.faces.nodeCounts[face];
        for (std::size_t i = 0; i < count; ++i) {
            const int a = input.faces.faceNodes(face)[i];
            const int b = input.faces.faceNodes(face)[(i + 1) % count];
            adjacency[a].push_back(b);
            adjacency[b].push_back(a);
        }
    }
    return adjacency;
}

/// A hexahedron ordered by way of full adjacency lists, on sorted nodes: slow, and with nothing left out.
bool orderByAdjacency(const CellInMesh& input, std::vector<int>* nodes)
{
    const int* const base = input.faces.faceNodes(0);
    std::copy_n(base, 4, nodes->begin());
    if (input.cell.cellFaces()[0].isOwner) {
        std::reverse(nodes->begin(), nodes->begin() + 4);
    }
    for (std::size_t face = 1; face < 6; ++face) {
        const int* const candidate = input.faces.faceNodes(face);
        if (std::find_first_of(candidate, candidate + 4, base, base + 4) != candidate + 4) {
            continue;
        }
        Adjacency adjacency = adjacencyOf(input);
        std::size_t write = 4;
        for (std::size_t k = 0; k < 4; ++k) {
            const std::vector<int>& list = adjacency[(*nodes)[k]];
            const auto above = std::find_first_of(list.begin(), list.end(), candidate, candidate + 4);
            if (above != list.end()) {
                (*nodes)[write++] = *above;
            }
        }
        return write == 8;
    }
    return false;
}

} // namespace

// The order in which faces reach a cell is not fixed, nor is the side that it lies on; a wrong node tears the element.
TEST(CellOrdering, EverySolidKeepsItsVolumeForAllFaceOrdersAndSides)
{
    for (const ReferenceCell& reference : referenceCells()) {
        SCOPED_TRACE(reference.type);
        const double volume = volumeInside(reference.points, reference.faces);
        ASSERT_GT(volume, 0.3);
        std::vector<std::size_t> order(reference.faces.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        int turn = 0;
        std::size_t wrong = 0;
        do {
            for (unsigned owned = 0; owned < 1U << order.size(); ++owned) {
                CellInMesh input = arranged(reference, order, owned, ++turn);
                const BuiltCell built = build(&input);
                const bool isRight = built.isOrdered && built.type == reference.type &&
                                     built.nodes.size() == reference.points.size() &&
                                     std::abs(signedVolume(built.type, reference.points, built.nodes) - volume) < 1e-12;
                wrong += isRight ? 0 : 1;
            }
        } while (std::next_permutation(order.begin(), order.end()));
        EXPECT_EQ(wrong, 0U);
    }
}

TEST(CellOrdering, TheFirstSuitableFaceIsTheBase)
{
    CellInMesh owned;
    owned.addFace({1, 2, 3}, true);
    owned.addFace({1, 4, 2}, true);
    owned.addFace({2, 4, 3}, true);
    owned.addFace({3, 4, 1}, true);
    EXPECT_EQ(build(&owned).nodes, (std::vector<int>{4, 1, 2, 3}));
    CellInMesh neighbour;
    neighbour.addFace({1, 2, 3}, false);
    neighbour.addFace({1, 2, 4}, false);
    neighbour.addFace({2, 3, 4}, false);
    neighbour.addFace({3, 1, 4}, false);
    EXPECT_EQ(build(&neighbour).nodes, (std::vector<int>{4, 3, 2, 1}));
    CellInMesh cube;
    for (const std::vector<int>& face :
         {std::vector{0, 1, 2, 3}, {4, 7, 6, 5}, {0, 4, 5, 1}, {1, 5, 6, 2}, {2, 6, 7, 3}, {3, 7, 4, 0}}) {
        cube.addFace(face, true);
    }
    EXPECT_EQ(build(&cube).nodes, (std::vector<int>{3, 2, 1, 0, 7, 6, 5, 4}));
}

TEST(CellOrdering, FacesThatDoNotFormTheirSolidFailAndLeaveTheRestSorted)
{
    CellInMesh noTop;
    for (const std::vector<int>& face :
         {std::vector{0, 1, 2, 3}, {0, 4, 5, 6}, {1, 5, 6, 7}, {2, 4, 6, 7}, {3, 4, 5, 7}, {0, 1, 4, 7}}) {
        noTop.addFace(face, true);
    }
    BuiltCell built = build(&noTop);
    EXPECT_FALSE(built.isOrdered);
    EXPECT_EQ(built.type, DDP_HEXAHEDRON);
    EXPECT_EQ(built.nodes, (std::vector<int>{3, 2, 1, 0, 4, 5, 6, 7}));

    // No edge leads from node 3 to the top, so its column is missing and the later ones move up.
    CellInMesh noColumn;
    for (const std::vector<int>& face :
         {std::vector{0, 1, 2, 3}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {0, 4, 7, 6}, {3, 0, 1, 2}}) {
        noColumn.addFace(face, true);
    }
    built = build(&noColumn);
    EXPECT_FALSE(built.isOrdered);
    EXPECT_EQ(built.nodes, (std::vector<int>{3, 2, 1, 0, 6, 5, 4, 7}));

    CellInMesh flat;
    for (const std::vector<int>& face : {std::vector{1, 2, 3}, {1, 2, 3}, {2, 3, 4}, {3, 4, 1}}) {
        flat.addFace(face, false);
    }
    built = build(&flat);
    EXPECT_FALSE(built.isOrdered);
    EXPECT_EQ(built.nodes, (std::vector<int>{1, 3, 2, 1}));
}

// Neither the count of nodes nor the adjacency is worked out in full for a hexahedron; on cells that are none, or are
// torn, this must not show.
TEST(CellOrdering, DegenerateHexahedraComeOutAsByFullAdjacencyLists)
{
    std::mt19937 random(7);
    std::map<std::pair<int, bool>, int> seen;
    for (int round = 0; round < 20000; ++round) {
        CellInMesh input;
        std::set<int> distinct;
        for (std::vector<int> nodes : referenceCells().back().faces) {
            std::rotate(nodes.begin(), nodes.begin() + static_cast<int>(random() % 4), nodes.end());
            for (int& node : nodes) {
                node = random() % 12 == 0 ? static_cast<int>(random() % 9) : node;
            }
            input.addFace(nodes, random() % 2 == 0);
            distinct.insert(nodes.begin(), nodes.end());
        }
        const bool isHexahedron = distinct.size() == 8;
        std::vector<int> expected(distinct.begin(), distinct.end());
        const bool isOrdered = !isHexahedron || orderByAdjacency(input, &expected);
        const BuiltCell built = build(&input);
        ASSERT_EQ(built.type, isHexahedron ? DDP_HEXAHEDRON : DDP_POLY) << "round " << round;
        ASSERT_EQ(built.isOrdered, isOrdered) << "round " << round;
        ASSERT_EQ(built.nodes, expected) << "round " << round;
        ++seen[{built.type, isOrdered}];
    }
    EXPECT_GT(seen[std::pair(DDP_HEXAHEDRON, true)], 1000);
    EXPECT_GT(seen[std::pair(DDP_HEXAHEDRON, false)], 1000);
    EXPECT_GT(seen[std::pair(DDP_POLY, true)], 1000);
}

// Each ordering can be asked for any cell, so none may rely on faces that only its own shape has.
TEST(CellOrdering, RefusesCellsAndNodesThatAreTooSmall)
{
    const std::vector<std::vector<std::vector<int>>> cells = {
        {}, {{1, 2, 3}}, {{1, 2, 3}, {4}}, {{1, 2, 3, 4}, {1, 2}}, {{1, 2, 3, 4}, {5, 6, 7, 8}}};
    for (const DDPElementType type : {DDP_TETRAHEDRON, DDP_PYRAMID, DDP_PENTAHEDRON, DDP_HEXAHEDRON, DDP_POLY}) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            CellInMesh input;
            for (const std::vector<int>& face : cells[i]) {
                input.addFace(face, true);
            }
            input.faces.nodes.shrink_to_fit(); // so that a label too many is seen
            std::vector<int> nodes(8);
            const bool hasApex = (type == DDP_PYRAMID || type == DDP_TETRAHEDRON) && i == 4;
            EXPECT_EQ(OFCell::orderElementNodes(type, &input.cell.cellFaces(), &input.faces, &nodes), hasApex);
        }
    }
    CellInMesh cube = arranged(referenceCells().back(), {0, 1, 2, 3, 4, 5}, 63, 0);
    std::vector<int> tooFew(7);
    EXPECT_FALSE(OFCell::orderHexahedronNodes(&cube.cell.cellFaces(), &cube.faces, &tooFew));
}

TEST(CellTyping, GoesByDistinctNodesAndFaceSizesInAnyOrder)
{
    const FaceSizes wedge = {3, 4, 4, 4, 3};
    const FaceSizes fiveQuads = {4, 4, 4, 4, 4};
    const FaceSizes oddHexahedron = {4, 4, 4, 5, 4, 4};
    const FaceSizes pyramid = {3, 3, 4, 3, 3};
    const FaceSizes tetrahedron = {3, 3, 3, 3};
    const FaceSizes hexahedron = {4, 4, 4, 4, 4, 4};
    EXPECT_EQ(OFCell::typeFromFaces(6, &wedge), DDP_PENTAHEDRON);
    EXPECT_EQ(OFCell::typeFromFaces(5, &pyramid), DDP_PYRAMID);
    EXPECT_EQ(OFCell::typeFromFaces(4, &tetrahedron), DDP_TETRAHEDRON);
    EXPECT_EQ(OFCell::typeFromFaces(8, &hexahedron), DDP_HEXAHEDRON);
    EXPECT_EQ(OFCell::typeFromFaces(8, &oddHexahedron), DDP_POLY);
    EXPECT_EQ(OFCell::typeFromFaces(4, &pyramid), DDP_POLY);
    EXPECT_EQ(OFCell::typeFromFaces(7, &hexahedron), DDP_POLY);
    EXPECT_EQ(OFCell::typeFromFaces(6, &fiveQuads), DDP_POLY);
    EXPECT_EQ(OFCell::typeFromFaces(0, &fiveQuads), DDP_POLY);
    EXPECT_TRUE(OFCell::isPentahedron(6, &wedge));
    EXPECT_FALSE(OFCell::isPentahedron(5, &wedge));
    EXPECT_FALSE(OFCell::isHexahedron(8, &oddHexahedron));
}

TEST(CellTables, NeighbourFacesOfAPolyhedronAreReversed)
{
    CellInMesh input;
    input.addFace({7, 3, 9, 12, 5}, true);
    input.addFace({3, 7, 8}, false);
    const BuiltCell built = build(&input);
    EXPECT_TRUE(built.isOrdered);
    EXPECT_EQ(built.type, DDP_POLY);
    EXPECT_EQ(built.nodes, (std::vector<int>{3, 5, 7, 8, 9, 12}));
    ASSERT_EQ(built.polys.size(), 1U);
    EXPECT_EQ(built.polys[0].faceCount, 2);
    EXPECT_EQ(built.polys[0].nodeCount, 8U);
    EXPECT_EQ(built.polys[0].nodeCountPerFace, (FaceSizes{5, 3}));
    EXPECT_EQ(built.polys[0].faceNodes, (std::vector<int>{7, 3, 9, 12, 5, 8, 7, 3}));
}

// Above some size the distinct nodes are sorted another way, and labels that hash alike must not be lost.
TEST(CellTables, DistinctNodesOfLargeCellsAreComplete)
{
    for (const int faces : {20, 22, 100, 2000}) {
        CellInMesh input;
        std::set<int> expected;
        for (int i = 0; i < faces; ++i) {
            const std::vector<int> nodes = {i * 65536, i * 65536 + 1, (faces - i) * 4096};
            input.addFace(nodes, i % 2 == 0);
            expected.insert(nodes.begin(), nodes.end());
        }
        EXPECT_EQ(build(&input).nodes, std::vector<int>(expected.begin(), expected.end())) << faces << " faces";
    }
}
