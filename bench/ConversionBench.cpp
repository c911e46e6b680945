// SPDX-License-Identifier: MIT
#include "bench/BenchMeshes.h"
#include "mesh/OFPolymeshToDDP.h"

#include <benchmark/benchmark.h>

namespace {

using MakeMesh = const OFPolymesh& (*)();

/// Groups for the converter that do not copy, unlike those of a host.
class NoNodeGroup final : public DDPNodeGroup
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void setNodes(const double* values, std::uint64_t /*nodeCount*/) override { benchmark::DoNotOptimize(values); }
    void setNodeIds(const std::int32_t* ids, std::uint64_t /*count*/) override { benchmark::DoNotOptimize(ids); }
    std::int64_t nodeGroupId() const override { return 0; }
};

class NoElementGroup final : public DDPElementGroup
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void setUniformElements(std::int32_t /*type*/, std::uint64_t /*elementCount*/, const std::int32_t* /*nodes*/,
                            std::uint64_t /*nodesLength*/, const std::int32_t* /*ids*/) override
    {}
    void setMixedElements(const std::int32_t* /*types*/, std::uint64_t /*elementCount*/, const std::int32_t* nodes,
                          std::uint64_t /*nodesLength*/, const std::int32_t* /*ids*/) override
    {
        benchmark::DoNotOptimize(nodes);
    }
    void setPolyhedra(const unsigned char* /*nodesPerPolyhedron*/, const unsigned char* /*facesPerPolyhedron*/,
                      std::uint64_t /*polyhedronCount*/, const unsigned char* /*nodesPerFace*/,
                      std::uint64_t /*faceCount*/, const std::int32_t* faceConnectivity,
                      std::uint64_t /*faceConnectivityLength*/) override
    {
        benchmark::DoNotOptimize(faceConnectivity);
    }
    void setElementPartIds(const std::int32_t* /*partIds*/, std::uint64_t /*count*/) override {}
};

/// From the mesh as read to the last call to the host, including the release of the mesh's lists.
void convert(benchmark::State& state, MakeMesh makeMesh, bool (OFPolymeshToDDP::*create)())
{
    NoNodeGroup nodes;
    NoElementGroup elements;
    for (auto _ : state) {
        state.PauseTiming();
        OFPolymesh mesh = makeMesh();
        state.ResumeTiming();
        OFPolymeshToDDP converter(&mesh);
        benchmark::DoNotOptimize((converter.*create)());
        benchmark::DoNotOptimize(converter.populateElementGroup(&elements, nullptr));
        benchmark::DoNotOptimize(converter.populateNodeGroup(&nodes, nullptr));
    }
    state.counters["cells"] =
        benchmark::Counter(static_cast<double>(makeMesh().cellCount()), benchmark::Counter::kIsIterationInvariantRate);
}

/// Cuts out one patch: all boundary faces, or all faces.
void cutPatch(benchmark::State& state, MakeMesh makeMesh, bool isWholeMesh)
{
    OFPolymesh mesh = makeMesh();
    const OFPolymeshToDDP converter(&mesh);
    const std::size_t start = isWholeMesh ? 0 : mesh.neighbors().size();
    NoNodeGroup nodes;
    NoElementGroup elements;
    for (auto _ : state) {
        OFBoundary boundary;
        boundary.setStartFaceIndex(static_cast<int>(start));
        boundary.setFaceCount(mesh.owners().size() - start);
        std::size_t nodeCount = 0;
        std::size_t elementCount = 0;
        benchmark::DoNotOptimize(
            converter.populateBoundaryGroup(boundary, &nodes, &nodeCount, &elements, &elementCount));
    }
    state.counters["faces"] = benchmark::Counter(static_cast<double>(mesh.owners().size() - start),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

BENCHMARK_CAPTURE(convert, hexahedra, millionHexahedra, &OFPolymeshToDDP::createMesh)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(convert, polyhedra, manyPolyhedra, &OFPolymeshToDDP::createMesh)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(convert, hexahedraInChunks, millionHexahedra, &OFPolymeshToDDP::createMeshInChunks)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(convert, polyhedraInChunks, manyPolyhedra, &OFPolymeshToDDP::createMeshInChunks)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(cutPatch, boundary, millionHexahedra, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(cutPatch, allFaces, millionHexahedra, true)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
