// SPDX-License-Identifier: MIT
#pragma once

#include "DataProviderInterface.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

using ReferencePoint = std::array<double, 3>;
using ReferenceFaces = std::vector<std::vector<int>>;

/// One cell: its points in the host's node order, and its faces. No two edges are equal, so any wrong node order
/// changes the volume.
struct ReferenceCell
{
    DDPElementType type;
    std::vector<ReferencePoint> points;
    ReferenceFaces faces; ///< each counter-clockwise as seen from outside
    double volume() const;
};

/// A tetrahedron, a pyramid, a pentahedron and a hexahedron.
const std::vector<ReferenceCell>& referenceCells();

/// The volume inside outward faces, which may be warped.
double volumeInside(std::span<const ReferencePoint> points, const ReferenceFaces& faces);

/// The volume of an element with its nodes in the host's order, positive only if that order is right. 0 for types that
/// are not among the reference cells.
double signedVolume(std::int32_t type, std::span<const ReferencePoint> points, std::span<const int> nodes);

/// The reference cells as a library delivers them, 2 apart along x, and the hexahedron once more as a polyhedron. They
/// share no nodes.
struct DeliveredCells
{
    std::vector<double> points;
    std::vector<std::int32_t> types;
    std::vector<std::int32_t> connectivity;
    std::vector<std::int32_t> ids = {0, 1, 2, 3, 4};
    std::vector<std::int32_t> faceConnectivity; ///< six faces of four nodes

    DeliveredCells();
    /// Sets all arrays.
    void deliverTo(DDPNodeGroup* nodes, DDPElementGroup* elements) const;

private:
    void addCell(const ReferenceCell& cell, std::int32_t type);
};
