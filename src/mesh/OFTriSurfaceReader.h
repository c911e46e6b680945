// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/Reading.h"
#include "mesh/OFTriSurface.h"

#include <vector>

/// Reads the three list files of a sampled surface. Whether they have a `FoamFile` block depends on the tool that wrote
/// them. A missing or malformed file leaves a line in the log.
class OFTriSurfaceReader
{
public:
    /// In extended reading the centres of faces, which nobody needs, are not read and may be missing.
    explicit OFTriSurfaceReader(Reading reading = Reading::Plain) : m_reading(reading) {}

    /// Reads the surface of a folder.
    /// @return false if one of the files cannot be read; the surface then holds the others
    bool read(const dvn::Str& folder, OFTriSurface* surface);

    /// Reads the three files at the same time.
    bool readTriSurfacePar(const dvn::Str& folder, OFTriSurface* surface);
    /// Reads the three files one after the other and stops at the first failure.
    bool readTriSurfaceSeq(const dvn::Str& folder, OFTriSurface* surface);

    bool readPoints(const dvn::Str& folder, std::vector<double>* points);
    bool readFaceCenters(const dvn::Str& folder, std::vector<double>* facecenters);
    bool readFaces(const dvn::Str& folder, FacesData* faces);

private:
    bool hasHeader(const dvn::Str& path) const;
    bool readVectors(const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values) const;

    Reading m_reading;
};
