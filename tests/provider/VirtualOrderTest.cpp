// SPDX-License-Identifier: MIT
// Hosts are compiled against their own header and call the rows of a table by number. This is their order, independent
// of our header: a misplaced row would call the wrong function.
#include "interface/DataProviderInterface.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

/// The row that a call of this member uses: the ABI keeps its offset in the table, plus one, in the first word.
template <typename Member>
std::size_t rowOf(Member member)
{
    std::uintptr_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    EXPECT_EQ(word % sizeof(void*), 1U) << "not virtual";
    return word / sizeof(void*);
}

/// Expects the operations in consecutive rows from `first` on.
template <typename... Members>
void expectRows(std::size_t first, Members... members)
{
    for (const std::size_t row : {rowOf(members)...}) {
        EXPECT_EQ(row, first++);
    }
}

// In classes that a host deletes, the first two rows are the destructor's.
TEST(VirtualOrder, MatchesTheTablesOfHosts)
{
    using Factory = DDPDataProviderFactory;
    expectRows(2, &Factory::getProviderInfo, &Factory::isSupportedByProvider, &Factory::createProviderInstance,
               &Factory::destroyProviderInstance);
    using Provider = DDPDataProvider;
    expectRows(2, &Provider::init, &Provider::close, &Provider::getMetaData, &Provider::getGeometry, &Provider::getSet,
               &Provider::getResult, &Provider::getRigidBodyTransformations, &Provider::getElementVisibilityResult,
               &Provider::pollForChanges, &Provider::reserved0);
    using Info = DDPDataProviderInfo;
    expectRows(0, &Info::reserved0, &Info::reserved1, &Info::setProviderName, &Info::setProviderFileMask,
               &Info::reserved2, &Info::addBoolOption, &Info::reserved3, &Info::addStringOption);
    using Options = DDPInitOptions;
    expectRows(0, &Options::hasOption, &Options::reserved0, &Options::boolOption, &Options::stringOption);
    using ElementGroups = DDPElementGroupInfo;
    expectRows(0, &ElementGroups::reserved0, &ElementGroups::reserved1, &ElementGroups::addGroup,
               &ElementGroups::setBoundaryFlag, &ElementGroups::setParentPart, &ElementGroups::reserved2,
               &ElementGroups::setGroupProperty);
    using GeometryInfo = DDPGeometryInfo;
    expectRows(0, &GeometryInfo::reserved0, &GeometryInfo::reserved1, &GeometryInfo::addPart, &GeometryInfo::reserved2,
               &GeometryInfo::elementGroupInfo, &GeometryInfo::setGeometryMode);
    using ResultInfo = DDPResultInfo;
    expectRows(0, &ResultInfo::reserved0, &ResultInfo::reserved1, &ResultInfo::setResultKey, &ResultInfo::setResultUnit,
               &ResultInfo::setDisplacementFlag);
    using MetaData = DDPMetaData;
    expectRows(0, &MetaData::reserved0, &MetaData::reserved1, &MetaData::setSimulationInfo, &MetaData::geometryInfo,
               &MetaData::addState, &MetaData::reserved2, &MetaData::reserved3, &MetaData::addResult);
    using Spec = DDPGeometrySpec;
    expectRows(0, &Spec::reserved0, &Spec::reserved1, &Spec::geometrySelector);
    using Nodes = DDPNodeGroup;
    expectRows(0, &Nodes::reserved0, &Nodes::reserved1, &Nodes::setNodes, &Nodes::setNodeIds, &Nodes::nodeGroupId);
    using Elements = DDPElementGroup;
    expectRows(0, &Elements::reserved0, &Elements::reserved1, &Elements::setUniformElements,
               &Elements::setMixedElements, &Elements::setPolyhedra, &Elements::setElementPartIds);
    using Geometry = DDPGeometry;
    expectRows(0, &Geometry::reserved0, &Geometry::reserved1, &Geometry::addNodeGroup, &Geometry::addElementGroup);
    using ResultSpec = DDPResultSpec;
    expectRows(0, &ResultSpec::reserved0, &ResultSpec::reserved1, &ResultSpec::reserved2, &ResultSpec::resultId,
               &ResultSpec::stateId);
    using ValueGroup = DDPResultValueGroup;
    expectRows(0, &ValueGroup::reserved0, &ValueGroup::reserved1, &ValueGroup::setValues);
    expectRows(0, &DDPResult::reserved0, &DDPResult::reserved1, &DDPResult::addValueGroup);
    expectRows(0, &DDPSet::reserved0, &DDPSet::reserved1, &DDPSet::reserved2, &DDPSet::addSetItems);
    using Changes = DDPChangeNotifications;
    expectRows(0, &Changes::reserved0, &Changes::reserved1, &Changes::reserved2, &Changes::reserved3,
               &Changes::reserved4, &Changes::reserved5, &Changes::updateState, &Changes::addState,
               &Changes::removeState);
}

} // namespace
