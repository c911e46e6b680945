// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "interface/DataProviderInterface.h"
#include "records/Rotation.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// What lies beyond the faces of a cyclic patch. Empty if that is not known, else with entries for all faces.
struct CyclicCoupling
{
    /// The share of the value in the face's own cell; the cell beyond has the rest.
    std::vector<double> weights;
    /// The 0-based cell beyond each face, which touches the face at the same position in the neighbour patch.
    std::vector<int> cells;
    /// What turns vectors beyond the patch to its own side: nothing, one rotation for all faces, or one for each.
    std::vector<rotation::Matrix> rotations;
};

/// One patch of a `boundary` file, with the mappings that a built mesh adds.
///
/// A plain value: copies are deep. One thread at a time fills a patch, any number may read it. Indexes are not checked.
class OFBoundary
{
public:
    OFBoundary() = default;

    /// Id of the owning part.
    int partID() const { return m_partID; }
    void setPartId(int id) { m_partID = id; }
    /// 1-based position in the part after hidden and empty patches were dropped; 0 before.
    int boundaryID() const { return m_boundaryID; }
    void setBoundaryId(int id) { m_boundaryID = id; }
    dvn::Str patchName() const { return m_patchName; }
    void setPatchName(dvn::Str name) { m_patchName = std::move(name); }
    /// The patch's `type` entry.
    dvn::Str type() const { return m_type; }
    void setType(dvn::Str type) { m_type = std::move(type); }
    /// The groups that the patch is in, its type among them; filled in extended reading only.
    const std::vector<dvn::Str>& groups() const { return m_groups; }
    void setGroups(std::vector<dvn::Str> groups) { m_groups = std::move(groups); }
    /// The patch that a cyclic patch continues in, its entry `neighbourPatch`; filled in extended reading only, as are
    /// the next two.
    dvn::Str neighbourPatch() const { return m_neighbourPatch; }
    void setNeighbourPatch(dvn::Str name) { m_neighbourPatch = std::move(name); }
    /// The entry `transform` of a cyclic patch, such as "rotational"; empty if there is none.
    dvn::Str cyclicTransform() const { return m_cyclicTransform; }
    void setCyclicTransform(dvn::Str transform) { m_cyclicTransform = std::move(transform); }
    /// The entry `rotationAxis` of a cyclic patch, of any length; 0 if there is none.
    const rotation::Vector& rotationAxis() const { return m_rotationAxis; }
    void setRotationAxis(const rotation::Vector& axis) { m_rotationAxis = axis; }
    /// The patch's `nFaces`, even if the mesh has fewer: the size of `nodeCountPerFace` is the number that was built.
    std::size_t faceCount() const { return m_faceCount; }
    void setFaceCount(std::size_t count) { m_faceCount = count; }
    /// The patch's `startFace`, a 0-based face label.
    int startFaceIndex() const { return m_startFaceIndex; }
    void setStartFaceIndex(int index) { m_startFaceIndex = index; }
    /// Number of distinct nodes of the patch; 0 until its mesh is built.
    std::size_t nodeCount() const { return m_nodeCount; }
    void setNodeCount(std::size_t count) { m_nodeCount = count; }
    /// The group id given to the host; 0 until the metadata is published.
    int geometryGlobalPartId() const { return m_geometryGlobalPartId; }

    /// Sizes the mapping from the patch's faces to their owner cells; new entries are 0.
    void createFaceToCellMapping(std::size_t faceCount) { m_faceToCellMapping.resize(faceCount); }
    int& cellIndex(std::size_t face) { return m_faceToCellMapping[face]; }
    /// For each face of the patch the 0-based cell that owns it.
    const std::vector<int>& faceToCellMapping() const { return m_faceToCellMapping; }

    /// Sizes the mapping from the patch's nodes to the part's; new entries are 0.
    void createNodeFaceToNodeMapping(std::size_t nodeCount) { m_faceNodeToNodeMapping.resize(nodeCount); }
    int& nodeIndex(std::size_t node) { return m_faceNodeToNodeMapping[node]; }
    /// For each node of the patch its 0-based index in the part, ascending.
    const std::vector<int>& faceNodeToNodeMapping() const { return m_faceNodeToNodeMapping; }

    /// For each face in order its nodes as 0-based indices in the part.
    std::vector<int>& faceConnectivity() { return m_faceConnectivity; }
    const std::vector<int>& faceConnectivity() const { return m_faceConnectivity; }
    int faceConnectivity(int i) const { return m_faceConnectivity[static_cast<std::size_t>(i)]; }
    /// Node count of each face; its size is the number of faces of a built patch.
    std::vector<std::uint8_t>& nodeCountPerFace() { return m_nodeCountPerFace; }
    const std::vector<std::uint8_t>& nodeCountPerFace() const { return m_nodeCountPerFace; }
    std::uint8_t nodeCountPerFace(int i) const { return m_nodeCountPerFace[static_cast<std::size_t>(i)]; }

    /// x, y, z of the unit normal of each face, out of the mesh; 0 for a face without area. Filled in extended reading
    /// only.
    const std::vector<double>& faceNormals() const { return m_faceNormals; }
    /// Computes the normals of the built patch from the points of its part, x, y, z of each in turn.
    void computeFaceNormals(const std::vector<double>& points);
    /// Filled in extended reading only, for the patches of type `cyclic`.
    const CyclicCoupling& cyclicCoupling() const { return m_cyclicCoupling; }
    void setCyclicCoupling(CyclicCoupling coupling) { m_cyclicCoupling = std::move(coupling); }

    /// Declares the patch to the host under its part, with the id `offset` + `boundaryID`, which is stored.
    void addBoundaryInfo(int offset, DDPElementGroupInfo* info);

    /// Triangle for 3 nodes, quadrilateral for 4, the general face for any other count, including 0.
    static DDPElementType typeFromFaceNodeCount(std::size_t nodeCount);
    /// True for the keys of a patch entry that carry result values: "value", "refValue" and "valueFraction".
    static bool isResultKeyString(const std::string& key);
    /// True for "zeroGradient", "empty" and "calculated". The field readers do not use it; their list is longer
    /// (docs/compatibility.md, "continued cell values").
    static bool isKeyForUsingCellValue(const std::string& key);

private:
    dvn::Str m_patchName;
    dvn::Str m_type;
    int m_partID = 0;
    int m_boundaryID = 0;
    int m_startFaceIndex = 0;
    int m_geometryGlobalPartId = 0;
    std::size_t m_faceCount = 0;
    std::size_t m_nodeCount = 0;
    std::vector<int> m_faceToCellMapping;
    std::vector<int> m_faceNodeToNodeMapping;
    std::vector<int> m_faceConnectivity;
    std::vector<std::uint8_t> m_nodeCountPerFace;
    std::vector<dvn::Str> m_groups;
    std::vector<double> m_faceNormals;
    dvn::Str m_neighbourPatch;
    dvn::Str m_cyclicTransform;
    rotation::Vector m_rotationAxis = {};
    CyclicCoupling m_cyclicCoupling;
};
