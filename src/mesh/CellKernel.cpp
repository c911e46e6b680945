// SPDX-License-Identifier: MIT
#include "mesh/CellKernel.h"

#include <algorithm>
#include <array>

namespace {

struct Solid
{
    DDPElementType type;
    std::size_t nodeCount;
    FaceTally tally;
};

constexpr std::array<Solid, 4> SOLIDS = {{{DDP_TETRAHEDRON, 4, {4, 4, 0}},
                                          {DDP_PYRAMID, 5, {5, 4, 1}},
                                          {DDP_PENTAHEDRON, 6, {5, 2, 3}},
                                          {DDP_HEXAHEDRON, 8, {6, 0, 6}}}};

constexpr std::size_t HEXAHEDRON_FACES = 6;

/// True if `node` is one of the first N of `nodes`. All N are compared: they are few, and an early exit mispredicts.
template <std::size_t N>
bool isAmong(const int* nodes, int node)
{
    bool found = false;
    for (std::size_t i = 0; i < N; ++i) {
        found |= nodes[i] == node;
    }
    return found;
}

template <std::size_t N>
bool areDistinct(const int* nodes)
{
    bool distinct = true;
    for (std::size_t i = 1; i < N; ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            distinct &= nodes[i] != nodes[k];
        }
    }
    return distinct;
}

/// Writes the nodes of the base that the rest of the cell is built on. An owner's face, whose normal points out of the
/// cell, is reversed.
void writeBase(const CellFaceView& base, int* nodes)
{
    if (base.isOwner) {
        std::reverse_copy(base.nodes, base.nodes + base.nodeCount, nodes);
    } else {
        std::copy_n(base.nodes, base.nodeCount, nodes);
    }
}

/// The first of the N nodes of a top on the list of the edge neighbours of `node`.
///
/// That list runs through the faces in order and around each face, the closing edge last; an edge a, b puts b on the
/// list of a and then a on that of b. Compatibility (docs/compatibility.md, "neighbour order in degenerate cells").
/// @return null if no neighbour of the node is in the top
template <std::size_t N>
const int* neighbourInTop(CellFaceViews faces, const int* top, int node)
{
    for (const CellFaceView& face : faces) {
        for (std::size_t i = 0; i < face.nodeCount; ++i) {
            const int* const a = face.nodes + i;
            const int* const b = i + 1 == face.nodeCount ? face.nodes : a + 1;
            if (*a == node && isAmong<N>(top, *b)) {
                return b;
            }
            if (*b == node && isAmong<N>(top, *a)) {
                return a;
            }
        }
    }
    return nullptr;
}

/// Writes, after a base of N nodes, the node of the top above each of them.
template <std::size_t N>
bool raiseColumns(CellFaceViews faces, const int* top, int* nodes)
{
    // A base node without a column leaves no gap: the next column takes its place, and the final count shows it.
    int* write = nodes + N;
    for (std::size_t k = 0; k < N; ++k) {
        if (const int* const above = neighbourInTop<N>(faces, top, nodes[k])) {
            *write++ = *above;
        }
    }
    return write == nodes + 2 * N;
}

/// True if two quadrilaterals have a node in common.
bool shareNode(const int* a, const int* b)
{
    bool found = false;
    for (std::size_t i = 0; i < 4; ++i) {
        found |= isAmong<4>(a, b[i]);
    }
    return found;
}

bool allQuadrilaterals(CellFaceViews faces)
{
    return std::ranges::all_of(faces, [](const CellFaceView& face) { return face.nodeCount == 4; });
}

/// The first of six quadrilaterals that shares no node with the first of them; null if there is none.
const int* oppositeOfFirst(CellFaceViews faces)
{
    for (const CellFaceView& face : faces.subspan(1)) {
        if (!shareNode(face.nodes, faces[0].nodes)) {
            return face.nodes;
        }
    }
    return nullptr;
}

} // namespace

DDPElementType solidOfFaces(const FaceTally& tally)
{
    for (const Solid& solid : SOLIDS) {
        if (solid.tally == tally) {
            return solid.type;
        }
    }
    return DDP_POLY;
}

std::size_t solidNodeCount(DDPElementType type)
{
    for (const Solid& solid : SOLIDS) {
        if (solid.type == type) {
            return solid.nodeCount;
        }
    }
    return 0;
}

DDPElementType typeOfCell(std::size_t nodeCount, const FaceTally& tally)
{
    const DDPElementType solid = solidOfFaces(tally);
    return solidNodeCount(solid) == nodeCount ? solid : DDP_POLY;
}

bool orderSolidNodes(DDPElementType type, CellFaceViews faces, int* nodes)
{
    switch (type) {
    case DDP_TETRAHEDRON:
        return orderTetrahedron(faces, nodes);
    case DDP_PYRAMID:
        return orderPyramid(faces, nodes);
    case DDP_PENTAHEDRON:
        return orderPentahedron(faces, nodes);
    case DDP_HEXAHEDRON:
        return orderHexahedron(faces, nodes);
    default:
        return false;
    }
}

bool orderTetrahedron(CellFaceViews faces, int* nodes)
{
    if (faces.size() < 2 || faces[0].nodeCount < 3 || faces[1].nodeCount < 3) {
        return false;
    }
    // Unlike in the other solids the apex comes first, so an owner's face keeps its order.
    const CellFaceView& base = faces[0];
    nodes[1] = base.nodes[base.isOwner ? 0 : 2];
    nodes[2] = base.nodes[1];
    nodes[3] = base.nodes[base.isOwner ? 2 : 0];
    const int* const other = faces[1].nodes;
    const int* const apex = std::find_if(other, other + 3, [&base](int node) { return !isAmong<3>(base.nodes, node); });
    if (apex == other + 3) {
        return false;
    }
    nodes[0] = *apex;
    return true;
}

bool orderPyramid(CellFaceViews faces, int* nodes)
{
    const auto base =
        std::find_if(faces.begin(), faces.end(), [](const CellFaceView& face) { return face.nodeCount == 4; });
    if (base == faces.end()) {
        return false;
    }
    writeBase(*base, nodes);
    for (auto face = faces.begin(); face != faces.end(); ++face) {
        if (face == base) {
            continue;
        }
        const int* const end = face->nodes + std::min<std::size_t>(face->nodeCount, 3);
        const int* const apex = std::find_if(face->nodes, end, [nodes](int node) { return !isAmong<4>(nodes, node); });
        if (apex != end) {
            nodes[4] = *apex;
            return true;
        }
    }
    return false;
}

bool orderPentahedron(CellFaceViews faces, int* nodes)
{
    const auto isTriangle = [](const CellFaceView& face) { return face.nodeCount == 3; };
    const auto base = std::ranges::find_if(faces, isTriangle);
    if (base == faces.end()) {
        return false;
    }
    writeBase(*base, nodes);
    const auto top = std::find_if(base + 1, faces.end(), isTriangle);
    return top != faces.end() && raiseColumns<3>(faces, top->nodes, nodes);
}

bool orderHexahedron(CellFaceViews faces, int* nodes)
{
    if (faces.size() != HEXAHEDRON_FACES || !allQuadrilaterals(faces)) {
        return false;
    }
    writeBase(faces[0], nodes);
    const int* const top = oppositeOfFirst(faces);
    // The base comes first in every list of neighbours but has no node of the top. Skipping it saves a third.
    return top != nullptr && raiseColumns<4>(faces.subspan(1), top, nodes);
}

bool isTwoLayersOfFour(CellFaceViews faces)
{
    const int* const base = faces[0].nodes;
    const int* const top = oppositeOfFirst(faces);
    if (top == nullptr || !areDistinct<4>(base) || !areDistinct<4>(top)) {
        return false;
    }
    std::array<int, MAX_SOLID_NODES> layers = {};
    std::copy_n(top, 4, std::copy_n(base, 4, layers.begin()));
    return std::ranges::all_of(faces, [&layers](const CellFaceView& face) {
        bool inside = true;
        for (std::size_t i = 0; i < 4; ++i) {
            inside &= isAmong<MAX_SOLID_NODES>(layers.data(), face.nodes[i]);
        }
        return inside;
    });
}

std::size_t labelCount(CellFaceViews faces)
{
    std::size_t count = 0;
    for (const CellFaceView& face : faces) {
        count += face.nodeCount;
    }
    return count;
}

void copyFaceNodes(CellFaceViews faces, std::size_t limit, int* out)
{
    for (const CellFaceView& face : faces) {
        const std::size_t count = std::min<std::size_t>(face.nodeCount, limit);
        if (face.isOwner) {
            std::copy_n(face.nodes, count, out);
        } else {
            std::reverse_copy(face.nodes + face.nodeCount - count, face.nodes + face.nodeCount, out);
        }
        out += count;
        limit -= count;
    }
}
