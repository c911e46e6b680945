// SPDX-License-Identifier: MIT
#include "bench/BenchMeshes.h"

#include "bench/SyntheticMesh.h"

const OFPolymesh& millionHexahedra()
{
    static const OFPolymesh MESH = hexahedronMesh(100, 100, 100);
    return MESH;
}

const OFPolymesh& manyPolyhedra()
{
    static const OFPolymesh MESH = octahedronMesh(50);
    return MESH;
}
