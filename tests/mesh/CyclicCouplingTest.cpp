// SPDX-License-Identifier: MIT
#include "mesh/CyclicCoupling.h"

#include "bench/SyntheticMesh.h"
#include "mesh/OFPolymeshToDDP.h"
#include "support/HostArrays.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

using Vector = rotation::Vector;
using Patches = std::vector<OFBoundary>;

// Outer faces of two cubes in a row: of cell 0 the one at x = 0, of cell 1 those at x = 2 and y = 1.
constexpr int LEFT = 1;
constexpr int RIGHT = 6;
constexpr int BACK = 8;

OFPolymesh twoCubes()
{
    return hexahedronMesh(2, 1, 1);
}

OFBoundary cyclic(const char* name, const char* neighbour, int face)
{
    OFBoundary patch;
    patch.setPatchName(name);
    patch.setType("cyclic");
    patch.setNeighbourPatch(neighbour);
    patch.setStartFaceIndex(face);
    patch.setFaceCount(1);
    return patch;
}

Patches pair(int face, int faceBeyond)
{
    return {cyclic("a", "b", face), cyclic("b", "a", faceBeyond)};
}

/// The patches as they are when the mesh has been delivered.
Patches coupled(OFPolymesh mesh, Patches patches)
{
    const OFPolymeshToDDP converter(&mesh);
    for (OFBoundary& patch : patches) {
        HostGroups got;
        converter.populateBoundaryGroup(patch, &got.nodes, &got.nodeCount, &got.elements, &got.elementCount);
        patch.computeFaceNormals(mesh.points());
    }
    coupleCyclicPatches(mesh, &patches);
    return patches;
}

/// A vector from beyond the first patch as seen from its own side.
Vector fromBeyond(const Patches& patches, Vector vector)
{
    const CyclicCoupling& coupling = patches.front().cyclicCoupling();
    EXPECT_EQ(coupling.rotations.size(), 1U);
    for (const rotation::Matrix& matrix : coupling.rotations) {
        rotation::transform(matrix, 3, vector.data());
    }
    return vector;
}

void expectNear(const Vector& actual, const Vector& expected)
{
    for (std::size_t k = 0; k < expected.size(); ++k) {
        EXPECT_NEAR(actual[k], expected[k], 1e-12) << "component " << k;
    }
}

} // namespace

TEST(CyclicCoupling, WeightsGoByTheDepthsOfTheCells)
{
    // Cell 1 becomes a frustum from x = 1 to 4 whose sides grow from 1 to 3, so its centre is 13.5 / 13 below its
    // large face, while that of cell 0 is 0.5 below its outer face.
    OFPolymesh mesh = twoCubes();
    for (const int node : {2, 5, 8, 11}) {
        double* const point = mesh.points().data() + static_cast<std::size_t>(node) * 3;
        point[0] = 4;
        point[1] = 0.5 + 3 * (point[1] - 0.5);
        point[2] = 0.5 + 3 * (point[2] - 0.5);
    }
    const Patches patches = coupled(mesh, pair(LEFT, RIGHT));
    EXPECT_EQ(patches[0].cyclicCoupling().cells, (std::vector<int>{1}));
    EXPECT_EQ(patches[1].cyclicCoupling().cells, (std::vector<int>{0}));
    EXPECT_TRUE(patches[0].cyclicCoupling().rotations.empty());
    EXPECT_NEAR(patches[0].cyclicCoupling().weights.at(0), 0.675, 1e-12);
    EXPECT_NEAR(patches[1].cyclicCoupling().weights.at(0), 0.325, 1e-12);
}

TEST(CyclicCoupling, VectorsTurnWithTheNormalsOrAboutTheAxis)
{
    Patches patches = pair(LEFT, BACK);
    expectNear(fromBeyond(coupled(twoCubes(), patches), {4, 5, 6}), {5, -4, 6});

    // Both faces lean towards the axis. The shortest way from one normal to the other is no longer about the axis.
    OFPolymesh leaning = twoCubes();
    for (const std::size_t x : {6U * 3, 9U * 3}) {
        leaning.points()[x] = 0.5;
    }
    for (const std::size_t y : {10U * 3 + 1, 11U * 3 + 1}) {
        leaning.points()[y] = 1.5;
    }
    patches[0].setCyclicTransform("rotational");
    patches[0].setRotationAxis({0, 0, 2});
    expectNear(fromBeyond(coupled(leaning, patches), {4, 5, 6}), {5, -4, 6});

    patches[0].setCyclicTransform("translational");
    const CyclicCoupling coupling = coupled(twoCubes(), patches)[0].cyclicCoupling();
    EXPECT_TRUE(coupling.rotations.empty());
    EXPECT_FALSE(coupling.cells.empty());
}

TEST(CyclicCoupling, DamageLeavesPatchesUncoupled)
{
    const std::pair<const char*, std::function<void(OFPolymesh&, Patches&)>> damages[] = {
        {"no neighbour", [](OFPolymesh&, Patches& patches) { patches[0].setNeighbourPatch("c"); }},
        {"neighbour is a wall", [](OFPolymesh&, Patches& patches) { patches[1].setType("wall"); }},
        {"neighbour is larger", [](OFPolymesh&, Patches& patches) { patches[1].setFaceCount(2); }},
        {"neighbour is outside", [](OFPolymesh&, Patches& patches) { patches[1].setStartFaceIndex(99); }},
        {"both claim too much",
         [](OFPolymesh&, Patches& patches) {
             patches[0].setFaceCount(std::numeric_limits<std::size_t>::max());
             patches[1].setFaceCount(std::numeric_limits<std::size_t>::max());
         }},
        {"no owners", [](OFPolymesh& mesh, Patches&) { mesh.owners().resize(3); }},
        {"owner is not a cell", [](OFPolymesh& mesh, Patches&) { mesh.owners()[RIGHT] = 2; }},
        {"owner is negative", [](OFPolymesh& mesh, Patches&) { mesh.owners()[RIGHT] = -7; }},
        {"no cells", [](OFPolymesh& mesh, Patches&) { mesh.setCellCount(0); }},
        {"point is not a number",
         [](OFPolymesh& mesh, Patches&) { mesh.points()[0] = std::numeric_limits<double>::quiet_NaN(); }},
        {"face has no area", [](OFPolymesh& mesh, Patches&) { mesh.points().assign(mesh.points().size(), 1.0); }},
    };
    const Patches sound = coupled(twoCubes(), pair(LEFT, RIGHT));
    EXPECT_EQ(sound[0].cyclicCoupling().weights, (std::vector<double>{0.5}));
    for (const auto& [name, damage] : damages) {
        OFPolymesh mesh = twoCubes();
        Patches patches = sound;
        damage(mesh, patches);
        EXPECT_TRUE(coupled(mesh, patches)[0].cyclicCoupling().cells.empty()) << name;
    }
    // Labels that point to no cell on faces of others are left out, but the patches keep their coupling.
    OFPolymesh mesh = twoCubes();
    mesh.owners()[4] = -1;
    mesh.neighbors()[0] = 99;
    EXPECT_FALSE(coupled(mesh, pair(LEFT, RIGHT))[0].cyclicCoupling().cells.empty());
    // Patches that were cut out of a mesh with more points.
    OFPolymesh cut = twoCubes();
    Patches patches = sound;
    cut.points().resize(3 * 4);
    cut.points().shrink_to_fit();
    coupleCyclicPatches(cut, &patches);
    EXPECT_TRUE(patches[0].cyclicCoupling().cells.empty());
    // Owners of no face are left out.
    OFPolymesh owned = twoCubes();
    patches = sound;
    owned.owners().resize(100000, 1);
    coupleCyclicPatches(owned, &patches);
    EXPECT_EQ(patches[0].cyclicCoupling().weights, (std::vector<double>{0.5}));
}
