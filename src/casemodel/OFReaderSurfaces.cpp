// SPDX-License-Identifier: MIT
//
// Sampled surfaces in extended reading.

#include "casemodel/OFReader.h"
#include "casemodel/SampledSurfaceFields.h"

#include <set>

/// Adds the fields of all surfaces to the last state. Values on faces belong to the result that the field has on cells;
/// those on nodes to the one that a field on points would have.
void OFReader::addSampledFields(const dvn::Str& timeName, const std::map<dvn::Str, dvn::Str>& resultNames)
{
    OFState& state = m_states.back();
    std::set<dvn::Str> knownKeys;
    for (std::size_t i = 0; i < state.resultCount(); ++i) {
        knownKeys.insert(state.result(i).idString());
    }
    for (const OFSampledSurface& surface : m_sampledSurfaces) {
        for (const SampledField& field : sampledFieldsIn(surface.folderAt(m_path, timeName))) {
            const bool isOnNodes = field.mapping == OFResultOnNode;
            const dvn::Str key = OFState::makeIdString(field.name) + (isOnNodes ? "_N*" : "_E");
            if (knownKeys.insert(key).second) {
                const dvn::Str name = OFState::makeCustomName(field.name, resultNames) + (isOnNodes ? " [N]" : "");
                state.addResult(OFResult(field.name, name, key, OFUnit(), field.type, field.mapping));
            }
        }
    }
}
