// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "records/OFBoundary.h"
#include "records/OFCellZone.h"
#include "records/OFFaceZone.h"

#include <cstddef>
#include <map>
#include <vector>

/// The small files of a case, read by OpenFOAM's own grammar: any layout of lines, comments, macros, includes.
///
/// What cannot be read is left out, with a line in the log: a damaged description must not cost the user the mesh. So
/// each is false only if the file cannot be opened. Names in headers are not compared.
namespace ExtendedDescription {

/// Reads the entries of a dictionary. A value is its words with one blank between them; blocks are left out.
bool readDictionary(const dvn::Str& path, const dvn::Str& objectName, std::map<dvn::Str, dvn::Str>* entries);
/// Reads the patches of a `boundary` file, with their groups, whether or not it states their number.
bool readBoundary(const dvn::Str& path, std::vector<OFBoundary>& boundaries, std::size_t partId);
/// Reads all zones of a `faceZones` file, with their flips.
bool readFaceZones(const dvn::Str& path, std::vector<OFFaceZone>& zones, std::size_t partId);
/// Reads the zones of a `cellZones` file that have cells, and numbers them from 1.
bool readCellZones(const dvn::Str& path, std::vector<OFCellZone>& zones, std::size_t partId);

} // namespace ExtendedDescription
