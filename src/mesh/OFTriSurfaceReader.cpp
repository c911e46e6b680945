// SPDX-License-Identifier: MIT
#include "mesh/OFTriSurfaceReader.h"

#include "LibCore/Parallel.h"
#include "foamfile/OFFile.h"
#include "foamfile/SurfaceValues.h"
#include "mesh/ListFile.h"

namespace {

constexpr const char* SURFACE_LOG_GROUP = "OFTriSurfaceReader";
/// Compatibility (docs/compatibility.md, "log source spelling").
constexpr const char* CENTERS_LOG_GROUP = "OFTriSUrfaceReader";

} // namespace

bool OFTriSurfaceReader::hasHeader(const dvn::Str& path) const
{
    return m_reading == Reading::Extended ? SurfaceValues::hasHeader(path) : OFFile::hasFoamBlock(path);
}

bool OFTriSurfaceReader::readVectors(const dvn::Str& path, const dvn::Str& objectName,
                                     std::vector<double>* values) const
{
    OFFile file(hasHeader(path), m_reading);
    return file.readVectorField(path, objectName, values);
}

bool OFTriSurfaceReader::read(const dvn::Str& folder, OFTriSurface* surface)
{
    return readTriSurfacePar(folder, surface);
}

bool OFTriSurfaceReader::readTriSurfacePar(const dvn::Str& folder, OFTriSurface* surface)
{
    // Separate objects: tasks that end together must not write to one word.
    bool hasPoints = false;
    bool hasCenters = false;
    bool hasFaces = false;
    dvf::invokeAll(
        [&] { hasPoints = readPoints(folder, &surface->points()); },
        [&] { hasCenters = m_reading == Reading::Extended || readFaceCenters(folder, &surface->facecenters()); },
        [&] { hasFaces = readFaces(folder, &surface->faces()); });
    return hasPoints && hasCenters && hasFaces;
}

bool OFTriSurfaceReader::readTriSurfaceSeq(const dvn::Str& folder, OFTriSurface* surface)
{
    const dvn::Timer timer;
    if (!readPoints(folder, &surface->points()) ||
        (m_reading == Reading::Plain && !readFaceCenters(folder, &surface->facecenters())) ||
        !readFaces(folder, &surface->faces())) {
        return false;
    }
    // Compatibility (docs/compatibility.md, "log source spelling"): group and wording are those of a mesh.
    OFLogger::get().logDebug("OFPolymeshReader",
                             dvn::Str(">>> Polymesh reading done (sequential). Time used : %1").arg(timer.time()));
    return true;
}

bool OFTriSurfaceReader::readPoints(const dvn::Str& folder, std::vector<double>* points)
{
    const dvn::Timer timer;
    return readVectors(folder + "/points", "points", points) &&
           logListRead(SURFACE_LOG_GROUP, "Points file done. Read %1 items. Time used : %2", points->size(), timer);
}

bool OFTriSurfaceReader::readFaceCenters(const dvn::Str& folder, std::vector<double>* facecenters)
{
    const dvn::Timer timer;
    return readVectors(folder + "/faceCentres", "faceCentres", facecenters) &&
           logListRead(CENTERS_LOG_GROUP, "FaceCentres file done. Read %1 items. Time used : %2", facecenters->size(),
                       timer);
}

bool OFTriSurfaceReader::readFaces(const dvn::Str& folder, FacesData* faces)
{
    const dvn::Timer timer;
    const dvn::Str path = folder + "/faces";
    OFFile file(hasHeader(path), m_reading);
    return file.readFaceList(path, "faces", faces) &&
           logListRead(SURFACE_LOG_GROUP, "Faces file done. Read %1 items. Time used : %2", faces->faceCount(), timer);
}
