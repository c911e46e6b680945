// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListHeader.h"
#include "records/OFCellZone.h"
#include "records/OFFaceZone.h"

#include <cstddef>
#include <vector>

/// The `cellZones` and `faceZones` files of a mesh: a name line and a brace block for each zone, with the labels of its
/// members and, for faces, their flips.
///
/// On failure the zones read whole remain; the broken one and those after it are dropped.
namespace Zones {

/// Reads the zones that have cells. See `OFFile::readCellZones`.
bool readCellZones(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<OFCellZone>& zones,
                   std::size_t partId);
/// Reads all face zones. See `OFFile::readFaceZones`.
bool readFaceZones(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<OFFaceZone>& zones,
                   std::size_t partId);

} // namespace Zones
