// SPDX-License-Identifier: MIT
#include "border/HostMetaData.h"

#include <fmt/format.h>

#include <algorithm>

HostGroupKind HostGroup::kind() const
{
    const std::string typeText = type();
    if (typeText == "SampledSurface") {
        return HostGroupKind::Surface;
    }
    if (declaredAsPart || !parentId) {
        return HostGroupKind::Part;
    }
    if (boundaryFlag.value_or(0) != 0) {
        return HostGroupKind::Boundary;
    }
    return typeText == "CellZone" ? HostGroupKind::CellZone : HostGroupKind::FaceZone;
}

std::string HostGroup::type() const
{
    const auto found = properties.find("type");
    return found == properties.end() ? std::string() : found->second;
}

std::vector<const HostGroup*> HostMetaData::geometryGroups() const
{
    std::vector<const HostGroup*> result;
    for (const HostGroup& group : groups) {
        if (group.kind() != HostGroupKind::CellZone) {
            result.push_back(&group);
        }
    }
    return result;
}

const HostGroup* HostMetaData::findGroup(std::int32_t id) const
{
    const auto found = std::ranges::find(groups, id, &HostGroup::id);
    return found == groups.end() ? nullptr : &*found;
}

const HostResultInfo* HostMetaData::sourceOfAverage(const HostResultInfo& result) const
{
    if (result.mapping != MAPPING_NODE || !result.key.ends_with("_N")) {
        return nullptr;
    }
    const std::string sourceKey = result.key.substr(0, result.key.size() - 1) + "E";
    const auto found = std::ranges::find(results, sourceKey, &HostResultInfo::key);
    return found == results.end() ? nullptr : &*found;
}

void HostMetaData::setSimulationInfo(const DDPString& titleText, const DDPString& descriptionText,
                                     std::int32_t modeCode, std::int32_t stateModeCode)
{
    calls.push_back(fmt::format("setSimulationInfo({}, {})", modeCode, stateModeCode));
    title = titleText.c_str();
    description = descriptionText.c_str();
    mode = modeCode;
    stateMode = stateModeCode;
}

void HostMetaData::addState(std::int32_t stateId, const DDPString& name, double referenceValue)
{
    calls.push_back(fmt::format("addState({})", stateId));
    states.push_back({stateId, name.c_str(), referenceValue});
}

DDPResultInfo* HostMetaData::addResult(std::int32_t kind, std::int32_t resultId, const DDPString& name,
                                       std::int32_t mapping)
{
    calls.push_back(fmt::format("addResult({}, {}, {})", kind, resultId, mapping));
    return &results.emplace_back(resultId, kind, name.c_str(), mapping);
}

HostGroup* HostMetaData::declaredGroup(std::int32_t id)
{
    const auto found = m_positions.find(id);
    if (found == m_positions.end()) {
        BorderFaults::get().add(fmt::format("group {} is described before it is declared", id));
        return nullptr;
    }
    return &groups[found->second];
}

void HostMetaData::declareGroup(std::int32_t id, const char* name, bool asPart)
{
    if (!m_positions.emplace(id, groups.size()).second) {
        BorderFaults::get().add(fmt::format("group id {} is declared twice", id));
    }
    HostGroup group;
    group.id = id;
    group.name = name;
    group.declaredAsPart = asPart;
    groups.push_back(std::move(group));
}

void HostMetaData::GeometryInfo::addPart(std::int32_t partId, const DDPString& name)
{
    m_owner.calls.push_back(fmt::format("addPart({})", partId));
    m_owner.declareGroup(partId, name.c_str(), true);
}

void HostMetaData::GeometryInfo::setGeometryMode(std::int32_t modeCode)
{
    m_owner.calls.push_back(fmt::format("setGeometryMode({})", modeCode));
    m_owner.geometryMode = modeCode;
}

void HostMetaData::GroupInfo::addGroup(std::int32_t groupId, const DDPString& name)
{
    m_owner.calls.push_back(fmt::format("addGroup({})", groupId));
    m_owner.declareGroup(groupId, name.c_str(), false);
}

void HostMetaData::GroupInfo::setBoundaryFlag(std::int32_t groupId, std::int32_t flag)
{
    m_owner.calls.push_back(fmt::format("setBoundaryFlag({}, {})", groupId, flag));
    if (HostGroup* const group = m_owner.declaredGroup(groupId)) {
        group->boundaryFlag = flag;
    }
}

void HostMetaData::GroupInfo::setParentPart(std::int32_t groupId, std::int32_t parentPartId)
{
    m_owner.calls.push_back(fmt::format("setParentPart({}, {})", groupId, parentPartId));
    if (HostGroup* const group = m_owner.declaredGroup(groupId)) {
        group->parentId = parentPartId;
    }
}

void HostMetaData::GroupInfo::setGroupProperty(std::int32_t groupId, const DDPString& key, const DDPString& value)
{
    m_owner.calls.push_back(fmt::format("setGroupProperty({}, {})", groupId, key.c_str()));
    if (HostGroup* const group = m_owner.declaredGroup(groupId)) {
        group->properties[key.c_str()] = value.c_str();
    }
}
