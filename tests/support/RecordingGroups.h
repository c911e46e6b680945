// SPDX-License-Identifier: MIT
#pragma once

#include "provider/DataProviderInterface.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// A node group that keeps what it is given.
class RecordingNodeGroup final : public DDPNodeGroup
{
public:
    std::vector<double> coordinates;
    std::vector<int> ids;
    int calls = 0;

    void reserved0() override {}
    void reserved1() override {}
    void setNodes(const double* values, std::uint64_t nodeCount) override
    {
        ++calls;
        coordinates.assign(values, values + 3 * nodeCount);
    }
    void setNodeIds(const std::int32_t* values, std::uint64_t count) override
    {
        ++calls;
        ids.assign(values, values + count);
    }
    std::int64_t nodeGroupId() const override { return 0; }
};

/// What `setPolyhedra` was given.
struct RecordedPolyhedra
{
    std::vector<int> nodeCounts;
    std::vector<int> faceCounts;
    std::vector<int> nodesPerFace;
    std::vector<int> faceNodes;

    friend bool operator==(const RecordedPolyhedra&, const RecordedPolyhedra&) = default;
};

/// An element group that keeps what it is given. Bytes become ints, which print as numbers.
class RecordingElementGroup final : public DDPElementGroup
{
public:
    int uniformType = 0;
    std::vector<int> types;
    std::vector<int> connectivity;
    std::vector<int> ids;
    RecordedPolyhedra polyhedra;
    int elementCalls = 0;
    int polyhedraCalls = 0;

    void reserved0() override {}
    void reserved1() override {}
    void setUniformElements(std::int32_t type, std::uint64_t elementCount, const std::int32_t* nodes,
                            std::uint64_t nodesLength, const std::int32_t* elementIds) override
    {
        ++elementCalls;
        uniformType = type;
        connectivity.assign(nodes, nodes + nodesLength);
        ids.assign(elementIds, elementIds + elementCount);
    }
    void setMixedElements(const std::int32_t* elementTypes, std::uint64_t elementCount, const std::int32_t* nodes,
                          std::uint64_t nodesLength, const std::int32_t* elementIds) override
    {
        ++elementCalls;
        types.assign(elementTypes, elementTypes + elementCount);
        connectivity.assign(nodes, nodes + nodesLength);
        ids.assign(elementIds, elementIds + elementCount);
    }
    void setPolyhedra(const unsigned char* nodesPerPolyhedron, const unsigned char* facesPerPolyhedron,
                      std::uint64_t polyhedronCount, const unsigned char* nodesPerFace, std::uint64_t faceCount,
                      const std::int32_t* faceConnectivity, std::uint64_t faceConnectivityLength) override
    {
        ++polyhedraCalls;
        polyhedra.nodeCounts.assign(nodesPerPolyhedron, nodesPerPolyhedron + polyhedronCount);
        polyhedra.faceCounts.assign(facesPerPolyhedron, facesPerPolyhedron + polyhedronCount);
        polyhedra.nodesPerFace.assign(nodesPerFace, nodesPerFace + faceCount);
        polyhedra.faceNodes.assign(faceConnectivity, faceConnectivity + faceConnectivityLength);
    }
    void setElementPartIds(const std::int32_t* /*partIds*/, std::uint64_t /*count*/) override {}
};
