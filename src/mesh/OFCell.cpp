// SPDX-License-Identifier: MIT
#include "mesh/OFCell.h"

#include "mesh/CellBuilder.h"

#include <utility>

namespace {

/// The counts of a hexahedron.
constexpr std::size_t USUAL_FACES = 6;
constexpr std::size_t USUAL_NODES = 8;

void startCell(const CellFaceVector& cellFaces, const FacesData& faces, CellBuilder* builder)
{
    builder->startCell(cellFaces.size());
    for (std::size_t i = 0; i < cellFaces.size(); ++i) {
        builder->setFace(i, faces, static_cast<std::size_t>(cellFaces[i].faceIndex), cellFaces[i].isOwner);
    }
}

FaceTally tallyOf(const std::vector<std::uint8_t>& faceSizes)
{
    FaceTally tally;
    for (const std::uint8_t size : faceSizes) {
        tally.add(size);
    }
    return tally;
}

} // namespace

OFCell::OFCell()
{
    m_cellFaces.reserve(USUAL_FACES);
    m_elementNodes.reserve(USUAL_NODES);
}

void OFCell::clear()
{
    m_cellFaces.clear();
    m_elementNodes.clear();
}

bool OFCell::buildElementData(int cellIndex, DDPElementType* types, PolyDataVector* polys, const FacesData* faces)
{
    CellBuilder builder;
    startCell(m_cellFaces, *faces, &builder);
    const DDPElementType type = builder.build();
    types[cellIndex] = type;
    m_elementNodes.assign(builder.nodes().begin(), builder.nodes().end());
    if (type == DDP_POLY) {
        std::vector<std::uint8_t> faceSizes;
        faceSizes.reserve(m_cellFaces.size());
        for (const CellFaceView& face : builder.faces()) {
            faceSizes.push_back(face.nodeCount);
        }
        return buildElementPolyTables(cellIndex, faces, &faceSizes, polys);
    }
    return builder.isOrdered();
}

bool OFCell::buildElementPolyTables(int cellIndex, const FacesData* faces, std::vector<std::uint8_t>* nodeCountPerFace,
                                    PolyDataVector* polys) const
{
    CellBuilder builder;
    startCell(m_cellFaces, *faces, &builder);
    PolyData poly;
    poly.cellIndex = cellIndex;
    poly.faceCount = static_cast<int>(nodeCountPerFace->size());
    poly.nodeCount = labelCount(builder.faces());
    poly.faceNodes.resize(poly.nodeCount);
    copyFaceNodes(builder.faces(), poly.nodeCount, poly.faceNodes.data());
    poly.nodeCountPerFace = std::exchange(*nodeCountPerFace, {});
    polys->push_back(std::move(poly));
    return true;
}

DDPElementType OFCell::typeFromFaces(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes)
{
    return typeOfCell(nodeCount, tallyOf(*faceSizes));
}

bool OFCell::isTetrahedron(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes)
{
    return typeFromFaces(nodeCount, faceSizes) == DDP_TETRAHEDRON;
}

bool OFCell::isPyramid(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes)
{
    return typeFromFaces(nodeCount, faceSizes) == DDP_PYRAMID;
}

bool OFCell::isPentahedron(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes)
{
    return typeFromFaces(nodeCount, faceSizes) == DDP_PENTAHEDRON;
}

bool OFCell::isHexahedron(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes)
{
    return typeFromFaces(nodeCount, faceSizes) == DDP_HEXAHEDRON;
}

bool OFCell::orderElementNodes(DDPElementType type, const CellFaceVector* cellFaces, const FacesData* faces,
                               std::vector<int>* nodes)
{
    if (nodes->size() < solidNodeCount(type)) {
        return false;
    }
    CellBuilder builder;
    startCell(*cellFaces, *faces, &builder);
    return orderSolidNodes(type, builder.faces(), nodes->data());
}

bool OFCell::orderTetrahedronNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes)
{
    return orderElementNodes(DDP_TETRAHEDRON, cellFaces, faces, nodes);
}

bool OFCell::orderPyramidNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes)
{
    return orderElementNodes(DDP_PYRAMID, cellFaces, faces, nodes);
}

bool OFCell::orderPentahedronNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes)
{
    return orderElementNodes(DDP_PENTAHEDRON, cellFaces, faces, nodes);
}

bool OFCell::orderHexahedronNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes)
{
    return orderElementNodes(DDP_HEXAHEDRON, cellFaces, faces, nodes);
}
