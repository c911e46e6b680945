// SPDX-License-Identifier: MIT
#include "casemodel/OFResultReader.h"

#include "DvnCore/Timer.h"
#include "foamfile/ExtendedField.h"
#include "foamfile/OFFile.h"
#include "foamfile/OFLogger.h"

#include <cstddef>
#include <optional>

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

void logRead(const OFFieldFile& field, std::size_t valueCount, const std::vector<std::vector<double>>& patchValues,
             const dvn::Timer& timer)
{
    OFLogger::get().logInfo(OFResultReader::LOG_SOURCE,
                            dvn::Str("Result %1 file done. Read %2 cellItems. Read %3 boundary patches containing %4 "
                                     "boundaryItems. Time used : %5")
                                .arg(field.nativeName)
                                .arg(valueCount)
                                .arg(patchValues.size())
                                .arg(totalSize(patchValues))
                                .arg(timer.time()));
}

} // namespace

OFFieldFile fieldFile(const dvn::Str& folder, const OFResult& result)
{
    return {folder, result.nativeName(), result.className(), result.dimension()};
}

bool OFResultReader::readValues(const OFFieldFile& field, std::vector<double>* values) const
{
    if (m_reading == Reading::Extended) {
        std::vector<std::vector<double>> noPatches;
        return readExtended(field, values, {}, noPatches);
    }
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
    if (m_reading == Reading::Extended) {
        const bool isGood = readExtended(field, cellValues, boundaries, boundaryValues);
        store(isInteriorRead, isGood);
        return isGood;
    }
    const dvn::Timer timer;
    OFFile file(true);
    const bool isRead = file.readValuesOfCellAndBoundaries(field.folder + "/" + field.nativeName, field.nativeName,
                                                           field.className, cellValues, boundaries, boundaryValues);
    store(isInteriorRead, file.interiorWasRead());
    if (!isRead) {
        return false;
    }
    logRead(field, cellValues->size(), boundaryValues, timer);
    return true;
}

bool OFResultReader::readExtended(const OFFieldFile& field, std::vector<double>* values,
                                  const std::vector<OFBoundary>& boundaries,
                                  std::vector<std::vector<double>>& boundaryValues) const
{
    const dvn::Timer timer;
    const OFResultMapping mapping = field.className.startsWith("point") ? OFResultOnNode : OFResultOnCell;
    if (!ExtendedField::read(field.folder + "/" + field.nativeName,
                             {mapping, field.dimension, values, &boundaries, &boundaryValues})) {
        return false;
    }
    logRead(field, values->size(), boundaryValues, timer);
    return true;
}
