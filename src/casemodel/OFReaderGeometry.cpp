// SPDX-License-Identifier: MIT
#include "casemodel/OFReader.h"
#include "casemodel/SampledSurfaceFolders.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <algorithm>
#include <utility>

namespace {

constexpr const char* DEFAULT_PART_NAME = "default_region";
constexpr const char* BOUNDARY_PROBLEM = "Cannot init Boundary. A parsing problem occurred in %1.";
constexpr const char* CELL_ZONES_PROBLEM = "Cannot init cell zones. A parsing problem occurred in %1.";

bool logProblem(const char* message, const dvn::Str& path)
{
    return OFLogger::get().logError(OFReader::LOG_SOURCE, dvn::Str(message).arg(path));
}

void logCount(const char* message, std::size_t count)
{
    OFLogger::get().logDebug(OFReader::LOG_SOURCE, dvn::Str(message).arg(count));
}

bool isProcessorFolder(const dvn::Str& name)
{
    return name.startsWith("processor");
}

bool existsPlainOrZipped(const dvn::Str& file)
{
    return OFUtilities::fileExists(file) || OFUtilities::fileExists(file + ".gz");
}

} // namespace

bool OFReader::initGeometry()
{
    m_simulationTitle = OFUtilities::fileNameFromPath(m_path);
    std::vector<dvn::Str> caseSubFolders;
    if (!listSubFolders(m_path, &caseSubFolders)) {
        // A decomposed case would open as one without a mesh, and no poll would correct that.
        return false;
    }
    if (isExtended()) {
        return initExtendedGeometry(caseSubFolders);
    }
    if (std::ranges::any_of(caseSubFolders, isProcessorFolder)) {
        // Always true: a processor folder that cannot be read only loses its own part.
        (void)initParallelGeometry(caseSubFolders);
        return true;
    }
    return initSerialGeometry(caseSubFolders);
}

bool OFReader::listSubFolders(const dvn::Str& folder, std::vector<dvn::Str>* names) const
{
    return isExtended() ? OFUtilities::listFoldersThroughLinks(folder, names)
                        : OFUtilities::listSubFolders(folder, names);
}

bool OFReader::hasMesh(const dvn::Str& folder) const
{
    return isExtended() ? OFUtilities::isFolder(folder + "/polyMesh") : OFUtilities::hasSubFolder(folder, "polyMesh");
}

bool OFReader::initParallelGeometry(std::vector<dvn::Str>& caseSubFolders)
{
    m_simulationDescription = "Parallel Simulation\n";
    int nextId = 1;
    for (const dvn::Str& name : caseSubFolders) {
        if (isProcessorFolder(name)) {
            addProcessorPart(name, &nextId);
        }
    }
    logCount("Parsed folder, registered %1 parts.", m_parts.size());
    return true;
}

void OFReader::addProcessorPart(const dvn::Str& name, int* nextId)
{
    const dvn::Str processorPath = m_path + "/" + name;
    const std::vector<dvn::Str> subFolders = OFUtilities::subFolders(processorPath);
    const auto withMesh = std::ranges::find_if(subFolders, [&](const dvn::Str& subFolder) {
        return OFUtilities::fileExists(processorPath + "/" + subFolder + "/polyMesh");
    });
    if (withMesh == subFolders.end()) {
        return;
    }
    const dvn::Str meshPath = processorPath + "/" + *withMesh + "/polyMesh";
    OFPart part((*nextId)++, name, meshPath);
    part.setDefaultRegion(false);
    // The other parts are worth showing even if one description file is damaged.
    (void)addBoundaries(part, meshPath + "/boundary", nextId);
    (void)addFaceZones(part, meshPath + "/faceZones", nextId);
    (void)addCellZones(part, meshPath + "/cellZones", nextId);
    m_parts.push_back(std::move(part));
}

bool OFReader::initSerialGeometry(const std::vector<dvn::Str>& caseSubFolders)
{
    const dvn::Str constantPath = m_path + "/constant";
    m_parts.clear();
    if (!OFUtilities::fileExists(constantPath)) {
        return logProblem("Cannot init geometry. Folder %1 does not exist.", constantPath);
    }
    m_simulationDescription = "Single Region\n";
    int nextId = 1;
    if (!addConstantMeshes(constantPath, &nextId)) {
        return false;
    }
    if (m_parts.empty() && std::ranges::count(caseSubFolders, dvn::Str("0")) != 0 && !addTimeZeroMesh(&nextId)) {
        return false;
    }
    // Compatibility (docs/compatibility.md, "description line end").
    m_simulationDescription = m_parts.size() >= 2 ? "Multi-Region Simulation\n" : "Single-Region Simulation";
    logCount("Parsed folder, registered %1 parts.", m_parts.size());
    addSampledSurfaces();
    return true;
}

bool OFReader::addConstantMeshes(const dvn::Str& constantPath, int* nextId)
{
    std::vector<dvn::Str> names;
    if (!listSubFolders(constantPath, &names)) {
        return false;
    }
    for (const dvn::Str& name : names) {
        const dvn::Str path = constantPath + "/" + name;
        if (name == dvn::Str("polyMesh")) {
            if (m_loadGlobalMesh && !addGlobalMesh(firstMesh(dvn::Str(), path), nextId)) {
                return false;
            }
        } else if (m_loadLocalMeshes && hasMesh(path)) {
            if (!addRegion(name, firstMesh(name, path + "/polyMesh"), nextId)) {
                return false;
            }
        }
    }
    return true;
}

bool OFReader::addGlobalMesh(const dvn::Str& meshPath, int* nextId)
{
    OFPart part((*nextId)++, DEFAULT_PART_NAME, meshPath);
    part.setDefaultRegion(true);
    if (!addBoundaries(part, meshPath + "/boundary", nextId)) {
        return logProblem(BOUNDARY_PROBLEM, meshPath + "/boundary");
    }
    if (!addFaceZones(part, meshPath + "/faceZones", nextId)) {
        return logProblem("Cannot init face zones. A parsing problem occurred in %1.", meshPath + "/faceZones");
    }
    if (!addCellZones(part, meshPath + "/cellZones", nextId)) {
        return logProblem(CELL_ZONES_PROBLEM, meshPath + "/cellZones");
    }
    m_parts.push_back(std::move(part));
    return true;
}

/// Compatibility (docs/compatibility.md, "regions without zones"): a region gets only patches, unless reading is
/// extended.
bool OFReader::addRegion(const dvn::Str& name, const dvn::Str& meshPath, int* nextId)
{
    OFPart part((*nextId)++, name, meshPath);
    if (!addBoundaries(part, meshPath + "/boundary", nextId)) {
        return logProblem(BOUNDARY_PROBLEM, meshPath + "/boundary");
    }
    if (isExtended()) {
        (void)addFaceZones(part, meshPath + "/faceZones", nextId);
        (void)addCellZones(part, meshPath + "/cellZones", nextId);
    }
    m_parts.push_back(std::move(part));
    return true;
}

/// The last resort, used whatever the mesh settings are. Compatibility (docs/compatibility.md, "time zero mesh"): the
/// part has the default region's name but is not marked as such, so its results are looked for in a sub-folder of that
/// name. Extended reading does neither.
bool OFReader::addTimeZeroMesh(int* nextId)
{
    const dvn::Str timeFolder = m_path + "/0";
    if (!hasMesh(timeFolder)) {
        return true;
    }
    OFPart part((*nextId)++, DEFAULT_PART_NAME, timeFolder + "/polyMesh");
    // Compatibility (docs/compatibility.md, "time zero mesh"): the "/" after the time is left out on purpose.
    const dvn::Str descriptions = isExtended() ? part.folder() : timeFolder + "polyMesh";
    part.setDefaultRegion(isExtended());
    if (!addBoundaries(part, descriptions + "/boundary", nextId)) {
        return logProblem(BOUNDARY_PROBLEM, timeFolder + "/polyMesh/boundary");
    }
    if (!addFaceZones(part, descriptions + "/faceZones", nextId)) {
        return logProblem("Cannot init face zone. A parsing problem occurred in %1.",
                          timeFolder + "/polyMesh/faceZones");
    }
    if (!addCellZones(part, descriptions + "/cellZones", nextId)) {
        return logProblem(CELL_ZONES_PROBLEM, timeFolder + "/polyMesh/cellZones");
    }
    m_parts.push_back(std::move(part));
    return true;
}

void OFReader::addSampledSurfaces()
{
    m_sampledSurfaces.clear();
    if (isExtended()) {
        m_sampledSurfaces = findSampledSurfaces(m_path);
        logCount("Parsed folder, registered %1 sampled Surfaces.", m_sampledSurfaces.size());
        return;
    }
    const dvn::Str root = sampledSurfaceRoot(m_path);
    if (!OFUtilities::fileExists(root)) {
        return;
    }
    // Compatibility (docs/compatibility.md, "surfaces of the first time"): "10" comes before "2".
    const std::vector<dvn::Str> times = OFUtilities::subFolders(root);
    // guard: first-time
    if (const auto first = std::min_element(times.begin(), times.end()); first != times.end()) {
        const dvn::Str folder = root + "/" + *first;
        for (const dvn::Str& name : OFUtilities::subFolders(folder)) {
            const int id = static_cast<int>(m_sampledSurfaces.size()) + 1;
            m_sampledSurfaces.emplace_back(id, name, folder + "/" + name);
        }
    }
    logCount("Parsed folder, registered %1 sampled Surfaces.", m_sampledSurfaces.size());
}

bool OFReader::addBoundaries(OFPart& part, const dvn::Str& file, int* nextId)
{
    if (!m_loadBoundaries || !existsPlainOrZipped(file)) {
        return true;
    }
    std::vector<OFBoundary>& boundaries = part.boundaries();
    if (!m_files->readBoundary(file, boundaries, static_cast<std::size_t>(part.id()))) {
        // The patches of a half-read list have no ids yet.
        boundaries.clear();
        return logProblem("Cannot init geometry. Boundary File/Folder %1 does not exist.", file);
    }
    filterBoundariesPartByName(part);
    filterBoundariesWithZeroFaceCount(part);
    // Numbered last, so that dropped patches leave no gaps.
    for (std::size_t i = 0; i < boundaries.size(); ++i) {
        boundaries[i].setBoundaryId(static_cast<int>(i) + 1);
    }
    *nextId += static_cast<int>(boundaries.size());
    return true;
}

bool OFReader::addFaceZones(OFPart& part, const dvn::Str& file, int* nextId)
{
    if (!m_loadFaceZones || !existsPlainOrZipped(file)) {
        return true;
    }
    const bool isRead = m_files->readFaceZones(file, part.faceZones(), static_cast<std::size_t>(part.id()));
    // Zones read before the file broke off stay, so their ids are taken either way.
    *nextId += static_cast<int>(part.faceZones().size());
    return isRead || logProblem("Cannot init geometry. faceZones File/Folder %1 does not exist.", file);
}

bool OFReader::addCellZones(OFPart& part, const dvn::Str& file, int* nextId)
{
    if (!m_loadCellZones || !existsPlainOrZipped(file)) {
        return true;
    }
    const bool isRead = m_files->readCellZones(file, part.cellZones(), static_cast<std::size_t>(part.id()));
    // Zones read before the file broke off stay, so their ids are taken either way.
    *nextId += static_cast<int>(part.cellZones().size());
    return isRead || logProblem("Cannot init geometry. CellZones File/Folder %1 does not exist.", file);
}

bool OFReader::filterBoundariesPartByName(OFPart& part)
{
    if (m_hideProcessorInterfaces) {
        std::erase_if(part.boundaries(),
                      [](const OFBoundary& boundary) { return boundary.patchName().startsWith("procBoundary"); });
    }
    return true;
}

bool OFReader::filterBoundariesWithZeroFaceCount(OFPart& part)
{
    std::erase_if(part.boundaries(), [](const OFBoundary& boundary) { return boundary.faceCount() == 0; });
    return true;
}
