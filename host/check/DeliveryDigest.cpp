// SPDX-License-Identifier: MIT
#include "check/DeliveryDigest.h"

#include "border/DeliveryCheck.h"

#include <fmt/format.h>

#include <cstring>

namespace {

/// A hash of bytes, eight at a time, so that memory and not the hash limits the speed for large cases.
std::uint64_t hashOf(const unsigned char* bytes, std::size_t count)
{
    std::uint64_t hash = 0xCBF29CE484222325U + count;
    for (; count > 0;) {
        std::uint64_t word = 0;
        const std::size_t step = count < sizeof(word) ? count : sizeof(word);
        std::memcpy(&word, bytes, step);
        hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32;
        bytes += step;
        count -= step;
    }
    return hash;
}

} // namespace

void DeliveryDigest::add(const std::string& name, const void* bytes, std::size_t count)
{
    m_entries.emplace_back(name, hashOf(static_cast<const unsigned char*>(bytes), count));
}

template <typename Value>
void DeliveryDigest::add(const std::string& name, const std::vector<Value>& array)
{
    add(name, array.data(), array.size() * sizeof(Value));
}

void DeliveryDigest::addMetaData(const HostMetaData& metaData)
{
    std::string text = metaData.title + "\n" + metaData.description + "\n";
    for (const std::string& call : metaData.calls) {
        text += call + "\n";
    }
    for (const HostGroup& group : metaData.groups) {
        text += fmt::format("{} {}\n", group.name, group.type());
    }
    for (const HostState& state : metaData.states) {
        text += fmt::format("{} {}\n", state.name, state.referenceValue);
    }
    for (const HostResultInfo& result : metaData.results) {
        text += fmt::format("{} {} {} {}\n", result.name, result.key, result.unit, result.displacementFlag);
    }
    add("the metadata", text.data(), text.size());
}

void DeliveryDigest::addGeometry(const HostMetaData& metaData, const HostGeometry& geometry)
{
    const std::vector<const HostGroup*> groups = metaData.geometryGroups();
    const auto nameOf = [&](std::size_t i) { return i < groups.size() ? groups[i]->name : std::to_string(i); };
    for (std::size_t i = 0; i < geometry.nodeGroups.size(); ++i) {
        add("the coordinates of " + nameOf(i), geometry.nodeGroups[i].coordinates);
        add("the node ids of " + nameOf(i), geometry.nodeGroups[i].ids);
    }
    for (std::size_t i = 0; i < geometry.elementGroups.size(); ++i) {
        const HostElementGroup& elements = geometry.elementGroups[i];
        add("the element types of " + nameOf(i), elements.types);
        add("the connectivity of " + nameOf(i), elements.connectivity);
        add("the element ids of " + nameOf(i), elements.ids);
        add("the part ids of " + nameOf(i), elements.partIds);
        add("the nodes per polyhedron of " + nameOf(i), elements.polyhedra.nodesPerPolyhedron);
        add("the faces per polyhedron of " + nameOf(i), elements.polyhedra.facesPerPolyhedron);
        add("the nodes per face of " + nameOf(i), elements.polyhedra.nodesPerFace);
        add("the face connectivity of " + nameOf(i), elements.polyhedra.faceConnectivity);
    }
}

void DeliveryDigest::addResult(const HostResultInfo& info, const HostState& state, const HostResult* result)
{
    const std::string name = fmt::format("{} at {}", info.name, state.referenceValue);
    const std::size_t groups = result == nullptr ? 0 : result->groups.size();
    add(result == nullptr ? "the presence of " + name : "the groups of " + name, &groups, sizeof(groups));
    for (std::size_t i = 0; i < groups; ++i) {
        add(fmt::format("value group {} of {}", i, name), result->groups[i].values);
    }
}

std::string DeliveryDigest::differenceTo(const DeliveryDigest& other) const
{
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (i >= other.m_entries.size() || m_entries[i] != other.m_entries[i]) {
            return m_entries[i].first;
        }
    }
    return m_entries.size() == other.m_entries.size() ? std::string() : other.m_entries[m_entries.size()].first;
}

DeliveryDigest digestOf(CheckedCase& open)
{
    DeliveryDigest digest;
    const std::unique_ptr<HostMetaData> metaData = open.metaData();
    digest.addMetaData(*metaData);
    digest.addGeometry(*metaData, *open.geometry());
    for (const HostState* const state : sampleOfStates(*metaData)) {
        for (const HostResultInfo& info : metaData->results) {
            if (belongsToItsGroups(*metaData, info, state->id)) {
                digest.addResult(info, *state, open.result(info.id, state->id).get());
            }
        }
    }
    return digest;
}
