// SPDX-License-Identifier: MIT
//
// Checks that a case arrives with what it should hold. A case that holds nothing is not the library's fault, but its
// user should know of it, so most of what these find are warnings.
#include "border/CellFaces.h"
#include "border/DeliveryCheck.h"
#include "border/HostLog.h"
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr std::size_t TRIANGLE_NODES = 3;

// What the library logs for an owner file whose header gives no number of cells.
constexpr const char* NO_CELL_COUNT = "Failed to read number of cells";

/// The library's error lines since the log was cleared, each once.
std::set<std::string> loggedErrors()
{
    std::set<std::string> errors;
    for (const HostLogLine& line : HostLog::get().lines()) {
        if (line.level == LOG_ERROR) {
            errors.insert(line.text);
        }
    }
    return errors;
}

bool isOfSurface(const std::string& error)
{
    return error.find("postProcessing/") != std::string::npos;
}

/// Warns of triangles that have no area, some of them because their corners are not three nodes.
void checkTriangles(CheckRun& run, const std::string& surface, const HostElementGroup& elements,
                    const std::vector<double>& coordinates)
{
    std::size_t repeated = 0;
    std::size_t flat = 0;
    std::size_t first = elements.elementCount();
    forEachFace(elements, [&](std::size_t element, std::span<const std::int32_t> nodes) {
        const bool repeats = nodes[0] == nodes[1] || nodes[1] == nodes[2] || nodes[2] == nodes[0];
        // Not "== 0": that would let NaN pass.
        if (!(lengthOf(areaVector(coordinates, nodes)) > 0)) {
            ++flat;
            repeated += repeats ? 1U : 0U;
            first = std::min(first, element);
        }
    });
    if (flat != 0) {
        run.warn(fmt::format("{}: triangles without area: {} of {}, {} with a node named twice; the first is {}",
                             surface, flat, elements.elementCount(), repeated, first));
    }
}

/// True if some part or surface has a value. Patches do not count: the value of an inlet stays in the file when nobody
/// can read those of the cells.
bool hasValue(const HostMetaData& metaData, const HostResult& result)
{
    const std::vector<const HostGroup*> groups = metaData.geometryGroups();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const HostValueGroup* const values = valuesOfGroup(metaData, result, i);
        if (values != nullptr && groups[i]->kind() != HostGroupKind::Boundary &&
            std::ranges::any_of(values->values, [](double value) { return value != UNDEFINED_VALUE; })) {
            return true;
        }
    }
    return false;
}

bool hasValueAtSomeState(CheckedCase& open, const HostMetaData& metaData, const HostResultInfo& info)
{
    return std::ranges::any_of(metaData.states, [&](const HostState& state) {
        const std::unique_ptr<HostResult> result = open.result(info.id, state.id);
        return result != nullptr && hasValue(metaData, *result);
    });
}

/// The results of a case by their keys.
struct ResultsByValues
{
    std::map<std::string, std::string> without; ///< names of those that have no value at any state
    std::set<std::string> with;                 ///< all others
};

ResultsByValues sortResults(CheckedCase& open)
{
    const std::unique_ptr<HostMetaData> metaData = open.metaData();
    // Arrays have their sizes from the geometry.
    (void)open.geometry();
    ResultsByValues sorted;
    for (const HostResultInfo& info : metaData->results) {
        if (hasValueAtSomeState(open, *metaData, info)) {
            sorted.with.insert(info.key);
        } else {
            sorted.without[info.key] = info.name;
        }
    }
    // An average has no values where its source has none, so it tells nothing more.
    for (const HostResultInfo& info : metaData->results) {
        const HostResultInfo* const source = metaData->sourceOfAverage(info);
        if (source != nullptr && !sorted.with.contains(source->key)) {
            sorted.without.erase(info.key);
        }
    }
    return sorted;
}

std::size_t partCount(const HostMetaData& metaData)
{
    return static_cast<std::size_t>(std::ranges::count(metaData.groups, HostGroupKind::Part, &HostGroup::kind));
}

/// What `look` finds in the same case in extended reading, so that a warning can tell what helps. The case must not be
/// open at the same time. Nothing if it does not open.
template <typename Look>
auto inExtendedReading(const CheckRun& run, Look look)
{
    CheckTask task = run.task();
    task.settings.push_back(std::string(HostOptions::EXTENDED_READING) + "=on");
    const CheckRun extended(task, [](NoteKind, const std::string&) {});
    try {
        return look(*extended.open());
    } catch (const HostError&) {
        return decltype(look(*extended.open()))();
    }
}

} // namespace

void checkCellsPresent(CheckRun& run)
{
    std::unique_ptr<CheckedCase> open = run.open();
    const std::unique_ptr<HostMetaData> metaData = open->metaData();
    HostLog::get().clear();
    const std::unique_ptr<HostGeometry> geometry = open->geometry();
    bool lacksCellCount = false;
    for (const std::string& error : loggedErrors()) {
        if (error.find(NO_CELL_COUNT) != std::string::npos) {
            lacksCellCount = true;
        } else if (!isOfSurface(error)) {
            run.fail(fmt::format("the library logged '{}'", error));
        }
    }
    const std::vector<const HostGroup*> groups = metaData->geometryGroups();
    for (std::size_t i = 0; i < std::min(groups.size(), geometry->elementGroups.size()); ++i) {
        if (groups[i]->kind() != HostGroupKind::Part || geometry->elementGroups[i].elementCount() != 0) {
            continue;
        }
        if (lacksCellCount) {
            run.limit("decision 4", groups[i]->name + " has no cells: its owner file does not give their number");
        } else {
            run.warn(groups[i]->name + " has no cells");
        }
    }
    if (partCount(*metaData) == 0) {
        open.reset();
        const std::size_t others =
            inExtendedReading(run, [](CheckedCase& extended) { return partCount(*extended.metaData()); });
        run.warn(fmt::format("the case has no mesh{}", others == 0 ? "" : ", but in extended reading it has"));
    }
}

void checkSurfaceTriangles(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    const std::set<std::string> errors = loggedErrors();
    std::size_t surfaces = 0;
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        if (sound.groups[i]->kind() != HostGroupKind::Surface) {
            continue;
        }
        ++surfaces;
        const std::string& name = sound.groups[i]->name;
        const HostElementGroup& elements = sound.geometry->elementGroups[i];
        if (elements.elementCount() == 0) {
            const auto why = std::ranges::find_if(errors, isOfSurface);
            run.warn(name + " has no triangles" +
                     (why == errors.end() ? "" : fmt::format("; the library logged '{}'", *why)));
        } else if (elements.uniform && elements.connectivity.size() > TRIANGLE_NODES * elements.elementCount() &&
                   !sound.open->readsExtended()) {
            run.limit(R"(compatibility, "surface elements are triangles")",
                      name + " has faces of more than three nodes, so its triangles are wrong");
        } else {
            checkTriangles(run, name, elements, sound.geometry->nodesOf(elements)->coordinates);
        }
    }
    if (surfaces == 0) {
        throw CheckSkipped{"the case has no sampled surfaces"};
    }
}

void checkValuesPresent(CheckRun& run)
{
    ResultsByValues results;
    bool isExtended = false;
    {
        const std::unique_ptr<CheckedCase> open = run.open();
        results = sortResults(*open);
        isExtended = open->readsExtended();
    }
    if (results.with.empty() && results.without.empty()) {
        throw CheckSkipped{"the case has no results"};
    }
    ResultsByValues others;
    if (!isExtended && !results.without.empty()) {
        others = inExtendedReading(run, sortResults);
    }
    if (results.with.empty()) {
        run.warn(fmt::format("no result has a value at any state{}",
                             others.with.empty() ? "" : ", but in extended reading some have"));
        return;
    }
    for (const auto& [key, name] : results.without) {
        run.warn(fmt::format("{} has no value at any state{}", name,
                             others.with.contains(key) ? ", but in extended reading it has" : ""));
    }
}
