// SPDX-License-Identifier: MIT
#include "commands/Selection.h"
#include "border/HostError.h"
#include "commands/Statistics.h"
#include "output/TextTable.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// A case whose states are not in order of time, as the interface allows.
void describe(HostMetaData* metaData)
{
    metaData->addState(5, DDPString("b"), 0.02);
    metaData->addState(9, DDPString("c"), 10);
    metaData->addState(2, DDPString("a"), 0);
    metaData->addResult(KIND_SCALAR, 1, DDPString("Pressure"), MAPPING_ELEMENT)->setResultKey(DDPString("PRESSURE_E"));
    metaData->addResult(KIND_SCALAR, 2, DDPString("Pressure [node]"), MAPPING_NODE)
        ->setResultKey(DDPString("PRESSURE_N"));
    metaData->geometryInfo()->addPart(1, DDPString("default_region"));
    metaData->geometryInfo()->elementGroupInfo()->addGroup(2, DDPString("inlet"));
    metaData->geometryInfo()->elementGroupInfo()->setParentPart(2, 1);
    metaData->geometryInfo()->elementGroupInfo()->setBoundaryFlag(2, 1);
}

std::vector<std::int32_t> stateIds(const HostMetaData& metaData, const std::string& text)
{
    std::vector<std::int32_t> ids;
    for (const HostState* const state : selectStates(metaData, text)) {
        ids.push_back(state->id);
    }
    return ids;
}

} // namespace

TEST(Selection, FindsStatesByOrderTimeAndId)
{
    HostMetaData metaData;
    EXPECT_TRUE(selectStates(metaData, "last").empty());
    describe(&metaData);
    using Ids = std::vector<std::int32_t>;
    EXPECT_EQ(stateIds(metaData, "last"), Ids{9});
    EXPECT_EQ(stateIds(metaData, "all"), (Ids{5, 9, 2}));
    EXPECT_EQ(stateIds(metaData, "0.02"), Ids{5});
    EXPECT_EQ(stateIds(metaData, "0.0200000001"), Ids{5}) << "typed with other digits than the folder's name";
    EXPECT_EQ(stateIds(metaData, "#2"), Ids{2});
    for (const char* const nothing : {"5", "#5x", "#1", "0.02s", "", "nan"}) {
        EXPECT_THROW(selectStates(metaData, nothing), HostError) << nothing;
    }
}

TEST(Selection, MatchesNamesAndKeysOfResultsAndNamesOfGroups)
{
    HostMetaData metaData;
    describe(&metaData);
    EXPECT_EQ(selectResults(metaData, "").size(), 2U);
    EXPECT_EQ(selectResults(metaData, "^Pressure$").front()->id, 1);
    EXPECT_EQ(selectResults(metaData, "_N$").front()->id, 2);
    EXPECT_THROW(selectResults(metaData, "Velocity"), HostError);
    EXPECT_THROW(selectResults(metaData, "["), HostError);
    EXPECT_EQ(selectGroups(metaData, "in|x"), std::vector<std::size_t>{1});
    EXPECT_THROW(selectGroups(metaData, "outlet"), HostError);
}

TEST(Statistics, KeepComponentsAndKindsOfNumberApart)
{
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<double> values = {1, nan, 3, UNDEFINED_VALUE, 5, -infinity};
    HostValueGroup group;
    group.setValues(values.data(), 2, 3);
    const std::vector<ComponentStatistics> result = statisticsOf(group);
    ASSERT_EQ(result.size(), 2U);
    EXPECT_EQ(result[0].items, 3U);
    EXPECT_EQ(result[0].mean, 3);
    EXPECT_EQ(result[0].least, 1);
    EXPECT_EQ(result[0].greatest, 5);
    EXPECT_EQ(result[1].notANumber + result[1].undefined + result[1].infinite, 3U);
    EXPECT_TRUE(std::isnan(result[1].mean)) << "nothing is left to take the mean of";
    EXPECT_TRUE(std::isnan(result[1].least));
}

TEST(TextTable, LinesUpNamesBeyondAscii)
{
    TextTable table({TextTable::Align::Left, TextTable::Align::Right});
    table.add({"Wärme", "1"});
    table.add({"Flow", "200"});
    EXPECT_EQ(table.text(1), " Wärme    1\n Flow   200\n");
}
