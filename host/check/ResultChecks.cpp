// SPDX-License-Identifier: MIT
//
// Checks of the values of results.
#include "border/DeliveryCheck.h"
#include "border/TextForms.h"
#include "check/Check.h"
#include "check/CheckRun.h"
#include "check/DeliveryDigest.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

/// One result of one state, as the checks see it.
struct Delivery
{
    const SoundGeometry& sound;
    const HostResultInfo& info;
    const HostState& state;
    const HostResult& result;

    std::string name() const { return fmt::format("{} at {}", info.name, state.referenceValue); }
};

/// Requests each declared result at a few states and hands it on.
///
/// Displacements are missing for a state without its own points; every other result is delivered, if only with
/// undefined values.
template <typename Visit>
void forEachDelivery(CheckRun& run, Visit visit)
{
    const SoundGeometry sound = run.openGeometry();
    if (sound.metaData->results.empty()) {
        throw CheckSkipped{"the case has no results"};
    }
    for (const HostState* const state : sampleOfStates(*sound.metaData)) {
        for (const HostResultInfo& info : sound.metaData->results) {
            const std::unique_ptr<HostResult> result = sound.open->result(info.id, state->id);
            if (result != nullptr) {
                visit(Delivery{sound, info, *state, *result});
            } else if (info.kind != KIND_DISPLACEMENT) {
                run.fail(fmt::format("{} at {} is missing", info.name, state->referenceValue));
            }
        }
    }
}

std::size_t itemsOf(const Delivery& delivery, std::size_t group)
{
    const HostElementGroup& elements = delivery.sound.geometry->elementGroups[group];
    return delivery.info.mapping == MAPPING_NODE ? delivery.sound.geometry->nodesOf(elements)->nodeCount()
                                                 : elements.elementCount();
}

/// True for the displacements of a part in plain reading: they are the points that the time folder holds, however many.
bool isMovedFreely(const Delivery& delivery, std::size_t group)
{
    return delivery.info.kind == KIND_DISPLACEMENT && !delivery.sound.open->readsExtended() &&
           delivery.sound.groups[group]->kind() == HostGroupKind::Part;
}

} // namespace

void checkValueGroups(CheckRun& run)
{
    forEachDelivery(run, [&](const Delivery& delivery) {
        std::size_t all = 0;
        std::size_t surfaces = 0;
        for (const HostGroup* const group : delivery.sound.groups) {
            all += group->kind() == HostGroupKind::FaceZone ? 0U : 1U;
            surfaces += group->kind() == HostGroupKind::Surface ? 1U : 0U;
        }
        // Surfaces have no displacements, and no values of a result that the state lacks.
        const std::size_t found = delivery.result.groups.size();
        run.expect(found == all || found == all - surfaces,
                   fmt::format("{} has {} value groups where {} groups need values", delivery.name(), found, all));
        const bool isOwn = belongsToItsGroups(*delivery.sound.metaData, delivery.info, delivery.state.id);
        for (std::size_t i = 0; i < delivery.sound.groups.size(); ++i) {
            const HostValueGroup* const values = valuesOfGroup(*delivery.sound.metaData, delivery.result, i);
            const std::size_t items = itemsOf(delivery, i);
            if (values != nullptr && values->itemCount() != items && isMovedFreely(delivery, i)) {
                run.limit("decision 11", fmt::format("{} moves {} points of {}, which has {} nodes", delivery.name(),
                                                     values->itemCount(), delivery.sound.groups[i]->name, items));
                continue;
            }
            // Groups are recognised by their lengths. Only a surface whose file cannot be read has no values.
            run.expect(values == nullptr || values->itemCount() == items || !isOwn ||
                           (values->itemCount() == 0 && delivery.sound.groups[i]->kind() == HostGroupKind::Surface),
                       fmt::format("{} has {} items in the position of {}, which has {}", delivery.name(),
                                   values == nullptr ? 0 : values->itemCount(), delivery.sound.groups[i]->name, items));
        }
    });
}

void checkValueArrays(CheckRun& run)
{
    forEachDelivery(run, [&](const Delivery& delivery) {
        try {
            checkResult(*delivery.sound.metaData, *delivery.sound.geometry, delivery.info, delivery.result);
        } catch (const HostError& error) {
            run.fail(fmt::format("{}: {}", delivery.name(), error.what()));
        }
        const std::int32_t expected = componentCount(delivery.info.kind);
        for (std::size_t i = 0; i < delivery.result.groups.size(); ++i) {
            const HostValueGroup& values = delivery.result.groups[i];
            run.expect(values.dimension == expected || values.values.empty(),
                       fmt::format("{}: value group {} has {} instead of {}", delivery.name(), i,
                                   counted(static_cast<std::size_t>(values.dimension), "component"), expected));
        }
    });
}

void checkReplacedValues(CheckRun& run)
{
    forEachDelivery(run, [&](const Delivery& delivery) {
        for (std::size_t i = 0; i < delivery.result.groups.size(); ++i) {
            const auto& shapes = delivery.result.groups[i].shapes;
            run.expect(
                std::ranges::all_of(shapes, [&](const auto& shape) { return shape == shapes.front(); }),
                fmt::format("{}: the calls that set value group {} differ in length, so one does not replace the other",
                            delivery.name(), i));
        }
        DeliveryDigest first;
        first.addResult(delivery.info, delivery.state, &delivery.result);
        DeliveryDigest second;
        second.addResult(delivery.info, delivery.state,
                         delivery.sound.open->result(delivery.info.id, delivery.state.id).get());
        const std::string difference = first.differenceTo(second);
        run.expect(difference.empty(), fmt::format("requested again, {} differs", difference));
    });
}

void checkValueThreads(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    if (sound.metaData->results.empty()) {
        throw CheckSkipped{"the case has no results"};
    }
    // Long enough for a second thread to meet the first one in the group.
    HostCallRecord::setStall(std::chrono::milliseconds(2));
    for (const HostResultInfo& info : sound.metaData->results) {
        (void)sound.open->result(info.id, sound.metaData->states.back().id);
    }
}
