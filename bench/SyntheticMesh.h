// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/OFPolymesh.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

/// Joins cells, given by their faces, into a mesh with OpenFOAM's face order: internal faces by owner and then by
/// neighbour, followed by boundary faces by owner.
class MeshJoiner
{
public:
    int addPoint(double x, double y, double z);
    /// Starts the next cell; cells are labelled from 0 in this order.
    void startCell() { ++m_cellCount; }
    /// Adds a face of the current cell, with its normal pointing outwards. If an earlier cell has the same face, it
    /// becomes internal; faces are identified by their three lowest nodes.
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

/// The contents of the four files of a `polyMesh` folder.
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
