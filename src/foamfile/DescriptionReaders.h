// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/Reading.h"
#include "records/OFBoundary.h"
#include "records/OFCellZone.h"
#include "records/OFFaceZone.h"

#include <cstddef>
#include <map>
#include <vector>

/// The readers of the small files that describe a case, one set for each way of reading. A catalogue picks its set
/// once.
///
/// Every path is that of the plain file; one with ".gz" is opened instead if it is there.
struct DescriptionReaders
{
    using Entries = std::map<dvn::Str, dvn::Str>;

    /// Reads the keys and values of a dictionary such as `controlDict`.
    bool (*readDictionary)(const dvn::Str& path, const dvn::Str& objectName, Entries* entries);
    /// Reads the patches of a `boundary` file.
    bool (*readBoundary)(const dvn::Str& path, std::vector<OFBoundary>& boundaries, std::size_t partId);
    /// Reads the zones of a `faceZones` file.
    bool (*readFaceZones)(const dvn::Str& path, std::vector<OFFaceZone>& zones, std::size_t partId);
    /// Reads the zones of a `cellZones` file that have cells.
    bool (*readCellZones)(const dvn::Str& path, std::vector<OFCellZone>& zones, std::size_t partId);

    /// The set for a way of reading. The plain ones behave as the operations of `OFFile` do.
    static const DescriptionReaders& of(Reading reading);
};
