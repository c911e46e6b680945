// SPDX-License-Identifier: MIT
#include "casemodel/OFResultReader.h"

#include "DvnCore/Timer.h"
#include "foamfile/OFFile.h"
#include "foamfile/OFLogger.h"

#include <cstddef>

namespace {

std::size_t totalSize(const std::vector<std::vector<double>>& arrays)
{
    std::size_t size = 0;
    for (const std::vector<double>& array : arrays) {
        size += array.size();
    }
    return size;
}

void store(bool* target, bool value)
{
    if (target != nullptr) {
        *target = value;
    }
}

} // namespace

OFFieldFile fieldFile(const dvn::Str& folder, const OFResult& result)
{
    return {folder, result.nativeName(), result.className(), result.dimension()};
}

bool OFResultReader::readValues(const OFFieldFile& field, std::vector<double>* values) const
{
    return readFile(true, field, values, nullptr);
}

bool OFResultReader::readNonHeaderValues(const OFFieldFile& field, std::vector<double>* values,
                                         bool* isInteriorRead) const
{
    return readFile(false, field, values, isInteriorRead);
}

bool OFResultReader::readFile(bool hasHeader, const OFFieldFile& field, std::vector<double>* values,
                              bool* isInteriorRead) const
{
    const dvn::Timer timer;
    OFFile file(hasHeader);
    const bool isRead =
        file.readResult(field.folder + "/" + field.nativeName, field.nativeName, field.className, values);
    store(isInteriorRead, file.interiorWasRead());
    if (!isRead) {
        return false;
    }
    OFLogger::get().logInfo(LOG_SOURCE, dvn::Str("Result %1 file done. Read %2 items. Time used : %3")
                                            .arg(field.nativeName)
                                            .arg(values->size())
                                            .arg(timer.time()));
    return true;
}

bool OFResultReader::readValuesForCellAndBoundaries(const OFFieldFile& field, std::vector<double>* cellValues,
                                                    const std::vector<OFBoundary>& boundaries,
                                                    std::vector<std::vector<double>>& boundaryValues,
                                                    bool* isInteriorRead) const
{
    const dvn::Timer timer;
    OFFile file(true);
    const bool isRead = file.readValuesOfCellAndBoundaries(field.folder + "/" + field.nativeName, field.nativeName,
                                                           field.className, cellValues, boundaries, boundaryValues);
    store(isInteriorRead, file.interiorWasRead());
    if (!isRead) {
        return false;
    }
    OFLogger::get().logInfo(LOG_SOURCE,
                            dvn::Str("Result %1 file done. Read %2 cellItems. Read %3 boundary patches containing %4 "
                                     "boundaryItems. Time used : %5")
                                .arg(field.nativeName)
                                .arg(cellValues->size())
                                .arg(boundaries.size())
                                .arg(totalSize(boundaryValues))
                                .arg(timer.time()));
    return true;
}
