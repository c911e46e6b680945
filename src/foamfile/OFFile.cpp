// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "foamfile/Dictionary.h"
#include "foamfile/FaceList.h"
#include "foamfile/FieldInterior.h"
#include "foamfile/LabelList.h"
#include "foamfile/ListHeader.h"
#include "foamfile/OFLogger.h"
#include "foamfile/VectorList.h"
#include "foamfile/Zones.h"

#include <string_view>

OFFile::OFFile(bool hasHeader, Reading reading) : m_file(std::make_unique<FoamFile>())
{
    m_file->hasHeader = hasHeader;
    m_file->reading = reading;
}

OFFile::~OFFile() = default;

TextSource& OFFile::text() const
{
    return m_file->text;
}

bool OFFile::hasFoamBlock(const dvn::Str& path)
{
    FoamFile file;
    file.hasHeader = false;
    return file.open(path) && file.hasBlock();
}

bool OFFile::open(const dvn::Str& path)
{
    return m_file->open(path);
}

void OFFile::close()
{
    text().close();
}

const std::map<std::string, std::string>& OFFile::headerMap() const
{
    return m_file->header.entries();
}

bool OFFile::readLabelList(const dvn::Str& path, const dvn::Str& objectName, std::vector<int>* labels, int* cellCount)
{
    return LabelList::readFile(*m_file, path, objectName, labels, cellCount);
}

bool OFFile::readVectorField(const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values)
{
    return VectorList::readFile(*m_file, path, objectName, values);
}

bool OFFile::readFaceList(const dvn::Str& path, const dvn::Str& objectName, FacesData* faces)
{
    return FaceList::readFile(*m_file, path, objectName, faces);
}

bool OFFile::readDictionary(const dvn::Str& path, const dvn::Str& objectName, std::map<dvn::Str, dvn::Str>* entries)
{
    return Dictionary::readFile(*m_file, path, objectName, entries);
}

bool OFFile::readBoundary(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFBoundary>& boundaries,
                          std::size_t partId)
{
    return Dictionary::readBoundary(*m_file, path, objectName, boundaries, partId);
}

bool OFFile::readCellZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFCellZone>& zones,
                           std::size_t partId)
{
    return Zones::readCellZones(*m_file, path, objectName, zones, partId);
}

bool OFFile::readFaceZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFFaceZone>& zones,
                           std::size_t partId)
{
    return Zones::readFaceZones(*m_file, path, objectName, zones, partId);
}

bool OFFile::readResult(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass,
                        std::vector<double>* values)
{
    return FieldInterior::readFile(*m_file, {path, resultClass}, objectName, values, &m_interiorWasRead);
}

bool OFFile::readValuesOfCellAndBoundaries(const dvn::Str& path, const dvn::Str& objectName,
                                           const dvn::Str& resultClass, std::vector<double>* values,
                                           const std::vector<OFBoundary>& boundaries,
                                           std::vector<std::vector<double>>& boundaryValues)
{
    if (!readResult(path, objectName, resultClass, values)) {
        OFLogger::get().logInfo("OFFile", "Could not read result values for Cells");
        return false;
    }
    if (m_file->header.at("class") != resultClass.toUtf8()) {
        return true;
    }
    OFLogger::get().logDebug("OFFile", dvn::Str("readed cells values for result %1").arg(objectName));
    std::string_view line;
    if (!text().takeLine(&line)) {
        OFLogger::get().logInfo("OFFile", "Problem parsing file");
        return false;
    }
    std::vector<std::string> names;
    names.reserve(boundaries.size());
    for (const OFBoundary& boundary : boundaries) {
        // As UTF-8, so that names beyond ASCII are found.
        names.push_back(boundary.patchName().toUtf8());
    }
    const std::vector<FieldPatches::Entries> entries = readBoundariesResult(resultClass, names, boundaryValues);
    FieldPatches::applyCellValues(resultClass, *values, boundaries, entries, &boundaryValues);
    return true;
}
