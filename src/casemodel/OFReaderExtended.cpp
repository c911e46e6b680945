// SPDX-License-Identifier: MIT
//
// Extended reading of a case: decomposed cases in both layouts, with regions, beside a mesh that was put together
// again.

#include "casemodel/OFReader.h"

#include "foamfile/ExtendedField.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <algorithm>
#include <set>

namespace {

constexpr const char* PROCESSOR = "processor";

/// The number of a processor's folder; -1 for any other folder.
int processorNumber(const dvn::Str& folder)
{
    const std::string name = folder.toUtf8();
    const std::size_t digits = std::string_view(PROCESSOR).size();
    const bool isProcessor = name.starts_with(PROCESSOR) && name.size() > digits &&
                             name.find_first_not_of("0123456789", digits) == std::string::npos;
    return isProcessor ? dvn::Str(name.substr(digits)).toInt(-1) : -1;
}

/// The processors' folders in the order of their numbers.
std::vector<dvn::Str> processorsIn(const std::vector<dvn::Str>& folders)
{
    std::vector<dvn::Str> processors;
    std::ranges::copy_if(folders, std::back_inserter(processors),
                         [](const dvn::Str& folder) { return processorNumber(folder) >= 0; });
    std::ranges::stable_sort(processors, {}, processorNumber);
    return processors;
}

/// Sub-folders in order, through links; those read so far if the folder cannot be listed.
std::vector<dvn::Str> foldersIn(const dvn::Str& folder)
{
    std::vector<dvn::Str> names;
    (void)OFUtilities::listFoldersThroughLinks(folder, &names);
    return names;
}

std::vector<dvn::Str> timesIn(const dvn::Str& folder)
{
    std::vector<dvn::Str> names = foldersIn(folder);
    std::erase_if(names, [](const dvn::Str& name) { return !OFUtilities::isTimeName(name); });
    std::ranges::sort(names, {}, [](const dvn::Str& name) { return name.toDouble(); });
    return names;
}

/// A folder may hold only the points, of a mesh that moves.
bool isWholeMesh(const dvn::Str& meshFolder)
{
    return OFUtilities::isRegularFileOrGz(meshFolder + "/faces") &&
           OFUtilities::isRegularFileOrGz(meshFolder + "/points") &&
           OFUtilities::isRegularFileOrGz(meshFolder + "/owner");
}

bool holdsFields(const dvn::Str& folder)
{
    return std::ranges::any_of(OFUtilities::filesInFolder(folder), [](const dvn::Str& file) {
        ExtendedField::Header header;
        return ExtendedField::readHeader(file, &header) && ExtendedField::kindOfClass(header.className).has_value();
    });
}

} // namespace

bool OFReader::initExtendedGeometry(const std::vector<dvn::Str>& caseSubFolders)
{
    for (const dvn::Str& folder : caseSubFolders) {
        if (folder.startsWith("processors")) {
            m_notes.omissions.tell("collated files", m_path + "/" + folder,
                                   "Write them with the file handler 'uncollated' to see them.");
        }
    }
    m_parts.clear();
    int nextId = 1;
    for (const dvn::Str& processor : processorsIn(caseSubFolders)) {
        addPieces(processor, &nextId);
    }
    if (m_parts.empty()) {
        return initSerialGeometry(caseSubFolders);
    }
    m_simulationDescription = "Parallel Simulation\n";
    if (wasReconstructed(caseSubFolders)) {
        // The pieces are worth showing even if the whole mesh is not.
        (void)addConstantMeshes(m_path + "/constant", &nextId);
    }
    OFLogger::get().logDebug(LOG_SOURCE, dvn::Str("Parsed folder, registered %1 parts.").arg(m_parts.size()));
    addSampledSurfaces();
    return true;
}

void OFReader::addPieces(const dvn::Str& processor, int* nextId)
{
    const dvn::Str folder = m_path + "/" + processor;
    // The mesh is in `constant`, or in a time if a tool was told to write it there.
    std::vector<dvn::Str> candidates = timesIn(folder);
    const bool isInFirstTime = !candidates.empty() && isWholeMesh(folder + "/" + candidates.front() + "/polyMesh");
    candidates.insert(candidates.begin() + (isInFirstTime ? 1 : 0), "constant");
    const auto withMesh =
        std::ranges::find_if(candidates, [&](const dvn::Str& name) { return hasMesh(folder + "/" + name); });
    if (withMesh != candidates.end()) {
        addPiece(processor, dvn::Str(), folder + "/" + *withMesh + "/polyMesh", nextId);
    }
    for (const dvn::Str& region : foldersIn(folder + "/constant")) {
        const dvn::Str regionFolder = folder + "/constant/" + region;
        if (hasMesh(regionFolder)) {
            addPiece(processor, region, regionFolder + "/polyMesh", nextId);
        }
    }
}

void OFReader::addPiece(const dvn::Str& processor, const dvn::Str& region, const dvn::Str& meshPath, int* nextId)
{
    OFPart part((*nextId)++, region.isEmpty() ? processor : processor + "/" + region, meshPath);
    part.setPiece(processor, region);
    (void)addBoundaries(part, meshPath + "/boundary", nextId);
    (void)addFaceZones(part, meshPath + "/faceZones", nextId);
    (void)addCellZones(part, meshPath + "/cellZones", nextId);
    m_parts.push_back(std::move(part));
}

/// The mesh that a case starts with: in extended reading one in the first time folder comes before that in `constant`,
/// as it does for solvers. Tools that change a mesh write it there.
dvn::Str OFReader::firstMesh(const dvn::Str& region, const dvn::Str& constantMesh) const
{
    const std::vector<dvn::Str> times = isExtended() ? timesIn(m_path) : std::vector<dvn::Str>();
    if (times.empty()) {
        return constantMesh;
    }
    const dvn::Str mesh = m_path + "/" + times.front() + (region.isEmpty() ? region : "/" + region) + "/polyMesh";
    return isWholeMesh(mesh) ? mesh : constantMesh;
}

/// Whether the whole mesh has results of its own, beside those of its pieces. The first time does not count: its fields
/// are those that the case was decomposed from.
bool OFReader::wasReconstructed(const std::vector<dvn::Str>& caseSubFolders) const
{
    std::vector<dvn::Str> times = caseSubFolders;
    addTimesOfPieces(&times);
    std::erase_if(times, [](const dvn::Str& name) { return !OFUtilities::isTimeName(name); });
    std::ranges::sort(times, {}, [](const dvn::Str& name) { return name.toDouble(); });
    std::vector<dvn::Str> regions = foldersIn(m_path + "/constant");
    std::erase_if(regions, [&](const dvn::Str& name) { return !hasMesh(m_path + "/constant/" + name); });
    return std::any_of(times.begin() + (times.empty() ? 0 : 1), times.end(), [&](const dvn::Str& time) {
        const dvn::Str folder = m_path + "/" + time;
        return holdsFields(folder) ||
               std::ranges::any_of(regions, [&](const dvn::Str& region) { return holdsFields(folder + "/" + region); });
    });
}

/// Adds the times that only the pieces have, since a parallel run writes no others.
void OFReader::addTimesOfPieces(std::vector<dvn::Str>* names) const
{
    std::set<dvn::Str> known(names->begin(), names->end());
    for (const dvn::Str& processor : processorsIn(*names)) {
        for (const dvn::Str& time : timesIn(m_path + "/" + processor)) {
            if (known.insert(time).second) {
                names->push_back(time);
            }
        }
    }
}

/// All folders that may hold fields of a time. Of the pieces of a region only the first one with that time counts,
/// because solvers write the same fields for all of them and a case may have thousands.
std::vector<dvn::Str> OFReader::fieldFolders(const dvn::Str& timeName) const
{
    const dvn::Str timeFolder = m_path + "/" + timeName;
    std::vector<dvn::Str> folders;
    if (m_parts.empty()) {
        folders.push_back(timeFolder);
    }
    std::set<dvn::Str> doneRegions;
    for (const OFPart& part : m_parts) {
        if (part.isPiece() && doneRegions.contains(part.pieceRegion())) {
            continue;
        }
        for (const dvn::Str& folder : part.timeFolders(timeFolder)) {
            if (OFUtilities::isFolder(folder)) {
                folders.push_back(folder);
                if (part.isPiece()) {
                    doneRegions.insert(part.pieceRegion());
                }
            }
        }
    }
    return folders;
}
