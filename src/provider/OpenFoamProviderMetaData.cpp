// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include <array>
#include <map>

namespace {

// Mode codes that the host expects; only the host knows their meaning.
constexpr std::int32_t SIMULATION_MODE = 4;
constexpr std::int32_t SINGLE_STATE_MODE = 0;
constexpr std::int32_t SEVERAL_STATES_MODE = 4;
constexpr std::int32_t GEOMETRY_MODE = 0;

constexpr std::int32_t KIND_SCALAR = 0;
constexpr std::int32_t KIND_DISPLACEMENT = 2;
/// The host's kinds of vector, tensor and displacement, in the order of `OFResultType` from 1 on.
constexpr std::array<std::int32_t, 3> KINDS_ABOVE_SCALAR = {1, 4, KIND_DISPLACEMENT};

constexpr std::int32_t MAPPING_NODES = 0;
constexpr std::int32_t MAPPING_ELEMENTS = 1;

/// For names that reach the host as they are in the files.
DDPString copied(const dvn::Str& text)
{
    return DDPString(text.toUtf8().c_str());
}

/// Compatibility (docs/compatibility.md, "encoded twice"): for names that are encoded once more on top of UTF-8.
DDPString converted(const dvn::Str& text)
{
    return DDPString::fromChar(text.toUtf8().c_str());
}

bool isPublished(const OFResult& result)
{
    return static_cast<int>(result.type()) != -1 && static_cast<int>(result.mapping()) != -1;
}

std::int32_t hostKind(const OFResult& result)
{
    const int index = static_cast<int>(result.type()) - 1;
    const bool isInTable = index >= 0 && index < static_cast<int>(KINDS_ABOVE_SCALAR.size());
    return isInTable ? KINDS_ABOVE_SCALAR[static_cast<std::size_t>(index)] : KIND_SCALAR;
}

std::int32_t hostMapping(const OFResult& result)
{
    return result.mapping() == OFResultOnCell ? MAPPING_ELEMENTS : MAPPING_NODES;
}

/// Declares a part and its cell zones. Compatibility (docs/compatibility.md, "zones make a group"): a part with zones
/// is a group like them, any other a part.
void addPartWithZones(OFPart& part, DDPGeometryInfo* geometryInfo)
{
    if (part.cellZones().empty()) {
        geometryInfo->addPart(part.id(), copied(part.name()));
        return;
    }
    DDPElementGroupInfo* const info = geometryInfo->elementGroupInfo();
    info->addGroup(part.id(), converted(part.name()));
    for (OFCellZone& zone : part.cellZones()) {
        zone.addCellZoneInfo(part.id(), info);
    }
}

/// Declares a part with all its groups.
/// @return the last id that belongs to it
int addPartInfo(OFPart& part, DDPGeometryInfo* geometryInfo)
{
    addPartWithZones(part, geometryInfo);
    int base = part.id() + static_cast<int>(part.cellZones().size());
    for (OFBoundary& boundary : part.boundaries()) {
        boundary.addBoundaryInfo(base, geometryInfo->elementGroupInfo());
    }
    base += static_cast<int>(part.boundaries().size());
    for (OFFaceZone& zone : part.faceZones()) {
        zone.addFaceZoneInfo(base, geometryInfo->elementGroupInfo());
    }
    return base + static_cast<int>(part.faceZones().size());
}

/// @return the kind under which the result was published
std::int32_t publish(const OFResult& result, int id, DDPMetaData* metaData)
{
    const std::int32_t kind = hostKind(result);
    DDPResultInfo* const info = metaData->addResult(kind, id, copied(result.name()), hostMapping(result));
    info->setResultKey(converted(result.idString()));
    info->setResultUnit(converted(result.unit().translate()));
    if (kind == KIND_DISPLACEMENT) {
        info->setDisplacementFlag(1);
    }
    return kind;
}

using IdsByKey = std::map<dvn::Str, int>;

void setResultIds(OFState& state, const IdsByKey& ids)
{
    for (std::size_t i = 0; i < state.resultCount(); ++i) {
        OFResult& result = state.result(i);
        if (isPublished(result)) {
            result.setId(ids.at(result.idString()));
        }
    }
}

/// The id string of the node average of a result on cells: the same with "N" as the last character.
dvn::Str averageIdString(const OFResult& source)
{
    const dvn::Str& text = source.idString();
    return text.isEmpty() ? dvn::Str() : dvn::Str(text.subStr(0, text.size() - 1)) + "N";
}

void linkAverages(OFState& state, const IdsByKey& ids)
{
    for (std::size_t i = 0; i < state.resultCount(); ++i) {
        const OFResult& source = state.result(i);
        if (source.mapping() != OFResultOnCell) {
            continue;
        }
        if (const auto average = ids.find(averageIdString(source)); average != ids.end()) {
            state.registerVolumeResultSourceOfAverageNodeResult(average->second, source.id());
        }
    }
}

} // namespace

bool OpenFoamProvider::getMetaData(DDPMetaData* metaData)
{
    metaData->setSimulationInfo(copied(m_reader.simulationTitle()), copied(m_reader.simulationDescription()),
                                SIMULATION_MODE, m_reader.stateCount() < 2 ? SINGLE_STATE_MODE : SEVERAL_STATES_MODE);
    // All three are always true.
    (void)addGeometryInfo(metaData);
    (void)addStateInfo(metaData);
    (void)addResultInfo(metaData);
    return true;
}

bool OpenFoamProvider::addGeometryInfo(DDPMetaData* metaData)
{
    DDPGeometryInfo* const geometryInfo = metaData->geometryInfo();
    geometryInfo->setGeometryMode(GEOMETRY_MODE);
    int lastId = 0;
    for (std::size_t i = 0; i < m_reader.partCount(); ++i) {
        lastId = addPartInfo(m_reader.part(i), geometryInfo);
    }
    for (std::size_t i = 0; i < m_reader.sampledSurfaceCount(); ++i) {
        m_reader.sampledSurface(i).addSampleSurfaceInfo(lastId, geometryInfo->elementGroupInfo());
    }
    return true;
}

bool OpenFoamProvider::addStateInfo(DDPMetaData* metaData)
{
    for (std::size_t i = 0; i < m_reader.stateCount(); ++i) {
        const OFState& state = m_reader.state(i);
        metaData->addState(state.id(), copied(state.name()), state.referenceValue());
    }
    return true;
}

bool OpenFoamProvider::addResultInfo(DDPMetaData* metaData)
{
    // Results with the same id string are one result of the case; the first one decides name, kind and unit.
    IdsByKey ids;
    int nextId = 1;
    for (std::size_t i = 0; i < m_reader.stateCount(); ++i) {
        const OFState& state = m_reader.state(i);
        for (std::size_t j = 0; j < state.resultCount(); ++j) {
            const OFResult& result = state.result(j);
            if (!isPublished(result) || !ids.emplace(result.idString(), nextId).second) {
                continue;
            }
            // Compatibility (docs/compatibility.md, "hidden new results"): a displacement found by polling stays an
            // ordinary unknown result until the next full description.
            if (metaData != nullptr && publish(result, nextId, metaData) == KIND_DISPLACEMENT) {
                m_displacementResultId = nextId;
            }
            ++nextId;
        }
    }
    for (std::size_t i = 0; i < m_reader.stateCount(); ++i) {
        setResultIds(m_reader.state(i), ids);
        if (m_makeNodeAverageResults) {
            linkAverages(m_reader.state(i), ids);
        }
    }
    return true;
}

bool OpenFoamProvider::addSetInfo(DDPMetaData* /*metaData*/)
{
    return false;
}
