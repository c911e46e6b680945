// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/OFPolymesh.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

/// Joins cells that are given by their own faces into a mesh in the face order of OpenFOAM: the internal faces by owner
/// and then by neighbour, behind them the boundary faces by owner.
class MeshJoiner
{
public:
    int addPoint(double x, double y, double z);
    /// Starts the next cell, which has the following 0-based label.
    void startCell() { ++m_cellCount; }
    /// Adds a face of the current cell, its normal pointing outwards. A face that an earlier cell has given already
    /// becomes an internal one; three of its nodes tell it.
    void addFace(const std::vector<int>& nodes);
    OFPolymesh join() const;

private:
    struct Face
    {
        std::vector<int> nodes;
        int owner;
        int neighbour;
    };

    std::vector<double> m_points;
    std::vector<Face> m_faces;
    std::unordered_map<std::uint64_t, std::size_t> m_faceOfKey;
    int m_cellCount = 0;
};

/// A block of `nx` x `ny` x `nz` unit cubes, x running fastest.
OFPolymesh hexahedronMesh(int nx, int ny, int nz);

/// Two interlocked grids of `n`^3 truncated octahedra: cells of 14 faces and 24 nodes that fill space.
OFPolymesh octahedronMesh(int n);

/// The content of the four files of a `polyMesh` folder.
struct MeshFiles
{
    std::string points;
    std::string faces;
    std::string owner;
    std::string neighbour;
};

/// Text files with a `faceList`.
MeshFiles asciiFiles(const OFPolymesh& mesh);
/// Raw lists with a `faceCompactList`.
MeshFiles binaryFiles(const OFPolymesh& mesh);
