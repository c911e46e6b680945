// SPDX-License-Identifier: MIT
#include "foamfile/DescriptionReaders.h"

#include "foamfile/ExtendedDescription.h"
#include "foamfile/OFFile.h"

namespace {

constexpr DescriptionReaders PLAIN = {
    .readDictionary =
        [](const dvn::Str& path, const dvn::Str& objectName, DescriptionReaders::Entries* entries) {
            return OFFile(true).readDictionary(path, objectName, entries);
        },
    .readBoundary = [](const dvn::Str& path, std::vector<OFBoundary>& boundaries,
                       std::size_t partId) { return OFFile(true).readBoundary(path, "boundary", boundaries, partId); },
    .readFaceZones = [](const dvn::Str& path, std::vector<OFFaceZone>& zones,
                        std::size_t partId) { return OFFile(true).readFaceZones(path, "faceZones", zones, partId); },
    .readCellZones = [](const dvn::Str& path, std::vector<OFCellZone>& zones,
                        std::size_t partId) { return OFFile(true).readCellZones(path, "cellZones", zones, partId); }};

constexpr DescriptionReaders EXTENDED = {.readDictionary = ExtendedDescription::readDictionary,
                                         .readBoundary = ExtendedDescription::readBoundary,
                                         .readFaceZones = ExtendedDescription::readFaceZones,
                                         .readCellZones = ExtendedDescription::readCellZones};

} // namespace

const DescriptionReaders& DescriptionReaders::of(Reading reading)
{
    return reading == Reading::Extended ? EXTENDED : PLAIN;
}
