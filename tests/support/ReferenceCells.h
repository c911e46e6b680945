// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/OFCell.h"
#include "provider/DataProviderInterface.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

/// One cell by its points and faces. No two of its edges are equal, so that any mistake in the order of nodes changes
/// the volume.
struct ReferenceCell
{
    DDPElementType type;
    std::vector<std::array<double, 3>> points;
    /// The faces, each seen from outside counter-clockwise.
    std::vector<std::vector<int>> faces;
};

/// A tetrahedron, a pyramid, a pentahedron and a hexahedron.
const std::vector<ReferenceCell>& referenceCells();

/// The volume inside faces that point outwards, which may be warped.
double volumeInside(std::span<const std::array<double, 3>> points, const std::vector<std::vector<int>>& faces);

/// The volume of an element given by its nodes in the host's order, positive only if that order is right.
double signedVolume(DDPElementType type, std::span<const std::array<double, 3>> points, std::span<const int> nodes);

/// A cell as its mesh has it.
struct CellInMesh
{
    OFCell cell;
    FacesData faces;

    /// Adds a face by its nodes as the file lists them.
    void addFace(const std::vector<int>& fileNodes, bool isOwner);
};
