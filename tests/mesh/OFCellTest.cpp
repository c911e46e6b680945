// SPDX-License-Identifier: MIT
#include "mesh/OFCell.h"
#include "support/FoamText.h"
#include "support/ReferenceCells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>

namespace {

using Nodes = std::vector<int>;
using foamtext::Faces;

/// A cell and the faces of its mesh.
struct CellInMesh
{
    /// Bit i of `owned` is set if the cell owns face i.
    CellInMesh(const Faces& fileFaces, unsigned owned) : faces(foamtext::packed(fileFaces))
    {
        for (std::size_t i = 0; i < fileFaces.size(); ++i) {
            cell.cellFaces().push_back({static_cast<int>(i), (owned >> i % 32 & 1U) != 0});
        }
    }
    bool build() { return cell.buildElementData(0, &type, &polys, &faces); }
    const Nodes& nodes() const { return cell.elementNodes(); }

    OFCell cell;
    FacesData faces;
    DDPElementType type = {};
    PolyDataVector polys;
};

constexpr unsigned ALL_OWNED = ~0U;

/// The faces of a reference cell as in a file: in the given order, each starting at some node.
Faces arranged(const ReferenceCell& reference, const std::vector<std::size_t>& order, unsigned owned, int turn)
{
    Faces faces;
    for (const std::size_t i : order) {
        Nodes& nodes = faces.emplace_back(reference.faces[i]);
        std::rotate(nodes.begin(), nodes.begin() + turn % static_cast<int>(nodes.size()), nodes.end());
        if ((owned >> (faces.size() - 1) & 1U) == 0) {
            std::reverse(nodes.begin(), nodes.end());
        }
    }
    return faces;
}

} // namespace

// The order in which faces reach a cell is not fixed, nor is its side of them. A wrong node order tears the element.
TEST(CellOrdering, EverySolidKeepsItsVolumeForAllFaceOrdersAndSides)
{
    for (const ReferenceCell& reference : referenceCells()) {
        SCOPED_TRACE(reference.type);
        ASSERT_GT(reference.volume(), 0.3);
        std::vector<std::size_t> order(reference.faces.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        int turn = 0;
        std::size_t wrong = 0;
        do {
            for (unsigned owned = 0; owned < 1U << order.size(); ++owned) {
                CellInMesh built(arranged(reference, order, owned, ++turn), owned);
                const bool isRight =
                    built.build() && built.type == reference.type && built.nodes().size() == reference.points.size() &&
                    std::abs(signedVolume(built.type, reference.points, built.nodes()) - reference.volume()) < 1e-12;
                wrong += isRight ? 0 : 1;
            }
        } while (std::next_permutation(order.begin(), order.end()));
        EXPECT_EQ(wrong, 0U);
    }
}

// Worked by hand. Faces that do not form their solid are refused; the nodes without a place come last, sorted.
TEST(CellOrdering, FirstSuitableFaceIsTheBase)
{
    struct Case
    {
        Faces faces;
        unsigned owned;
        Nodes nodes;
        bool isSolid;
    };
    for (const Case& c : {
             Case{{{1, 2, 3}, {1, 4, 2}, {2, 4, 3}, {3, 4, 1}}, ALL_OWNED, {4, 1, 2, 3}, true},
             Case{{{1, 2, 3}, {1, 2, 4}, {2, 3, 4}, {3, 1, 4}}, 0, {4, 3, 2, 1}, true},
             // No face lies opposite the first.
             Case{{{0, 1, 2, 3}, {0, 4, 5, 6}, {1, 5, 6, 7}, {2, 4, 6, 7}, {3, 4, 5, 7}, {0, 1, 4, 7}},
                  ALL_OWNED,
                  {3, 2, 1, 0, 4, 5, 6, 7},
                  false},
             // No edge leads from node 3 to the top, so its column is missing and the later ones move up.
             Case{{{0, 1, 2, 3}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {0, 4, 7, 6}, {3, 0, 1, 2}},
                  ALL_OWNED,
                  {3, 2, 1, 0, 6, 5, 4, 7},
                  false},
             Case{{{1, 2, 3}, {1, 2, 3}, {2, 3, 4}, {3, 4, 1}}, 0, {1, 3, 2, 1}, false},
         }) {
        CellInMesh built(c.faces, c.owned);
        EXPECT_EQ(built.build(), c.isSolid);
        EXPECT_EQ(built.nodes(), c.nodes);
    }
}

// Nodes of hexahedra are not counted one by one, which must not show in cells that only resemble one.
TEST(CellOrdering, DegenerateHexahedraAreTypedByTheirDistinctNodes)
{
    std::mt19937 random(7);
    int hexahedra = 0;
    for (int round = 0; round < 20000; ++round) {
        Faces faces = referenceCells().back().faces;
        std::set<int> distinct;
        for (Nodes& nodes : faces) {
            for (int& node : nodes) {
                node = random() % 12 == 0 ? static_cast<int>(random() % 9) : node;
            }
            distinct.insert(nodes.begin(), nodes.end());
        }
        CellInMesh built(faces, static_cast<unsigned>(random()));
        built.build();
        ASSERT_EQ(built.type, distinct.size() == 8 ? DDP_HEXAHEDRON : DDP_POLY) << "round " << round;
        hexahedra += built.type == DDP_HEXAHEDRON ? 1 : 0;
        if (built.type == DDP_POLY) {
            ASSERT_EQ(built.nodes(), Nodes(distinct.begin(), distinct.end())) << "round " << round;
        }
    }
    EXPECT_TRUE(hexahedra > 1000 && hexahedra < 19000);
}

// Any ordering can be requested for any cell, so none may rely on faces that only its own shape has.
TEST(CellOrdering, RefusesCellsAndNodesThatAreTooSmall)
{
    const std::vector<Faces> cells = {
        {}, {{1, 2, 3}}, {{1, 2, 3}, {4}}, {{1, 2, 3, 4}, {1, 2}}, {{1, 2, 3, 4}, {5, 6, 7, 8}}};
    for (const DDPElementType type : {DDP_TETRAHEDRON, DDP_PYRAMID, DDP_PENTAHEDRON, DDP_HEXAHEDRON, DDP_POLY}) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            CellInMesh input(cells[i], ALL_OWNED);
            input.faces.nodes.shrink_to_fit(); // so that the sanitizers see an overrun
            Nodes nodes(8);
            const bool hasApex = (type == DDP_PYRAMID || type == DDP_TETRAHEDRON) && i == 4;
            EXPECT_EQ(OFCell::orderElementNodes(type, &input.cell.cellFaces(), &input.faces, &nodes), hasApex);
        }
    }
    CellInMesh cube(referenceCells().back().faces, ALL_OWNED);
    Nodes tooFew(7);
    EXPECT_FALSE(OFCell::orderHexahedronNodes(&cube.cell.cellFaces(), &cube.faces, &tooFew));
}

// Nodes of large cells are sorted another way, and labels with equal hashes must not be lost.
TEST(CellTables, DistinctNodesOfLargeCellsAreComplete)
{
    for (const int count : {20, 22, 100, 2000}) {
        Faces faces;
        std::set<int> expected;
        for (int i = 0; i < count; ++i) {
            faces.push_back({i * 65536, i * 65536 + 1, (count - i) * 4096});
            expected.insert(faces.back().begin(), faces.back().end());
        }
        CellInMesh built(faces, ALL_OWNED);
        built.build();
        EXPECT_EQ(built.nodes(), Nodes(expected.begin(), expected.end())) << count << " faces";
    }
}
