// SPDX-License-Identifier: MIT
//
// Turns the faces of one cell into an element: its type, its distinct nodes and their order. No coordinate is read.
//
// `OFCell` and the conversion of whole meshes both use these functions, so a cell comes out the same either way. They
// work for any cell that faces can form, however degenerate, and read nothing beyond the given faces.
#pragma once

#include "interface/DataProviderInterface.h"

#include <cstddef>
#include <cstdint>
#include <span>

/// One face as a cell sees it: its nodes in file order, and on which side of it the cell lies.
struct CellFaceView
{
    const int* nodes = nullptr;
    std::uint8_t nodeCount = 0;
    bool isOwner = false;
};

/// The faces of one cell in a fixed order.
using CellFaceViews = std::span<const CellFaceView>;

/// How many faces a cell has, and of which sizes as far as its type depends on them.
struct FaceTally
{
    std::size_t faces = 0;
    std::size_t triangles = 0;
    std::size_t quadrilaterals = 0;

    void add(std::uint8_t nodeCount)
    {
        ++faces;
        triangles += nodeCount == 3 ? 1U : 0U;
        quadrilaterals += nodeCount == 4 ? 1U : 0U;
    }
    friend bool operator==(const FaceTally&, const FaceTally&) = default;
};

/// Node count of the largest solid.
inline constexpr std::size_t MAX_SOLID_NODES = 8;

/// The solid whose faces are those of `tally`, or `DDP_POLY` if there is none.
DDPElementType solidOfFaces(const FaceTally& tally);

/// Number of nodes of a solid; 0 for any other type.
std::size_t solidNodeCount(DDPElementType type);

/// The type of a cell of `nodeCount` distinct nodes and these faces.
DDPElementType typeOfCell(std::size_t nodeCount, const FaceTally& tally);

/// True only if six quadrilaterals have eight distinct nodes, found by comparisons only: four are in the first face,
/// four in another, and all faces have their nodes among them. If it is false, counting decides.
bool isTwoLayersOfFour(CellFaceViews faces);

/// Puts the nodes of a solid in the host's order.
///
/// `nodes` has room for the solid's nodes. On true all of them are written; on false only those that the faces settle,
/// and the others keep their value.
/// @return false for a type that is not a solid, or if the faces do not form the solid that their sizes suggest
bool orderSolidNodes(DDPElementType type, CellFaceViews faces, int* nodes);

bool orderTetrahedron(CellFaceViews faces, int* nodes);
bool orderPyramid(CellFaceViews faces, int* nodes);
bool orderPentahedron(CellFaceViews faces, int* nodes);
bool orderHexahedron(CellFaceViews faces, int* nodes);

/// Number of node labels that the faces list; a node counts once for each of its faces.
std::size_t labelCount(CellFaceViews faces);

/// Writes the first `limit` node labels of a polyhedron's face table, face after face.
///
/// All faces point out of the cell. A file has each face as its owner sees it, so those of which the cell is the
/// neighbour are reversed. Compatibility (docs/compatibility.md, "owner faces of solids"): in solids it is the owner's
/// face that is reversed.
void copyFaceNodes(CellFaceViews faces, std::size_t limit, int* out);
