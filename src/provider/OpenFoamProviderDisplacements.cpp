// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include "mesh/OFPolymeshReader.h"
#include "provider/ValueArrays.h"
#include "records/Components.h"

#include <algorithm>

namespace {

constexpr int POINT_DIMENSION = static_cast<int>(VECTOR_COMPONENTS);
/// The first state of a newly opened case, whose points are those of the mesh itself.
constexpr int FIRST_STATE_ID = 1;

} // namespace

bool OpenFoamProvider::getDisplacements(int stateId, DDPResult* result)
{
    std::vector<OFValueGroups> groups(m_reader.partCount());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i].resize(1 + m_reader.part(i).boundaries().size());
        std::ranges::generate(groups[i], [&] { return result->addValueGroup(); });
    }
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (!updatePointsForPart(static_cast<int>(i), stateId, groups[i])) {
            return false;
        }
    }
    return true;
}

bool OpenFoamProvider::updatePointsForPart(int partIndex, int stateId, OFValueGroups& groups)
{
    const auto index = static_cast<std::size_t>(partIndex);
    const OFState* const state = m_reader.stateById(stateId);
    if (index >= m_reader.partCount() || state == nullptr) {
        return false;
    }
    const OFPart& part = m_reader.part(index);
    if (groups.size() != 1 + part.boundaries().size()) {
        return false;
    }
    // Compatibility (docs/compatibility.md, "displacements of state 1"): one folder serves every part.
    const dvn::Str folder = stateId == FIRST_STATE_ID ? m_polyMeshFolder.get() : state->folderOf(part) + "/polyMesh";
    std::vector<double> points;
    if (!OFPolymeshReader().readPoints(folder, &points)) {
        return false;
    }
    deliver(points, POINT_DIMENSION, groups.front());
    for (std::size_t i = 0; i < part.boundaries().size(); ++i) {
        const OFBoundary& boundary = part.boundaries()[i];
        // Nodes beyond the points of a later, smaller mesh stay undefined.
        std::vector<double> values = undefinedItems(boundary.nodeCount(), POINT_DIMENSION);
        applyNodalDataInFace(points, values, POINT_DIMENSION, boundary.faceNodeToNodeMapping());
        deliverAndRelease(values, POINT_DIMENSION, groups[i + 1]);
    }
    return true;
}
