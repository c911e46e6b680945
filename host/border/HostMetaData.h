// SPDX-License-Identifier: MIT
#pragma once

#include "border/BorderGuard.h"

#include "DataProviderInterface.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

// Values that the interface uses for the kind and mapping of a result.
inline constexpr std::int32_t KIND_SCALAR = 0;
inline constexpr std::int32_t KIND_VECTOR = 1;
inline constexpr std::int32_t KIND_DISPLACEMENT = 2;
inline constexpr std::int32_t KIND_TENSOR = 4;
inline constexpr std::int32_t MAPPING_NODE = 0;
inline constexpr std::int32_t MAPPING_ELEMENT = 1;

/// Components of a value of this kind.
constexpr std::int32_t componentCount(std::int32_t kind)
{
    switch (kind) {
    case KIND_TENSOR:
        return 6;
    case KIND_VECTOR:
    case KIND_DISPLACEMENT:
        return 3;
    default:
        return 1;
    }
}

/// What a declared group is, derived from the calls that declare it.
enum class HostGroupKind
{
    Part,     ///< a mesh with its cells; declared by `addPart`, or as a group without parent and type if it has zones
    CellZone, ///< some cells of a part; has no element group of its own
    Boundary,
    FaceZone,
    Surface
};

/// One declared state.
struct HostState
{
    std::int32_t id;
    std::string name;
    double referenceValue;
};

/// One declared part or group.
struct HostGroup
{
    std::int32_t id = 0;
    std::string name;
    bool declaredAsPart = false;
    std::optional<std::int32_t> parentId;
    std::optional<std::int32_t> boundaryFlag;
    std::map<std::string, std::string> properties;

    /// What the group is; valid only once the group is fully declared.
    HostGroupKind kind() const;
    /// The property "type", or an empty string.
    std::string type() const;
};

/// One declared result; the library writes key, unit and flag through it.
class HostResultInfo final : public DDPResultInfo
{
public:
    HostResultInfo(std::int32_t resultId, std::int32_t resultKind, std::string resultName, std::int32_t resultMapping)
        : id(resultId), kind(resultKind), name(std::move(resultName)), mapping(resultMapping)
    {}

    std::int32_t id;
    std::int32_t kind;
    std::string name;
    std::int32_t mapping;
    std::string key;
    std::string unit;
    std::int32_t displacementFlag = 0;

    void reserved0() override { BorderFaults::get().addReservedRow("DDPResultInfo"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPResultInfo"); }
    void setResultKey(const DDPString& text) override { key = text.c_str(); }
    void setResultUnit(const DDPString& text) override { unit = text.c_str(); }
    void setDisplacementFlag(std::int32_t flag) override { displacementFlag = flag; }
};

/// Records the description of a case.
///
/// The library sees three objects: metadata, geometry info and group info. Here all three fill one record, because they
/// describe one case. All calls are listed in order.
class HostMetaData final : public DDPMetaData
{
public:
    HostMetaData() : m_geometryInfo(*this), m_groupInfo(*this) {}
    HostMetaData(const HostMetaData&) = delete;
    HostMetaData& operator=(const HostMetaData&) = delete;

    std::string title;
    std::string description;
    std::int32_t mode = 0;
    std::int32_t stateMode = 0;
    std::optional<std::int32_t> geometryMode;
    std::vector<HostGroup> groups; ///< parts and groups in order of declaration
    std::vector<HostState> states;
    std::deque<HostResultInfo> results; ///< a deque, because the library keeps a pointer to the entry that it fills
    std::vector<std::string> calls;     ///< each call as text, such as "addState(1)"

    /// The groups that get an element group, in the order in which the geometry makes them: all except cell zones.
    std::vector<const HostGroup*> geometryGroups() const;

    /// The declared group with this id, or null.
    const HostGroup* findGroup(std::int32_t id) const;

    /// The result that this one is the node average of, or null: the source has the key stem_E and its average stem_N.
    const HostResultInfo* sourceOfAverage(const HostResultInfo& result) const;

    void reserved0() override { BorderFaults::get().addReservedRow("DDPMetaData"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPMetaData"); }
    void setSimulationInfo(const DDPString& titleText, const DDPString& descriptionText, std::int32_t modeCode,
                           std::int32_t stateModeCode) override;
    DDPGeometryInfo* geometryInfo() override { return &m_geometryInfo; }
    void addState(std::int32_t stateId, const DDPString& name, double referenceValue) override;
    void reserved2() override { BorderFaults::get().addReservedRow("DDPMetaData"); }
    void reserved3() override { BorderFaults::get().addReservedRow("DDPMetaData"); }
    DDPResultInfo* addResult(std::int32_t kind, std::int32_t resultId, const DDPString& name,
                             std::int32_t mapping) override;

private:
    /// Receives parts, and hands out the object that receives groups.
    class GeometryInfo final : public DDPGeometryInfo
    {
    public:
        explicit GeometryInfo(HostMetaData& owner) : m_owner(owner) {}
        void reserved0() override { BorderFaults::get().addReservedRow("DDPGeometryInfo"); }
        void reserved1() override { BorderFaults::get().addReservedRow("DDPGeometryInfo"); }
        void addPart(std::int32_t partId, const DDPString& name) override;
        void reserved2() override { BorderFaults::get().addReservedRow("DDPGeometryInfo"); }
        DDPElementGroupInfo* elementGroupInfo() override { return &m_owner.m_groupInfo; }
        void setGeometryMode(std::int32_t modeCode) override;

    private:
        HostMetaData& m_owner;
    };

    /// Receives groups. The library may ask for it repeatedly and always gets this object.
    class GroupInfo final : public DDPElementGroupInfo
    {
    public:
        explicit GroupInfo(HostMetaData& owner) : m_owner(owner) {}
        void reserved0() override { BorderFaults::get().addReservedRow("DDPElementGroupInfo"); }
        void reserved1() override { BorderFaults::get().addReservedRow("DDPElementGroupInfo"); }
        void addGroup(std::int32_t groupId, const DDPString& name) override;
        void setBoundaryFlag(std::int32_t groupId, std::int32_t flag) override;
        void setParentPart(std::int32_t groupId, std::int32_t parentPartId) override;
        void reserved2() override { BorderFaults::get().addReservedRow("DDPElementGroupInfo"); }
        void setGroupProperty(std::int32_t groupId, const DDPString& key, const DDPString& value) override;

    private:
        HostMetaData& m_owner;
    };

    /// The group with this id; null, with a fault noted, if it was not declared.
    HostGroup* declaredGroup(std::int32_t id);
    /// Adds a group or a part; if its id is already taken, that is noted as a fault and both are kept.
    void declareGroup(std::int32_t id, const char* name, bool asPart);

    GeometryInfo m_geometryInfo;
    GroupInfo m_groupInfo;
    std::unordered_map<std::int32_t, std::size_t> m_positions; ///< of the first group with an id among `groups`
};
