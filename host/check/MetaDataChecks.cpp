// SPDX-License-Identifier: MIT
//
// Checks of the description of a case.
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace {

// What a host gets besides title and description: the mode, and the mode of the states if there are two or more.
constexpr std::int32_t MODE = 4;
constexpr std::int32_t STATE_MODE = 4;

/// The position of a call in the order of a description; groups and their properties share one.
int stageOf(const std::string& call)
{
    static const std::vector<std::string> STAGES = {"setSimulationInfo(", "setGeometryMode(0)", "", "addState(",
                                                    "addResult("};
    for (int stage = 0; stage < static_cast<int>(STAGES.size()); ++stage) {
        const std::string& start = STAGES[static_cast<std::size_t>(stage)];
        if (!start.empty() && call.starts_with(start)) {
            return stage;
        }
    }
    return 2;
}

} // namespace

void checkMetaDataOrder(CheckRun& run)
{
    const std::unique_ptr<HostMetaData> metaData = run.open()->metaData();
    const std::vector<std::string>& calls = metaData->calls;
    run.expect(calls.size() >= 2 && stageOf(calls[0]) == 0 && stageOf(calls[1]) == 1,
               "the first calls are not setSimulationInfo and setGeometryMode(0)");
    for (std::size_t i = 1; i < calls.size(); ++i) {
        run.expect(stageOf(calls[i - 1]) <= stageOf(calls[i]) && (i < 2 || stageOf(calls[i]) >= 2),
                   fmt::format("{} comes after {}", calls[i], calls[i - 1]));
    }
    const std::int32_t stateMode = metaData->states.size() < 2 ? 0 : STATE_MODE;
    run.expect(metaData->mode == MODE && metaData->stateMode == stateMode,
               fmt::format("the modes are {} and {}", metaData->mode, metaData->stateMode));
}

void checkDeclaredGroups(CheckRun& run)
{
    const std::unique_ptr<HostMetaData> metaData = run.open()->metaData();
    std::int32_t last = 0;
    for (const HostGroup& group : metaData->groups) {
        const std::string name = fmt::format("group {}, '{}',", group.id, group.name);
        run.expect(group.id > last, fmt::format("{} comes after {}", name, last));
        last = group.id;
        run.expect(!group.name.empty(), name + " has no name");
        const bool boundary = group.kind() == HostGroupKind::Boundary;
        if (group.kind() == HostGroupKind::Part) {
            run.expect(!group.boundaryFlag && group.properties.empty(), name + " is a part with a flag or a type");
            continue;
        }
        run.expect(!group.type().empty() && group.boundaryFlag == (boundary ? 1 : 0), name + " has no type or flag");
        if (group.kind() != HostGroupKind::Surface) {
            const HostGroup* const parent = metaData->findGroup(group.parentId.value_or(0));
            run.expect(parent != nullptr && parent < &group && parent->kind() == HostGroupKind::Part,
                       name + " does not belong to a part declared before it");
        }
    }
}

void checkDeclaredStates(CheckRun& run)
{
    const std::unique_ptr<HostMetaData> metaData = run.open()->metaData();
    std::set<std::int32_t> ids;
    for (std::size_t i = 0; i < metaData->states.size(); ++i) {
        const HostState& state = metaData->states[i];
        run.expect(ids.insert(state.id).second && state.id >= 1 &&
                       static_cast<std::size_t>(state.id) <= metaData->states.size(),
                   fmt::format("state {} of {} has the id {}", i, metaData->states.size(), state.id));
        run.expect(i == 0 || metaData->states[i - 1].referenceValue <= state.referenceValue,
                   fmt::format("state {} is earlier than the one before it", i));
        const std::string start = fmt::format("Time {:.5f} #", state.referenceValue);
        run.expect(state.name.starts_with(start), fmt::format("state {} has the name '{}'", i, state.name));
    }
}

void checkDeclaredResults(CheckRun& run)
{
    static const std::set<std::int32_t> KINDS = {KIND_SCALAR, KIND_VECTOR, KIND_DISPLACEMENT, KIND_TENSOR};
    const std::unique_ptr<HostMetaData> metaData = run.open()->metaData();
    std::set<std::string> keys;
    std::int32_t next = 1;
    for (const HostResultInfo& result : metaData->results) {
        const std::string name = fmt::format("result {}, '{}',", result.id, result.name);
        run.expect(result.id == next, fmt::format("{} comes where {} is expected", name, next));
        next = result.id + 1;
        run.expect(!result.name.empty() && !result.key.empty() && keys.insert(result.key).second,
                   name + " has no name or no unique key");
        run.expect(KINDS.contains(result.kind) && (result.mapping == MAPPING_NODE || result.mapping == MAPPING_ELEMENT),
                   fmt::format("{} has the kind {} and the mapping {}", name, result.kind, result.mapping));
        run.expect((result.displacementFlag == 1) == (result.kind == KIND_DISPLACEMENT),
                   name + " and its displacement flag disagree");
    }
}
