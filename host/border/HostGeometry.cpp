// SPDX-License-Identifier: MIT
#include "border/HostGeometry.h"

#include "border/ArrayCopy.h"

namespace {

// Ids do not start at zero, so that a library that mistakes an id for an index is found out.
constexpr std::int64_t FIRST_NODE_GROUP_ID = 100;

/// Copies an array that the library lends for the call, with one allocation.
template <typename Value>
void keep(const Value* values, std::uint64_t count, const char* what, std::vector<Value>* target)
{
    if (values == nullptr && count != 0) {
        target->clear();
        BorderFaults::get().add(std::string("a null array for ") + what);
        return;
    }
    copyArray(values, count, target);
}

// For all objects of the process, because a check sets it before any of them exists.
std::atomic<std::chrono::milliseconds::rep> stallMilliseconds = 0;

template <typename Value>
std::size_t bytesOf(const std::vector<Value>& values)
{
    return values.capacity() * sizeof(Value);
}

} // namespace

void HostCallRecord::setStall(std::chrono::milliseconds time)
{
    stallMilliseconds = time.count();
}

HostCall::HostCall(HostCallRecord* record, const char* operation) : m_record(*record)
{
    m_entered = !m_record.inUse.exchange(true);
    if (!m_entered) {
        BorderFaults::get().add(std::string(operation) + " was called while another thread was in the same object");
        return;
    }
    m_record.operations.emplace_back(operation);
    m_record.threads.push_back(std::this_thread::get_id());
    if (stallMilliseconds > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(stallMilliseconds));
    }
}

HostCall::~HostCall()
{
    if (m_entered) {
        m_record.inUse = false;
    }
}

void HostNodeGroup::setNodes(const double* values, std::uint64_t count)
{
    const HostCall call(&calls, "setNodes");
    if (!call) {
        return;
    }
    keep(values, 3 * count, "the node coordinates", &coordinates);
}

void HostNodeGroup::setNodeIds(const std::int32_t* values, std::uint64_t count)
{
    const HostCall call(&calls, "setNodeIds");
    if (!call) {
        return;
    }
    keep(values, count, "the node ids", &ids);
}

void HostElementGroup::setUniformElements(std::int32_t type, std::uint64_t count, const std::int32_t* nodes,
                                          std::uint64_t nodesLength, const std::int32_t* elementIds)
{
    const HostCall call(&calls, "setUniformElements");
    if (!call) {
        return;
    }
    uniform = true;
    types.assign(count, type);
    keep(nodes, nodesLength, "the connectivity", &connectivity);
    keep(elementIds, count, "the element ids", &ids);
}

void HostElementGroup::setMixedElements(const std::int32_t* elementTypes, std::uint64_t count,
                                        const std::int32_t* nodes, std::uint64_t nodesLength,
                                        const std::int32_t* elementIds)
{
    const HostCall call(&calls, "setMixedElements");
    if (!call) {
        return;
    }
    uniform = false;
    keep(elementTypes, count, "the element types", &types);
    keep(nodes, nodesLength, "the connectivity", &connectivity);
    keep(elementIds, count, "the element ids", &ids);
}

void HostElementGroup::setPolyhedra(const unsigned char* nodesPerPolyhedron, const unsigned char* facesPerPolyhedron,
                                    std::uint64_t polyhedronCount, const unsigned char* nodesPerFace,
                                    std::uint64_t faceCount, const std::int32_t* faceConnectivity,
                                    std::uint64_t faceConnectivityLength)
{
    const HostCall call(&calls, "setPolyhedra");
    if (!call) {
        return;
    }
    keep(nodesPerPolyhedron, polyhedronCount, "the nodes per polyhedron", &polyhedra.nodesPerPolyhedron);
    keep(facesPerPolyhedron, polyhedronCount, "the faces per polyhedron", &polyhedra.facesPerPolyhedron);
    keep(nodesPerFace, faceCount, "the nodes per face", &polyhedra.nodesPerFace);
    keep(faceConnectivity, faceConnectivityLength, "the face connectivity", &polyhedra.faceConnectivity);
}

void HostElementGroup::setElementPartIds(const std::int32_t* values, std::uint64_t count)
{
    const HostCall call(&calls, "setElementPartIds");
    if (!call) {
        return;
    }
    keep(values, count, "the element part ids", &partIds);
}

DDPNodeGroup* HostGeometry::addNodeGroup()
{
    const HostCall call(&calls, "addNodeGroup");
    checkThread("addNodeGroup");
    return &nodeGroups.emplace_back(FIRST_NODE_GROUP_ID + static_cast<std::int64_t>(nodeGroups.size()));
}

DDPElementGroup* HostGeometry::addElementGroup(std::int64_t nodeGroupId)
{
    const HostCall call(&calls, "addElementGroup");
    checkThread("addElementGroup");
    return &elementGroups.emplace_back(nodeGroupId);
}

const HostNodeGroup* HostGeometry::nodesOf(const HostElementGroup& group) const
{
    const std::int64_t index = group.nodeGroupId - FIRST_NODE_GROUP_ID;
    if (index < 0 || index >= static_cast<std::int64_t>(nodeGroups.size())) {
        return nullptr;
    }
    return &nodeGroups[static_cast<std::size_t>(index)];
}

std::size_t HostGeometry::byteCount() const
{
    std::size_t bytes = 0;
    for (const HostNodeGroup& group : nodeGroups) {
        bytes += bytesOf(group.coordinates) + bytesOf(group.ids);
    }
    for (const HostElementGroup& group : elementGroups) {
        const HostPolyhedra& tables = group.polyhedra;
        bytes += bytesOf(group.types) + bytesOf(group.connectivity) + bytesOf(group.ids) + bytesOf(group.partIds);
        bytes += bytesOf(tables.nodesPerPolyhedron) + bytesOf(tables.facesPerPolyhedron) +
                 bytesOf(tables.nodesPerFace) + bytesOf(tables.faceConnectivity);
    }
    return bytes;
}

void HostGeometry::checkThread(const char* operation) const
{
    if (std::this_thread::get_id() != m_owner) {
        BorderFaults::get().add(std::string(operation) + " was called on a worker thread");
    }
}
