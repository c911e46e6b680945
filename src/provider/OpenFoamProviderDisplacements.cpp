// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include "foamfile/OFUtilities.h"
#include "mesh/OFPolymeshReader.h"
#include "provider/ProviderLog.h"
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
    const dvn::Str folder = isExtended()                ? pointsFolder(part, *state)
                            : stateId == FIRST_STATE_ID ? m_polyMeshFolder.get()
                                                        : state->foldersOf(part).front() + "/polyMesh";
    std::vector<double> points;
    if (!OFPolymeshReader(m_reader.reading()).readPoints(folder, &points)) {
        return false;
    }
    if (isExtended() && points.size() != part.nodeCount() * VECTOR_COMPONENTS) {
        // The mesh of this time is another one, with nodes of its own.
        logInfo(dvn::Str("The points of %1 do not fit the mesh of %2 and are not shown: %3 coordinates for %4 nodes")
                    .arg(folder)
                    .arg(part.name())
                    .arg(points.size())
                    .arg(part.nodeCount()));
        points = undefinedItems(part.nodeCount() == OFPart::UNKNOWN_COUNT ? 0 : part.nodeCount(), POINT_DIMENSION);
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

/// The mesh folder with the points of a part at some time: of that time or the last one before it that has points, else
/// that of the mesh itself. Solvers write points only when they have moved.
dvn::Str OpenFoamProvider::pointsFolder(const OFPart& part, const OFState& state) const
{
    for (std::size_t i = m_reader.stateCount(); i-- > 0;) {
        if (m_reader.state(i).referenceValue() > state.referenceValue()) {
            continue;
        }
        for (const dvn::Str& folder : m_reader.state(i).foldersOf(part)) {
            if (OFUtilities::isRegularFileOrGz(folder + "/polyMesh/points")) {
                return folder + "/polyMesh";
            }
        }
    }
    return part.folder();
}
