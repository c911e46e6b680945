// SPDX-License-Identifier: MIT
#include "doctor/Delivery.h"

#include "border/DeliveryCheck.h"
#include "border/HostLog.h"

#include <algorithm>
#include <utility>

namespace {

/// UTF-8 of the bytes taken for Latin-1. Some names reach hosts in this form (docs/compatibility.md, "encoded twice").
std::string encodedTwice(const std::string& name)
{
    std::string twice;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            twice += c;
        } else {
            twice += static_cast<char>(0xC0U | (byte >> 6U));
            twice += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return twice;
}

template <typename Value>
const Value* findNamed(const std::map<std::string, Value>& map, const std::string& name)
{
    auto found = map.find(name);
    found = found == map.end() ? map.find(encodedTwice(name)) : found;
    return found == map.end() ? nullptr : &found->second;
}

/// Results on cells and on nodes may have the same field's name, so the mapping is part of the key.
std::string resultKey(const std::string& name, std::int32_t mapping)
{
    return (mapping == MAPPING_NODE ? "n:" : "e:") + name;
}

/// The key under which a field is listed.
std::string keyOf(const std::string& field, FieldPlace place)
{
    switch (place) {
    case FieldPlace::Cells:
    case FieldPlace::SurfaceFaces:
        return resultKey(field, MAPPING_ELEMENT);
    case FieldPlace::Points:
    case FieldPlace::SurfacePoints:
        return resultKey(field + " [N]", MAPPING_NODE);
    case FieldPlace::CellAverage:
        return resultKey(field + " [node]", MAPPING_NODE);
    case FieldPlace::MovedPoints:
        return resultKey(field, MAPPING_NODE);
    }
    return {};
}

} // namespace

Delivery::Delivery(PluginLibrary& library, const std::string& casePath, HostOptions options)
    : m_options(std::move(options))
{
    const std::size_t linesBefore = HostLog::get().lines().size();
    try {
        m_opened = std::make_unique<OpenedCase>(library, casePath, m_options);
        (void)m_opened->geometry();
        index();
    } catch (const HostError& error) {
        m_refusal = error.what();
    }
    keepErrors(linesBefore);
}

void Delivery::keepErrors(std::size_t linesBefore)
{
    const std::vector<HostLogLine> lines = HostLog::get().lines();
    for (std::size_t i = linesBefore; i < lines.size(); ++i) {
        LoggedCause cause = loggedCause(lines[i].text);
        if (lines[i].level == LOG_ERROR && std::ranges::find(m_errors, cause) == m_errors.end()) {
            m_errors.push_back(std::move(cause));
        }
    }
}

std::vector<std::string> Delivery::limits() const
{
    return isOpen() ? m_opened->limits() : std::vector<std::string>();
}

void Delivery::index()
{
    const HostMetaData& described = m_opened->metaData();
    const std::vector<const HostGroup*> declared = described.geometryGroups();
    const auto nameOfParent = [&](const HostGroup& one) {
        const HostGroup* const parent = one.parentId ? described.findGroup(*one.parentId) : nullptr;
        return parent == nullptr ? std::string() : parent->name;
    };
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const HostGroup& one = *declared[i];
        if (const HostNodeGroup* const nodesOfOne = nodes(i); nodesOfOne == nullptr || nodesOfOne->nodeCount() == 0) {
            continue;
        }
        const bool isPart = one.kind() == HostGroupKind::Part;
        m_groups.emplace(isPart ? GroupName(one.name, "") : GroupName(nameOfParent(one), one.name), i);
    }
    for (const HostGroup& one : described.groups) {
        ++m_zones[{nameOfParent(one), one.kind()}];
    }
    for (const HostResultInfo& info : described.results) {
        m_results.emplace(resultKey(info.name, info.mapping), &info);
    }
    for (const HostState& state : described.states) {
        m_stateOfTime.emplace(state.referenceValue, state.id);
    }
}

std::optional<std::size_t> Delivery::group(const std::string& part, const std::string& name) const
{
    for (const std::string& partName : {part, encodedTwice(part)}) {
        for (const std::string& groupName : {name, encodedTwice(name)}) {
            const auto found = m_groups.find({partName, groupName});
            if (found != m_groups.end()) {
                return found->second;
            }
        }
    }
    return std::nullopt;
}

std::size_t Delivery::zoneCount(const std::string& part, HostGroupKind kind) const
{
    auto found = m_zones.find({part, kind});
    found = found == m_zones.end() ? m_zones.find({encodedTwice(part), kind}) : found;
    return found == m_zones.end() ? 0 : found->second;
}

std::string Delivery::unitOf(const std::string& field, FieldPlace place) const
{
    const HostResultInfo* const* const info = findNamed(m_results, keyOf(field, place));
    return info == nullptr ? std::string() : (*info)->unit;
}

const HostElementGroup* Delivery::elements(std::size_t number) const
{
    return &m_opened->geometry().elementGroups[number];
}

const HostNodeGroup* Delivery::nodes(std::size_t number) const
{
    const HostGeometry& geometry = m_opened->geometry();
    return geometry.nodesOf(geometry.elementGroups[number]);
}

DeliveredResult Delivery::result(const std::string& field, FieldPlace place, double time)
{
    DeliveredResult delivered;
    if (!isOpen()) {
        return delivered;
    }
    const auto state = m_stateOfTime.find(time);
    if (state == m_stateOfTime.end()) {
        delivered.missing = ArrayStatus::NoTime;
        return delivered;
    }
    const HostResultInfo* const* const info = findNamed(m_results, keyOf(field, place));
    if (info == nullptr) {
        delivered.missing = ArrayStatus::NoField;
        return delivered;
    }
    delivered.missing = ArrayStatus::Failed;
    try {
        delivered.values = m_opened->result(**info, state->second);
    } catch (const HostError&) {
        // A fault of the library; the array counts as one that failed.
    }
    return delivered;
}

const HostValueGroup* Delivery::valuesOf(const DeliveredResult& delivered, std::optional<std::size_t> number)
{
    return delivered.values == nullptr || !number ? nullptr
                                                  : valuesOfGroup(m_opened->metaData(), *delivered.values, *number);
}

ArrayStatus Delivery::statusOf(const DeliveredResult& delivered, std::optional<std::size_t> number)
{
    if (!isOpen()) {
        return ArrayStatus::NoCase;
    }
    if (delivered.missing == ArrayStatus::NoTime) {
        return delivered.missing;
    }
    if (!number) {
        return ArrayStatus::NoGroup;
    }
    if (delivered.values == nullptr) {
        return delivered.missing;
    }
    const HostValueGroup* const values = valuesOf(delivered, number);
    if (values == nullptr || values->values.empty()) {
        return ArrayStatus::Undefined;
    }
    const auto undefined = static_cast<std::size_t>(std::ranges::count(values->values, UNDEFINED_VALUE));
    return undefined == 0                       ? ArrayStatus::All
           : undefined == values->values.size() ? ArrayStatus::Undefined
                                                : ArrayStatus::Some;
}
