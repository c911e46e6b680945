// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include "DvnCore/Timer.h"
#include "LibCore/Parallel.h"
#include "foamfile/OFLogger.h"
#include "mesh/CyclicCoupling.h"
#include "mesh/OFPolymesh.h"
#include "mesh/OFPolymeshReader.h"
#include "mesh/OFPolymeshToDDP.h"
#include "mesh/OFTriSurface.h"
#include "mesh/OFTriSurfaceReader.h"
#include "mesh/OFTriSurfaceToDDP.h"
#include "mesh/SurfaceFans.h"
#include "provider/PluginIdentity.h"
#include "provider/ProviderLog.h"

#include <algorithm>
#include <utility>

namespace {

/// Logs how long one step took for the part or surface of this index.
void logStep(const char* message, std::size_t index, double seconds)
{
    OFLogger::get().logDebug(PROVIDER_NAME, dvn::Str(message).arg(index).arg(seconds));
}

/// Reads and delivers parts, then sampled surfaces: indices from the part count on are surfaces.
///
/// Each index writes only to its own pairs and its own part or surface; the readers belong to one sub-range. A part
/// that fails has logged why and leaves its groups empty, so its return value is ignored.
struct OFReadPartMeshFunctor
{
    OpenFoamProvider* provider;
    std::vector<OFGroupPairs>* pairs;
    const DDPGeometrySpec* spec;
    std::size_t partCount;
    dvf::Failures* failures;
    Reading reading;

    void operator()(const dvf::IndexRange& range) const
    {
        OFPolymeshReader meshReader(reading);
        OFTriSurfaceReader surfaceReader(reading);
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            failures->guard(i, [&] {
                if (i < partCount) {
                    (void)provider->getGeometryForPart(i, meshReader, (*pairs)[i], *spec);
                } else {
                    (void)provider->getGeometryForTrisurface(i - partCount, surfaceReader, (*pairs)[i].front(), *spec);
                }
            });
        }
    }
};

void addPairs(std::size_t count, DDPGeometry* geometry, OFGroupPairs* pairs)
{
    pairs->resize(count);
    for (OFGroupPair& pair : *pairs) {
        pair.nodes = geometry->addNodeGroup();
        pair.elements = geometry->addElementGroup(pair.nodes->nodeGroupId());
    }
}

/// Makes all groups on the calling thread; later calls rely on their order.
std::vector<OFGroupPairs> makePairs(const OFReader& reader, DDPGeometry* geometry)
{
    const std::size_t partCount = reader.partCount();
    std::vector<OFGroupPairs> pairs(partCount + reader.sampledSurfaceCount());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        std::size_t count = 1;
        if (i < partCount) {
            count += reader.part(i).boundaries().size() + reader.part(i).faceZones().size();
        }
        addPairs(count, geometry, &pairs[i]);
    }
    return pairs;
}

void showElementsIn(int globalPartId, std::size_t elementCount, DDPElementGroup* group)
{
    const std::vector<int> partIds(elementCount, globalPartId);
    group->setElementPartIds(partIds.data(), partIds.size());
}

/// The cells of a zone that its part has; before the mesh is built, all cells in the file.
std::vector<int> cellsOfZone(const OFCellZone& zone, std::size_t elementCount)
{
    std::vector<int> cells = zone.cellIds();
    // guard: zone-cells
    std::erase_if(cells,
                  [elementCount](int cell) { return cell < 0 || static_cast<std::size_t>(cell) >= elementCount; });
    return cells;
}

} // namespace

bool OpenFoamProvider::getGeometry(const DDPGeometrySpec& spec, DDPGeometry* geometry)
{
    if (spec.geometrySelector() != 0) {
        return false;
    }
    std::vector<OFGroupPairs> pairs = makePairs(m_reader, geometry);
    const dvn::Timer timer;
    dvf::Failures failures(pairs.size());
    const OFReadPartMeshFunctor readMesh = {this, &pairs, &spec, m_reader.partCount(), &failures, m_reader.reading()};
    dvf::forLargeItems(pairs.size(), readMesh);
    failures.rethrowFirst();
    logInfo(dvn::Str(">>>> Get Geometry [Parallel] done. Total time used : %1").arg(timer.time()));
    OFLogger::get().printTrackedData();
    return true;
}

bool OpenFoamProvider::getGeometryForPart(const std::size_t& partIndex, OFPolymeshReader& reader, OFGroupPairs& pairs,
                                          const DDPGeometrySpec& /*spec*/)
{
    const dvn::Timer totalTimer;
    dvn::Timer lapTimer;
    OFPart& part = m_reader.part(partIndex);
    const dvn::Str folder = part.folder();
    // If the mesh cannot be read this time, counts of an earlier one would not fit its empty groups.
    part.setNodeCount(OFPart::UNKNOWN_COUNT);
    part.setElementCount(OFPart::UNKNOWN_COUNT);
    OFPolymesh polyMesh;
    if (!reader.read(folder, &polyMesh)) {
        return false;
    }
    logStep(" Get Part %1. polyReader.read() time [1] : %2 seconds", partIndex, lapTimer.lapTime());
    m_polyMeshFolder.set(reader.polyMeshFolder());

    // Patches and face zones come first: building the cells frees the faces of the mesh.
    OFPolymeshToDDP converter(&polyMesh);
    const dvn::Timer boundaryTimer;
    (void)generateBoundaryParts(part.boundaries(), pairs, converter);
    if (isExtended()) {
        for (OFBoundary& boundary : part.boundaries()) {
            boundary.computeFaceNormals(polyMesh.points());
        }
        coupleCyclicPatches(polyMesh, &part.boundaries());
    }
    logStep(" Get Part %1. BC creation %2 seconds", partIndex, boundaryTimer.time());
    (void)generateFaceZones(part.faceZones(), pairs, part.boundaries(), converter);
    if (!converter.createMesh()) {
        return false;
    }
    logStep(" Get Part %1. converter.createMesh() time [2] : %2 seconds", partIndex, lapTimer.lapTime());
    if (!deliverCells(part, converter, pairs.front())) {
        return false;
    }
    logStep(" Get Part %1. PopulateGroups [BC,FZ,CZ included] time [3] : %2", partIndex, lapTimer.lapTime());
    logInfo(dvn::Str(" Get Part %1. Nodes=%2, Elements=%3. Total time [read] + [convert] + [send] : %4")
                .arg(partIndex)
                .arg(part.nodeCount())
                .arg(part.elementCount())
                .arg(totalTimer.time()));
    return true;
}

bool OpenFoamProvider::deliverCells(OFPart& part, OFPolymeshToDDP& converter, const OFGroupPair& pair)
{
    std::size_t elementCount = 0;
    if (!converter.populateElementGroup(pair.elements, &elementCount)) {
        return false;
    }
    part.setElementCount(elementCount);
    std::size_t nodeCount = 0;
    if (!converter.populateNodeGroup(pair.nodes, &nodeCount)) {
        return false;
    }
    part.setNodeCount(nodeCount);
    generateCellZoneParts(&part, elementCount, pair.elements);
    if (m_makeNodeAverageResults) {
        part.setConnectivities(std::move(converter.connectivities()));
        part.setNodesCountPerElt(std::move(converter.nodesCountPerElt()));
    }
    return true;
}

bool OpenFoamProvider::generateBoundaryParts(std::vector<OFBoundary>& boundaries, OFGroupPairs& pairs,
                                             OFPolymeshToDDP& converter)
{
    if (boundaries.empty()) {
        return true;
    }
    const std::vector<std::size_t> faceCounts = converter.facesPerPatch(boundaries);
    // Each index writes only to its own patch and pair; the mesh is only read.
    const auto deliverPatches = [&](const dvf::IndexRange& range) {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            OFBoundary& boundary = boundaries[i];
            const OFGroupPair& pair = pairs[i + 1];
            std::size_t nodeCount = 0;
            std::size_t elementCount = 0;
            if (!converter.populateBoundaryGroup(boundary, pair.nodes, &nodeCount, pair.elements, &elementCount,
                                                 faceCounts[i])) {
                return;
            }
            boundary.setNodeCount(nodeCount);
            showElementsIn(boundary.geometryGlobalPartId(), elementCount, pair.elements);
        }
    };
    dvf::forLargeItems(boundaries.size(), deliverPatches);
    return true;
}

bool OpenFoamProvider::generateFaceZones(std::vector<OFFaceZone>& faceZones, OFGroupPairs& pairs,
                                         std::vector<OFBoundary>& boundaries, OFPolymeshToDDP& converter)
{
    if (faceZones.empty()) {
        return true;
    }
    const std::size_t firstPair = boundaries.size() + 1;
    // Each index writes only to its own pair; zones and mesh are only read.
    const auto deliverZones = [&](const dvf::IndexRange& range) {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            OFFaceZone& zone = faceZones[i];
            const OFGroupPair& pair = pairs[firstPair + i];
            std::size_t nodeCount = 0;
            std::size_t elementCount = 0;
            if (!converter.populateFaceZoneGroup(zone, pair.nodes, &nodeCount, pair.elements, &elementCount)) {
                return;
            }
            showElementsIn(zone.geometryGlobalPartId(), elementCount, pair.elements);
        }
    };
    dvf::forLargeItems(faceZones.size(), deliverZones);
    return true;
}

void OpenFoamProvider::generateCellZoneParts(OFPart* part, const std::size_t& elementCount, DDPElementGroup* group)
{
    if (part->cellZones().empty()) {
        return;
    }
    // Cells in no zone belong to the part itself, cells in several zones to the last of them.
    std::vector<int> partIds(elementCount, part->id());
    for (const OFCellZone& zone : part->cellZones()) {
        for (const int cell : cellsOfZone(zone, elementCount)) {
            partIds[static_cast<std::size_t>(cell)] = zone.geometryGlobalPartId();
        }
    }
    group->setElementPartIds(partIds.data(), partIds.size());
}

bool OpenFoamProvider::getGeometryForTrisurface(const std::size_t& surfaceIndex, OFTriSurfaceReader& reader,
                                                OFGroupPair& pair, const DDPGeometrySpec& /*spec*/)
{
    const dvn::Timer totalTimer;
    dvn::Timer lapTimer;
    OFSampledSurface& sampled = m_reader.sampledSurface(surfaceIndex);
    sampled.setNodeCount(0);
    sampled.setElementCount(0);
    sampled.setFaces({}, 0);
    OFTriSurface surface;
    if (!reader.read(sampled.folder(), &surface)) {
        return false;
    }
    logStep(" Get triSurface %1. surfaceReader.read() time [1] : %2 seconds", surfaceIndex, lapTimer.lapTime());
    std::size_t nodeCount = 0;
    std::size_t triangleCount = 0;
    if (isExtended()) {
        SurfaceFans fans = fansOf(surface.faces(), surface.nodeCount());
        sampled.setFaces(std::move(fans.faceOfTriangle), surface.faces().faceCount());
        surface.faces() = std::move(fans.triangles);
    }
    const OFTriSurfaceToDDP converter(&surface);
    if (!converter.populateNodeAndElementGroup(pair.nodes, pair.elements, &nodeCount, &triangleCount)) {
        return false;
    }
    showElementsIn(sampled.globalPartId(), triangleCount, pair.elements);
    sampled.setNodeCount(nodeCount);
    sampled.setElementCount(triangleCount);
    logStep(" Get surface sampled %1. PopulateGroups [SampledSurfaces] time [3] : %2", surfaceIndex,
            lapTimer.lapTime());
    logInfo(dvn::Str(" Get surface sampled %1. Nodes=%2, triangleCount=%3. Total time [read] + [convert] + [send] : %4")
                .arg(surfaceIndex)
                .arg(nodeCount)
                .arg(triangleCount)
                .arg(totalTimer.time()));
    return true;
}

bool OpenFoamProvider::getSet(std::int32_t setId, DDPSet* set)
{
    for (std::size_t i = 0; i < m_reader.partCount(); ++i) {
        const std::vector<OFCellZone>& zones = m_reader.part(i).cellZones();
        // Compatibility (docs/compatibility.md, "zone ids per part"): the first part that has the number wins.
        const auto zone = std::ranges::find(zones, setId, &OFCellZone::id);
        if (zone != zones.end()) {
            const std::vector<int> cells = cellsOfZone(*zone, m_reader.part(i).elementCount());
            set->addSetItems(0, i, cells.data(), cells.size());
            return true;
        }
    }
    return OFLogger::get().logError(PROVIDER_NAME, dvn::Str(" Get Set with id=%1 failure").arg(setId));
}
