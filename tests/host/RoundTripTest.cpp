// SPDX-License-Identifier: MIT
//
// Sample cases through the library that ships. Each side checks the other: the cases are made from formulas and the
// values are compared with those, so what both got wrong in the same way would have to be wrong in the format as well.
#include "GridVolume.h"
#include "TempFolder.h"
#include "border/CaseSession.h"
#include "border/DeliveryCheck.h"
#include "sample/SampleCase.h"
#include "sample/SampleFields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// Six digits of a value around 300.
constexpr double ASCII_TOLERANCE = 1e-3;

/// A sample case, written and opened.
class OpenSample
{
public:
    explicit OpenSample(SampleKind kind, FoamFormat format = {}, int cells = 200)
    {
        SampleOptions sample;
        sample.kind = kind;
        sample.cells = cells;
        sample.format = format;
        report = writeSampleCase(folder / "case", sample);
        options.setBool("LOAD_FACE_ZONES", true);
        session = std::make_unique<CaseSession>(library, folder / "case", options);
    }

    const HostResultInfo& resultInfo(const std::string& key) const
    {
        const auto& results = session->metaData().results;
        return *std::ranges::find(results, key, &HostResultInfo::key);
    }

    /// A result of the state at time 0.5.
    std::unique_ptr<HostResult> resultAtHalf(const std::string& key) const
    {
        const auto& states = session->metaData().states;
        return session->result(resultInfo(key), std::ranges::find(states, 0.5, &HostState::referenceValue)->id);
    }

    TempFolder folder;
    SampleReport report;
    PluginLibrary library{REAL_PLUGIN};
    HostOptions options;
    std::unique_ptr<CaseSession> session;
};

SamplePoint pointOf(const HostNodeGroup& nodes, std::size_t label)
{
    return {nodes.coordinates[3 * label], nodes.coordinates[3 * label + 1], nodes.coordinates[3 * label + 2]};
}

/// The mean of the nodes of an element that all have `nodeCount` nodes, which is its centre for cubes and rectangles.
SamplePoint centreOf(const HostNodeGroup& nodes, const HostElementGroup& elements, std::size_t element,
                     std::size_t nodeCount)
{
    SamplePoint centre = {};
    for (std::size_t k = 0; k < nodeCount; ++k) {
        const auto node = static_cast<std::size_t>(elements.connectivity[element * nodeCount + k]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            centre[axis] += pointOf(nodes, node)[axis] / static_cast<double>(nodeCount);
        }
    }
    return centre;
}

/// Volume of the box about all nodes of a part.
double boxVolume(const HostNodeGroup& nodes)
{
    double volume = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double low = nodes.coordinates[axis];
        double high = low;
        for (std::size_t i = axis; i < nodes.coordinates.size(); i += 3) {
            low = std::min(low, nodes.coordinates[i]);
            high = std::max(high, nodes.coordinates[i]);
        }
        volume *= high - low;
    }
    return volume;
}

/// Every cell of every part has a positive volume, and the cells of a part fill its box.
void expectPartsFilled(const OpenSample& sample)
{
    const std::vector<const HostGroup*> declared = sample.session->metaData().geometryGroups();
    const HostGeometry& geometry = sample.session->geometry();
    for (std::size_t i = 0; i < declared.size(); ++i) {
        if (declared[i]->kind() != HostGroupKind::Part) {
            continue;
        }
        const HostElementGroup& elements = geometry.elementGroups[i];
        const HostNodeGroup& nodes = *geometry.nodesOf(elements);
        const std::vector<double> volumes = cellVolumes(makeVtkGrid(nodes, elements, false, 1));
        ASSERT_FALSE(volumes.empty()) << declared[i]->name;
        EXPECT_GT(std::ranges::min(volumes), 0) << declared[i]->name;
        EXPECT_NEAR(std::accumulate(volumes.begin(), volumes.end(), 0.0), boxVolume(nodes), 1e-9) << declared[i]->name;
    }
}

constexpr std::array<SampleKind, 8> ALL_KINDS = {SampleKind::Hex,    SampleKind::Poly,    SampleKind::Mixed,
                                                 SampleKind::Zones,  SampleKind::Regions, SampleKind::Decomposed,
                                                 SampleKind::Moving, SampleKind::Surface};

constexpr std::array<FoamFormat, 4> ALL_FORMATS = {{{false, false}, {false, true}, {true, false}, {true, true}}};

} // namespace

TEST(RoundTrip, EveryKindInEveryFormatFillsItsBox)
{
    for (const SampleKind kind : ALL_KINDS) {
        for (const FoamFormat& format : ALL_FORMATS) {
            SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(kind) << (format.binary ? " binary" : "")
                                            << (format.gzip ? " gzip" : ""));
            expectPartsFilled(OpenSample(kind, format));
        }
    }
}

TEST(RoundTrip, CellsAndPatchesCarryTheTemperatureOfTheirPlace)
{
    for (const FoamFormat& format : ALL_FORMATS) {
        const OpenSample sample(SampleKind::Hex, format);
        const std::unique_ptr<HostResult> result = sample.resultAtHalf("TEMPERATURE_E");
        const HostGeometry& geometry = sample.session->geometry();
        // The cells, the inlet with a list of values, and the ceiling with another type of list.
        for (const std::size_t group : {std::size_t{0}, std::size_t{1}, std::size_t{6}}) {
            const HostElementGroup& elements = geometry.elementGroups[group];
            const std::size_t nodeCount = group == 0 ? 8 : 4;
            const std::vector<double>& values = result->groups[group].values;
            ASSERT_EQ(values.size(), elements.elementCount());
            for (std::size_t i = 0; i < values.size(); ++i) {
                const SamplePoint centre = centreOf(*geometry.nodesOf(elements), elements, i, nodeCount);
                EXPECT_NEAR(values[i], sampleTemperature(centre, 0.5), ASCII_TOLERANCE) << group << " " << i;
            }
        }
    }
}

TEST(RoundTrip, NodesOfEveryPieceCarryTheTemperatureOfTheirPlace)
{
    for (const SampleKind kind : ALL_KINDS) {
        SCOPED_TRACE(static_cast<int>(kind));
        const OpenSample sample(kind);
        const std::unique_ptr<HostResult> result = sample.resultAtHalf("POINTT_N*");
        const HostMetaData& metaData = sample.session->metaData();
        const HostGeometry& geometry = sample.session->geometry();
        for (std::size_t i = 0; i < geometry.elementGroups.size(); ++i) {
            const HostValueGroup* const group = valuesOfGroup(metaData, *result, i);
            if (metaData.geometryGroups()[i]->kind() != HostGroupKind::Part || group == nullptr) {
                continue;
            }
            const HostNodeGroup& nodes = *geometry.nodesOf(geometry.elementGroups[i]);
            ASSERT_EQ(group->values.size(), nodes.nodeCount());
            for (std::size_t node = 0; node < nodes.nodeCount(); ++node) {
                EXPECT_NEAR(group->values[node], sampleTemperature(pointOf(nodes, node), 0.5), ASCII_TOLERANCE);
            }
        }
    }
}

// Eight equal cubes around a node: the mean of a field that is linear in space is its value at the node.
TEST(RoundTrip, AveragesAtInnerNodesAreTheValuesThere)
{
    const OpenSample sample(SampleKind::Hex);
    const std::unique_ptr<HostResult> result = sample.resultAtHalf("VELOCITY_N");
    const HostNodeGroup& nodes = sample.session->geometry().nodeGroups[0];
    double high = 0;
    for (const double coordinate : nodes.coordinates) {
        high = std::max(high, coordinate);
    }
    int inner = 0;
    for (std::size_t node = 0; node < nodes.nodeCount(); ++node) {
        const SamplePoint place = pointOf(nodes, node);
        if (std::ranges::min(place) == 0 || std::ranges::max(place) > high - 0.13) {
            continue;
        }
        ++inner;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(result->groups[0].values[3 * node + axis], sampleVelocity(place, 0.5)[axis], 1e-5);
        }
    }
    EXPECT_GT(inner, 50);
}

TEST(RoundTrip, MovedNodesStandWhereTheFormulaPutsThem)
{
    const OpenSample sample(SampleKind::Moving, {true, false});
    const std::unique_ptr<HostResult> result = sample.resultAtHalf("POINTS");
    const HostNodeGroup& nodes = sample.session->geometry().nodeGroups[0];
    ASSERT_EQ(result->groups[0].itemCount(), nodes.nodeCount());
    for (std::size_t node = 0; node < nodes.nodeCount(); ++node) {
        const SamplePoint moved = movedPoint(pointOf(nodes, node), 0.5);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_EQ(result->groups[0].values[3 * node + axis], moved[axis]);
        }
    }
}

TEST(RoundTrip, ZonesMarkTheirCells)
{
    const OpenSample sample(SampleKind::Zones);
    const HostMetaData& metaData = sample.session->metaData();
    std::vector<std::string> names;
    for (const HostGroup& group : metaData.groups) {
        if (group.kind() != HostGroupKind::Boundary) {
            names.push_back(group.name);
        }
    }
    EXPECT_EQ(names, (std::vector<std::string>{"default_region", "heater", "probe", "inner [FZ]", "skin [FZ]"}));
    const std::vector<std::int32_t>& partIds = sample.session->geometry().elementGroups[0].partIds;
    const auto heater = static_cast<std::int32_t>(std::ranges::count(partIds, metaData.groups[1].id));
    EXPECT_EQ(heater, sample.report.cells / 3);
    EXPECT_EQ(partIds.back(), metaData.groups[2].id);
    EXPECT_EQ(partIds[partIds.size() / 2], metaData.groups[0].id) << "in no zone";
}

TEST(RoundTrip, SampledSurfacesCarryTheirValues)
{
    const OpenSample sample(SampleKind::Surface);
    const std::unique_ptr<HostResult> result = sample.resultAtHalf("TEMPERATURE_N*");
    const HostMetaData& metaData = sample.session->metaData();
    const HostGeometry& geometry = sample.session->geometry();
    int surfaces = 0;
    for (std::size_t i = 0; i < geometry.elementGroups.size(); ++i) {
        if (metaData.geometryGroups()[i]->kind() != HostGroupKind::Surface) {
            continue;
        }
        ++surfaces;
        const HostNodeGroup& nodes = *geometry.nodesOf(geometry.elementGroups[i]);
        const HostValueGroup& group = *valuesOfGroup(metaData, *result, i);
        for (std::size_t node = 0; node < nodes.nodeCount(); ++node) {
            EXPECT_NEAR(group.values[node], sampleTemperature(pointOf(nodes, node), 0.5), ASCII_TOLERANCE);
        }
    }
    EXPECT_EQ(surfaces, 2);
}

TEST(RoundTrip, ANewTimeFolderIsTold)
{
    const OpenSample sample(SampleKind::Hex);
    sample.session->metaData();
    HostNotifications notifications;
    sample.session->poll(&notifications);
    EXPECT_TRUE(notifications.notices.empty());
    std::filesystem::copy(sample.folder / "case/0.5", sample.folder / "case/1",
                          std::filesystem::copy_options::recursive);
    sample.session->poll(&notifications);
    ASSERT_EQ(notifications.notices.size(), 1U);
    EXPECT_EQ(notifications.notices[0].kind, HostNotice::Kind::Add);
    EXPECT_EQ(notifications.notices[0].referenceValue, 1.0);
}
