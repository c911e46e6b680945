// SPDX-License-Identifier: MIT
//
// Checks of a case from opening to closing: which calls are allowed when, and that each time delivers the same.
#include "border/HostSet.h"
#include "check/Check.h"
#include "check/CheckRun.h"
#include "check/DeliveryDigest.h"

#include <fmt/format.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace {

constexpr std::int32_t LEAST_ID = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t GREATEST_ID = std::numeric_limits<std::int32_t>::max();

void expectEqual(CheckRun& run, const DeliveryDigest& first, const DeliveryDigest& second, const std::string& when)
{
    const std::string difference = first.differenceTo(second);
    run.expect(difference.empty(), fmt::format("{}, {} differs", when, difference));
}

/// Ids that no group, state or result has.
template <typename Items>
std::vector<std::int32_t> foreignIds(const Items& items)
{
    std::vector<std::int32_t> ids = {LEAST_ID, -1, 0, 1000, GREATEST_ID};
    std::int32_t greatest = 0;
    for (const auto& item : items) {
        greatest = std::max(greatest, item.id);
        std::erase(ids, item.id);
    }
    ids.push_back(greatest + 1);
    return ids;
}

void checkForeignResults(CheckRun& run, CheckedCase& open, const HostMetaData& metaData)
{
    const auto expectNone = [&](std::int32_t resultId, std::int32_t stateId) {
        run.expect(open.result(resultId, stateId) == nullptr,
                   fmt::format("there is a result {} at state {}", resultId, stateId));
    };
    const std::vector<std::int32_t> foreignStates = foreignIds(metaData.states);
    for (const std::int32_t resultId : foreignIds(metaData.results)) {
        for (const HostState& state : metaData.states) {
            expectNone(resultId, state.id);
        }
        for (const std::int32_t stateId : foreignStates) {
            expectNone(resultId, stateId);
        }
    }
    for (const HostResultInfo& result : metaData.results) {
        for (const std::int32_t stateId : foreignStates) {
            expectNone(result.id, stateId);
        }
    }
}

} // namespace

void checkOpening(CheckRun& run)
{
    (void)run.open();
}

void checkReload(CheckRun& run)
{
    const DeliveryDigest first = digestOf(*run.open());
    expectEqual(run, first, digestOf(*run.open()), "after loading again");
}

void checkSettingsAsked(CheckRun& run)
{
    static const std::vector<std::string> WANTED = {
        "LOAD_GLOBAL_MESH",         "LOAD_LOCAL_MESHES",     "LOAD_BC_PARTS",
        "LOAD_CELL_ZONES",          "LOAD_FACE_ZONES",       "NODE_AVG_RES",
        "HIDE_PARALLEL_INTERFACES", "RESULTS_NAMES_MAPPING", HostOptions::EXTENDED_READING};
    const std::unique_ptr<CheckedCase> open = run.open();
    const std::vector<std::string>& asked = open->options().askedKeys();
    run.expect(asked == WANTED, fmt::format("init asks for {}", fmt::join(asked, ", ")));
}

void checkOddCallOrders(CheckRun& run)
{
    const DeliveryDigest usual = digestOf(*run.open());
    const std::shared_ptr<PluginLibrary> library = run.load();
    DDPDataProviderFactory& factory = library->factory();
    const HostOptions options = run.options(*library);
    const DDPString path(OpenedCase::tokenFile(run.task().casePath).c_str());
    callLibrary("destroyProviderInstance of nothing", [&] { factory.destroyProviderInstance(nullptr); });
    callLibrary("a provider that never opens a case",
                [&] { factory.destroyProviderInstance(factory.createProviderInstance()); });
    callLibrary("a provider that is never closed", [&] {
        DDPDataProvider* const provider = factory.createProviderInstance();
        (void)provider->init(path, options, nullptr);
        factory.destroyProviderInstance(provider);
    });
    callLibrary("init with an empty path", [&] {
        DDPDataProvider* const provider = factory.createProviderInstance();
        run.expect(provider->init(DDPString(), options, nullptr) == 0, "an empty path opens");
        factory.destroyProviderInstance(provider);
    });

    const std::unique_ptr<CheckedCase> open = run.open();
    const std::unique_ptr<HostMetaData> metaData = open->metaData();
    for (const HostResultInfo& result : metaData->results) {
        // Without a geometry the number of values is unknown; the delivery may be empty, but must not do damage.
        (void)open->result(result.id, metaData->states.front().id);
    }
    expectEqual(run, usual, digestOf(*open), "after results were requested before the geometry");
    expectEqual(run, usual, digestOf(*open), "when everything was requested again");
}

void checkGarbageIds(CheckRun& run)
{
    const std::unique_ptr<CheckedCase> open = run.open();
    const DeliveryDigest before = digestOf(*open);
    const std::unique_ptr<HostMetaData> metaData = open->metaData();
    DDPDataProvider& provider = open->provider();
    for (const std::int64_t selector : {std::int64_t{1}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        HostGeometry geometry;
        const HostGeometrySpec spec(selector);
        run.expect(!callLibrary("getGeometry", [&] { return provider.getGeometry(spec, &geometry); }) &&
                       geometry.nodeGroups.empty(),
                   fmt::format("there is a geometry {}", selector));
    }
    for (const std::int32_t id : {LEAST_ID, -1, 0, 100000, GREATEST_ID}) {
        HostSet set;
        run.expect(!callLibrary("getSet", [&] { return provider.getSet(id, &set); }) && set.items.empty(),
                   fmt::format("there is a set {}", id));
        run.expect(!callLibrary("getRigidBodyTransformations",
                                [&] { return provider.getRigidBodyTransformations(0, id, nullptr); }),
                   "there are transformations");
        run.expect(!callLibrary("getElementVisibilityResult",
                                [&] { return provider.getElementVisibilityResult(0, id, nullptr); }),
                   "there is a visibility");
    }
    checkForeignResults(run, *open, *metaData);
    expectEqual(run, before, digestOf(*open), "after requests for things that do not exist");
}

void checkEqualOpenings(CheckRun& run)
{
    // Both open at once, as in a host with two windows, and queried in turns.
    const std::shared_ptr<PluginLibrary> library = run.load();
    const std::unique_ptr<CheckedCase> first = run.open(library, run.task().casePath);
    const std::unique_ptr<CheckedCase> second = run.open(library, run.task().casePath);
    const DeliveryDigest digest = digestOf(*first);
    expectEqual(run, digest, digestOf(*second), "when opened a second time");
    expectEqual(run, digest, digestOf(*first), "queried after the other opening");
}

void checkEqualThreads(CheckRun& run)
{
    std::optional<DeliveryDigest> first;
    for (const int threads : {1, 2, 8}) {
        // Outlives the arena: unloading ends the workers, which none of them could do itself.
        const std::unique_ptr<CheckedCase> open = run.open();
        DeliveryDigest digest;
        {
            // The control allows more threads than the machine has processors; the arena has room for that many.
            const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                            static_cast<std::size_t>(threads));
            tbb::task_arena arena(threads);
            arena.execute([&] { digest = digestOf(*open); });
        }
        if (!first) {
            first = digest;
        }
        expectEqual(run, *first, digest, fmt::format("with {} threads", threads));
    }
}
