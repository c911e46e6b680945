// SPDX-License-Identifier: MIT
#include "commands/Selection.h"
#include "border/HostError.h"
#include "commands/Statistics.h"
#include "output/TextTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

} // namespace

TEST(Selection, FindsStatesByOrderTimeAndId)
{
    HostMetaData metaData;
    EXPECT_TRUE(selectStates(metaData, "last").empty());
    describe(&metaData);
    using Ids = std::vector<std::int32_t>;
    // A time may be typed with other digits than the folder's name has.
    for (const auto& [text, expected] :
         {std::pair("last", Ids{9}), {"all", {5, 9, 2}}, {"0.02", {5}}, {"0.0200000001", {5}}, {"#2", {2}}}) {
        Ids ids;
        std::ranges::transform(selectStates(metaData, text), std::back_inserter(ids), &HostState::id);
        EXPECT_EQ(ids, expected) << text;
    }
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
    EXPECT_THROW(selectResults(metaData, "["), HostError);
    EXPECT_EQ(selectGroups(metaData, "in|x"), std::vector<std::size_t>{1});
    EXPECT_THROW(selectGroups(metaData, "outlet"), HostError);
}

TEST(Statistics, KeepComponentsAndKindsOfNumberApart)
{
    const std::vector<double> values = {1, NAN, 3, UNDEFINED_VALUE, 5, -INFINITY};
    HostValueGroup group;
    group.setValues(values.data(), 2, 3);
    const std::vector<ComponentStatistics> result = statisticsOf(group);
    ASSERT_EQ(result.size(), 2U);
    EXPECT_EQ((std::array{result[0].mean, result[0].least, result[0].greatest}), (std::array{3.0, 1.0, 5.0}));
    EXPECT_EQ(result[0].items, 3U);
    EXPECT_EQ(result[1].notANumber + result[1].undefined + result[1].infinite, 3U);
    EXPECT_TRUE(std::isnan(result[1].mean) && std::isnan(result[1].least)) << "nothing is left to take the mean of";
}

TEST(TextTable, LinesUpNamesBeyondAscii)
{
    TextTable table({TextTable::Align::Left, TextTable::Align::Right});
    table.add({"Wärme", "1"});
    table.add({"Flow", "200"});
    EXPECT_EQ(table.text(1), " Wärme    1\n Flow   200\n");
}
