// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshReader.h"

#include "LibCore/Parallel.h"
#include "foamfile/LabelList.h"
#include "foamfile/OFFile.h"
#include "mesh/ListFile.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {

constexpr const char* MESH_LOG_GROUP = "OFPolymeshReader";
constexpr const char* NEIGHBOUR_FILE = "/neighbour";
constexpr const char* OWNER_FILE = "/owner";

/// True if the header of a list has every entry that the readers need except the note with the counts.
bool lacksOnlyNote(const dvn::Str& path)
{
    OFFile file(true);
    if (!file.open(path)) {
        return false;
    }
    const auto& header = file.headerMap();
    return header.count("object") != 0 && header.count("class") != 0 && header.count("note") == 0;
}

/// One more than the largest label, as each cell owns a face or neighbours one. Without a label there is no cell.
int cellsNamed(const std::vector<int>& labels)
{
    const auto largest = std::ranges::max_element(labels);
    return largest == labels.end() || *largest < 0 ? 0 : std::min(*largest, std::numeric_limits<int>::max() - 1) + 1;
}

} // namespace

bool OFPolymeshReader::read(const dvn::Str& folder, OFPolymesh* mesh)
{
    m_polyMeshFolder = folder;
    // One reader serves several parts: one whose owners cannot be read must not get the count of the previous one.
    m_cellCount = 0;
    (void)readPolymeshPar(folder, mesh); // cannot fail
    return true;
}

bool OFPolymeshReader::readPolymeshPar(const dvn::Str& folder, OFPolymesh* mesh)
{
    const dvn::Timer timer;
    const auto task = [&](OFPolymeshReadFunctor::Kind kind) {
        return OFPolymeshReadFunctor{this,           kind,           folder, &mesh->points(), &mesh->neighbors(),
                                     &mesh->faces(), &mesh->owners()};
    };
    dvf::invokeAll(task(OFPolymeshReadFunctor::POINTS), task(OFPolymeshReadFunctor::NEIGHBORS),
                   task(OFPolymeshReadFunctor::FACES), task(OFPolymeshReadFunctor::OWNERS));
    setCellCount(mesh);
    const double seconds = timer.time();
    OFLogger::get().logDebug(MESH_LOG_GROUP,
                             dvn::Str(">>> Polymesh reading done (parallel). Time used : %1").arg(seconds));
    OFLogger::get().track("A Read Points,Faces..", seconds);
    return true;
}

bool OFPolymeshReader::readPolymeshSeq(const dvn::Str& folder, OFPolymesh* mesh)
{
    const dvn::Timer timer;
    if (!readPoints(folder, &mesh->points()) || !readNeighbors(folder, &mesh->neighbors()) ||
        !readFaces(folder, &mesh->faces()) || !readOwners(folder, &mesh->owners())) {
        return false;
    }
    if (mesh->owners().size() != mesh->faces().faceCount()) {
        return OFLogger::get().logError(
            MESH_LOG_GROUP,
            dvn::Str("Cannot read part polyMesh in folder %1. Invalid number of face owners, it is not equal "
                     "to the number of faces.")
                .arg(folder));
    }
    OFLogger::get().logDebug(MESH_LOG_GROUP,
                             dvn::Str(">>> Polymesh reading done (sequential). Time used : %1").arg(timer.time()));
    setCellCount(mesh);
    return true;
}

void OFPolymeshReader::setCellCount(OFPolymesh* mesh) const
{
    mesh->setCellCount(m_cellCount == LabelList::UNKNOWN_CELL_COUNT
                           ? std::max(cellsNamed(mesh->owners()), cellsNamed(mesh->neighbors()))
                           : m_cellCount);
}

bool OFPolymeshReader::readPoints(const dvn::Str& folder, std::vector<double>* points)
{
    const dvn::Timer timer;
    OFFile file(true, m_reading);
    // Compatibility (docs/compatibility.md, "points counted in doubles").
    return file.readVectorField(folder + "/points", "points", points) &&
           logListRead(MESH_LOG_GROUP, "Points file done. Read %1 items. Time used : %2", points->size(), timer);
}

bool OFPolymeshReader::readNeighbors(const dvn::Str& folder, std::vector<int>* neighbors)
{
    const dvn::Timer timer;
    OFFile file(true, m_reading);
    int unusedCellCount = 0;
    return file.readLabelList(folder + NEIGHBOUR_FILE, "neighbour", neighbors, &unusedCellCount) &&
           logListRead(MESH_LOG_GROUP, "Neighbours file done. Read %1 items. Time used : %2", neighbors->size(), timer);
}

bool OFPolymeshReader::readFaces(const dvn::Str& folder, FacesData* faces)
{
    const dvn::Timer timer;
    OFFile file(true, m_reading);
    return file.readFaceList(folder + "/faces", "faces", faces) &&
           logListRead(MESH_LOG_GROUP, "Faces file done. Read %1 items. Time used : %2", faces->faceCount(), timer);
}

bool OFPolymeshReader::readOwners(const dvn::Str& folder, std::vector<int>* owners)
{
    const dvn::Timer timer;
    OFFile file(true, m_reading);
    return file.readLabelList(folder + OWNER_FILE, "owner", owners, &m_cellCount) &&
           logListRead(MESH_LOG_GROUP, "Owners file done. Read %1 items. Time used : %2", owners->size(), timer);
}

void OFPolymeshReadFunctor::operator()() const
{
    // The results are dropped: the mesh is built from the files that could be read.
    switch (kind) {
    case POINTS:
        (void)reader->readPoints(folder, points);
        break;
    case NEIGHBORS:
        readLabels(folder + NEIGHBOUR_FILE, &OFPolymeshReader::readNeighbors, neighbors);
        break;
    case FACES:
        (void)reader->readFaces(folder, faces);
        break;
    case OWNERS:
        readLabels(folder + OWNER_FILE, &OFPolymeshReader::readOwners, owners);
        break;
    default:
        break;
    }
}

/// Reads owners or neighbours, and goes on without them if their header has no note. Tools other than the solvers leave
/// it out, and one such mesh must not cost the host the whole case. If more is missing, the exception passes through.
void OFPolymeshReadFunctor::readLabels(const dvn::Str& path,
                                       bool (OFPolymeshReader::*read)(const dvn::Str&, std::vector<int>*),
                                       std::vector<int>* labels) const
{
    try {
        (void)(reader->*read)(folder, labels);
    } catch (const std::out_of_range&) {
        if (!lacksOnlyNote(path)) {
            throw;
        }
        (void)OFLogger::get().logError("OFFile", dvn::Str(LabelList::NO_CELL_COUNT).arg(path));
    }
}
