// SPDX-License-Identifier: MIT
#include "casemodel/OFReader.h"

#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <algorithm>

bool OFReader::init(const dvn::Str& path)
{
    dvn::Str folder = path;
    folder.replace("\\", "/");
    if (!OFUtilities::fileExists(folder)) {
        return OFLogger::get().logError(LOG_SOURCE,
                                        dvn::Str("Failed to open case %1 - file does not exist").arg(folder));
    }
    m_path = folder;
    m_notes.omissions.restart(m_path);
    m_notes.idOwners.clear();
    if (!m_files->readDictionary(m_path + "/system/controlDict", "controlDict", &m_controlDict)) {
        return OFLogger::get().logError(
            LOG_SOURCE, dvn::Str("Failed to open case %1 - could not read system/controlDict").arg(folder));
    }
    return initGeometry() && initStates();
}

void OFReader::close()
{
    m_controlDict.clear();
    m_statesFolder.clear();
    m_parts.clear();
    m_states.clear();
}

const OFState* OFReader::stateById(int id) const
{
    const auto found = std::ranges::find(m_states, id, &OFState::id);
    return found == m_states.end() ? nullptr : &*found;
}

const OFResult* OFReader::resultByIdInAllStates(int id) const
{
    for (const OFState& state : m_states) {
        if (const OFResult* const result = state.resultById(id)) {
            return result;
        }
    }
    return nullptr;
}

std::map<dvn::Str, dvn::Str> OFReader::buildResultsNamesMap(dvn::Str& names) const
{
    names = names.trimmed();
    std::map<dvn::Str, dvn::Str> result;
    for (const dvn::Str& pair : names.split(";")) {
        const std::vector<dvn::Str> sides = pair.split("=");
        if (sides.size() >= 2) {
            result[sides[0].trimmed()] = sides[1].trimmed();
        }
    }
    return result;
}
