// SPDX-License-Identifier: MIT
// Sample cases read with the library that ships. Each side checks the other: the cases are written from formulas, and
// the values are compared with these, so an error goes unnoticed only if both sides misunderstand the format alike.
#include "border/DeliveryCheck.h"
#include "border/OpenedCase.h"
#include "sample/SampleCase.h"
#include "sample/SampleFields.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// Ascii files have six digits, and values are around 300.
constexpr double ASCII_TOLERANCE = 1e-3;

/// A sample case, written and opened.
class OpenSample
{
public:
    explicit OpenSample(SampleKind kind, FoamFormat format = {})
    {
        SampleOptions sample;
        sample.kind = kind;
        sample.cells = 200;
        sample.format = format;
        report = writeSampleCase(folder / "case", sample);
        options.setBool("LOAD_FACE_ZONES", true);
        opened = std::make_unique<OpenedCase>(library, folder / "case", options);
    }

    const HostGeometry& geometry() const { return opened->geometry(); }
    HostGroupKind kindOf(std::size_t group) const { return opened->metaData().geometryGroups()[group]->kind(); }

    /// A result of the state at time 0.5.
    std::unique_ptr<HostResult> resultAtHalf(const std::string& key) const
    {
        const HostMetaData& metaData = opened->metaData();
        return opened->result(*std::ranges::find(metaData.results, key, &HostResultInfo::key),
                              std::ranges::find(metaData.states, 0.5, &HostState::referenceValue)->id);
    }

    TempFolder folder;
    SampleReport report;
    PluginLibrary library{REAL_PLUGIN};
    HostOptions options;
    std::unique_ptr<OpenedCase> opened;
};

SamplePoint pointOf(const HostNodeGroup& nodes, std::size_t label)
{
    return {nodes.coordinates[3 * label], nodes.coordinates[3 * label + 1], nodes.coordinates[3 * label + 2]};
}

/// The number of cells of all parts.
int cellsOf(const OpenSample& sample)
{
    std::size_t cells = 0;
    for (std::size_t i = 0; i < sample.geometry().elementGroups.size(); ++i) {
        const bool isPart = sample.kindOf(i) == HostGroupKind::Part;
        cells += isPart ? sample.geometry().elementGroups[i].elementCount() : 0;
    }
    return static_cast<int>(cells);
}

/// Checks the temperature at the nodes of all groups of a kind and returns the number of these groups.
int expectTemperatureAtNodes(const OpenSample& sample, const std::string& key, HostGroupKind kind)
{
    const std::unique_ptr<HostResult> result = sample.resultAtHalf(key);
    int count = 0;
    for (std::size_t i = 0; i < sample.geometry().elementGroups.size(); ++i) {
        const HostValueGroup* const group = valuesOfGroup(sample.opened->metaData(), *result, i);
        if (sample.kindOf(i) != kind || group == nullptr) {
            continue;
        }
        ++count;
        const HostNodeGroup& nodes = *sample.geometry().nodesOf(sample.geometry().elementGroups[i]);
        EXPECT_EQ(group->values.size(), nodes.nodeCount());
        for (std::size_t node = 0; node < group->values.size(); ++node) {
            EXPECT_NEAR(group->values[node], sampleTemperature(pointOf(nodes, node), 0.5), ASCII_TOLERANCE);
        }
    }
    return count;
}

constexpr std::array<FoamFormat, 4> ALL_FORMATS = {{{false, false}, {false, true}, {true, false}, {true, true}}};

} // namespace

TEST(RoundTrip, EveryKindAndFormatHasItsCellsAndTemperatures)
{
    for (int number = 0; number < 8; ++number) {
        const auto kind = static_cast<SampleKind>(number);
        for (const FoamFormat& format : ALL_FORMATS) {
            SCOPED_TRACE(testing::Message()
                         << number << (format.binary ? " binary" : "") << (format.gzip ? " gzip" : ""));
            const OpenSample sample(kind, format);
            // Regions are delivered in addition to the global mesh.
            const int meshes = kind == SampleKind::Regions ? 2 : 1;
            EXPECT_EQ(cellsOf(sample), meshes * sample.report.cells);
            EXPECT_GT(expectTemperatureAtNodes(sample, "POINTT_N*", HostGroupKind::Part), 0);
        }
    }
    EXPECT_EQ(expectTemperatureAtNodes(OpenSample(SampleKind::Surface), "TEMPERATURE_N*", HostGroupKind::Surface), 2);
}

// The temperature is linear in space, so an element has the mean temperature of its nodes.
TEST(RoundTrip, CellsAndPatchesHaveTheTemperatureAtTheirPlace)
{
    for (const FoamFormat& format : ALL_FORMATS) {
        const OpenSample sample(SampleKind::Hex, format);
        const std::unique_ptr<HostResult> result = sample.resultAtHalf("TEMPERATURE_E");
        // The cells, the inlet with one form of list, and the ceiling with another.
        for (const std::size_t group : {0U, 1U, 6U}) {
            const HostElementGroup& elements = sample.geometry().elementGroups[group];
            const HostNodeGroup& nodes = *sample.geometry().nodesOf(elements);
            std::vector<double> means(elements.elementCount());
            const std::size_t nodeCount = group == 0 ? 8 : 4;
            for (std::size_t i = 0; i < elements.connectivity.size(); ++i) {
                const SamplePoint place = pointOf(nodes, static_cast<std::size_t>(elements.connectivity[i]));
                means[i / nodeCount] += sampleTemperature(place, 0.5) / static_cast<double>(nodeCount);
            }
            ASSERT_EQ(result->groups[group].values.size(), means.size());
            for (std::size_t i = 0; i < means.size(); ++i) {
                EXPECT_NEAR(result->groups[group].values[i], means[i], ASCII_TOLERANCE) << group << " " << i;
            }
        }
    }
}

// Inner nodes have eight equal cubes around them, whose mean of a linear field is its value at the node. Moved points
// in binary files match the formula exactly.
TEST(RoundTrip, AveragesAndMovedNodesMatchTheFormulas)
{
    const OpenSample sample(SampleKind::Moving, {true, false});
    const std::unique_ptr<HostResult> velocity = sample.resultAtHalf("VELOCITY_N");
    const std::unique_ptr<HostResult> moved = sample.resultAtHalf("POINTS");
    const HostNodeGroup& nodes = sample.geometry().nodeGroups[0];
    const double high = std::ranges::max(nodes.coordinates);
    int inner = 0;
    for (std::size_t node = 0; node < nodes.nodeCount(); ++node) {
        const SamplePoint place = pointOf(nodes, node);
        const bool isInner = std::ranges::min(place) > 0 && std::ranges::max(place) < high - 0.13;
        inner += isInner ? 1 : 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_EQ(moved->groups[0].values[3 * node + axis], movedPoint(place, 0.5)[axis]);
            const double mean = velocity->groups[0].values[3 * node + axis];
            EXPECT_TRUE(!isInner || std::abs(mean - sampleVelocity(place, 0.5)[axis]) < 1e-5) << mean;
        }
    }
    EXPECT_GT(inner, 50);
}
