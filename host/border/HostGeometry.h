// SPDX-License-Identifier: MIT
#pragma once

#include "border/BorderGuard.h"

#include "DataProviderInterface.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <thread>
#include <vector>

/// Notes which threads call one host object and in which order.
///
/// Not locked: the interface promises one thread at a time for each group. `HostCall` verifies that.
struct HostCallRecord
{
    HostCallRecord() = default;
    /// A copy starts with the record of past calls, but is never in use itself.
    HostCallRecord(const HostCallRecord& other) : operations(other.operations), threads(other.threads) {}
    HostCallRecord& operator=(const HostCallRecord& other)
    {
        if (this != &other) {
            operations = other.operations;
            threads = other.threads;
        }
        return *this;
    }
    ~HostCallRecord() = default;

    std::vector<std::string> operations;  ///< names of the interface's operations, in order of the calls
    std::vector<std::thread::id> threads; ///< the caller of each
    std::atomic<bool> inUse = false;      ///< a thread is in a call of the object

    /// Makes every call from now on take this much longer, so that two threads that can meet in a group do meet.
    static void setStall(std::chrono::milliseconds time);
};

/// One call of a host object, for as long as it lasts.
class HostCall
{
public:
    /// Notes the call, or the fault if another thread is in a call of the same object.
    HostCall(HostCallRecord* record, const char* operation);
    ~HostCall();

    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

    /// False if another thread is using the object; its members must not be touched then.
    explicit operator bool() const { return m_entered; }

private:
    HostCallRecord& m_record;
    bool m_entered;
};

/// Selects the one geometry of a case, or another number, which a provider has to refuse.
class HostGeometrySpec final : public DDPGeometrySpec
{
public:
    explicit HostGeometrySpec(std::int64_t selector = 0) : m_selector(selector) {}

    void reserved0() override { BorderFaults::get().addReservedRow("DDPGeometrySpec"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPGeometrySpec"); }
    std::int64_t geometrySelector() const override { return m_selector; }

private:
    std::int64_t m_selector;
};

/// Keeps the nodes of one group.
class HostNodeGroup final : public DDPNodeGroup
{
public:
    explicit HostNodeGroup(std::int64_t groupId) : m_id(groupId) {}

    std::vector<double> coordinates; ///< x, y, z of each node in turn
    std::vector<std::int32_t> ids;   ///< one per node
    HostCallRecord calls;

    /// Nodes set so far; 0 for a group that the library left empty.
    std::size_t nodeCount() const { return coordinates.size() / 3; }

    void reserved0() override { BorderFaults::get().addReservedRow("DDPNodeGroup"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPNodeGroup"); }
    void setNodes(const double* values, std::uint64_t count) override;
    void setNodeIds(const std::int32_t* values, std::uint64_t count) override;
    std::int64_t nodeGroupId() const override { return m_id; }

private:
    std::int64_t m_id;
};

/// The face tables of the general elements of a group, as the library delivered them.
struct HostPolyhedra
{
    std::vector<unsigned char> nodesPerPolyhedron; ///< distinct nodes, one entry per polyhedron
    std::vector<unsigned char> facesPerPolyhedron; ///< one entry per polyhedron
    std::vector<unsigned char> nodesPerFace;       ///< one entry per face, polyhedron after polyhedron
    std::vector<std::int32_t> faceConnectivity;    ///< nodes of all those faces, as positions in the node group
};

/// Keeps the elements of one group.
class HostElementGroup final : public DDPElementGroup
{
public:
    explicit HostElementGroup(std::int64_t boundNodeGroupId) : nodeGroupId(boundNodeGroupId) {}

    std::int64_t nodeGroupId;               ///< the node group that the connectivity refers to
    bool uniform = false;                   ///< the last call that set elements was `setUniformElements`
    std::vector<std::int32_t> types;        ///< one per element, also for uniform elements
    std::vector<std::int32_t> connectivity; ///< positions in the node group, element after element
    std::vector<std::int32_t> ids;
    std::vector<std::int32_t> partIds; ///< empty if the library set none
    HostPolyhedra polyhedra;           ///< of the elements of type `DDP_POLY`, in element order
    HostCallRecord calls;

    /// Elements set so far; 0 for a group that the library left empty.
    std::size_t elementCount() const { return types.size(); }

    void reserved0() override { BorderFaults::get().addReservedRow("DDPElementGroup"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPElementGroup"); }
    void setUniformElements(std::int32_t type, std::uint64_t count, const std::int32_t* nodes,
                            std::uint64_t nodesLength, const std::int32_t* elementIds) override;
    void setMixedElements(const std::int32_t* elementTypes, std::uint64_t count, const std::int32_t* nodes,
                          std::uint64_t nodesLength, const std::int32_t* elementIds) override;
    void setPolyhedra(const unsigned char* nodesPerPolyhedron, const unsigned char* facesPerPolyhedron,
                      std::uint64_t polyhedronCount, const unsigned char* nodesPerFace, std::uint64_t faceCount,
                      const std::int32_t* faceConnectivity, std::uint64_t faceConnectivityLength) override;
    void setElementPartIds(const std::int32_t* values, std::uint64_t count) override;
};

/// Keeps a whole geometry. Groups are in the order in which the library made them.
class HostGeometry final : public DDPGeometry
{
public:
    // Deques, because the library holds pointers to the groups while more are made.
    std::deque<HostNodeGroup> nodeGroups;
    std::deque<HostElementGroup> elementGroups;
    HostCallRecord calls;

    /// The nodes that this element group refers to, or null if it is bound to an id that was never given out.
    const HostNodeGroup* nodesOf(const HostElementGroup& group) const;

    /// Bytes of all arrays kept.
    std::size_t byteCount() const;

    void reserved0() override { BorderFaults::get().addReservedRow("DDPGeometry"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPGeometry"); }
    DDPNodeGroup* addNodeGroup() override;
    DDPElementGroup* addElementGroup(std::int64_t nodeGroupId) override;

private:
    void checkThread(const char* operation) const;

    std::thread::id m_owner = std::this_thread::get_id();
};
